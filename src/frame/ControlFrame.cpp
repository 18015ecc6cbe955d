#include "frame/ControlFrame.h"

#include "diagnostics/ServiceRegistry.h"
#include "qtplatform/HelpBrowser.h"

#include <QEvent>
#include <QKeyEvent>

namespace pipespec::frame {

namespace {

constexpr std::string_view kLibrary = "QuorlPipeSpecComp.";

void setBackground(QWidget& widget, const QColor& color)
{
    auto palette = widget.palette();
    palette.setColor(QPalette::Window, color);
    widget.setPalette(palette);
    widget.setAutoFillBackground(true);
}

}  // namespace

QColor lookColor(int oleColor) { return {oleColor & 0xff, (oleColor >> 8) & 0xff, (oleColor >> 16) & 0xff}; }

HostObject::HostObject(QWidget& control)
{
    for (auto* child : control.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) children_.emplace_back(child);
}

void HostObject::applyLook(const ILook& look) const
{
    const auto background = lookColor(look.BackColor());
    for (const auto& child : children_)
        if (child) setBackground(*child, background);
}

ControlFrame::ControlFrame(std::string_view cls, QWidget* parent) : QWidget(parent), cls_(cls)
{
    InitializeWpfControls();
}

ControlFrame::~ControlFrame() = default;

void ControlFrame::InitializeWpfControls()
{
    const diagnostics::Trace trace(cls_, "InitializeWpfControls");
    trace.text("enter");
    handle("Sub InitializeWpfControls", [&] {
        if (const auto look = diagnostics::utilities().Look()) setBackground(*this, lookColor(look->BackColor()));
    });
    trace.text("leave");
}

HostObject& ControlFrame::WPFControl()
{
    const diagnostics::Trace trace(cls_, "Get_WPFControl");
    trace.enter();
    if (!host_) host_ = std::make_unique<HostObject>(*this);
    trace.leave();
    return *host_;
}

void ControlFrame::UpdateLayout()
{
    const diagnostics::Trace trace(cls_, "UpdateLayout");
    trace.text("enter");
    handle("Sub UpdateLayout", [&] {
        if (!host_) return;
        host_->place(geometry());
        if (const auto look = diagnostics::utilities().Look()) host_->applyLook(*look);
    });
    trace.text("leave");
}

int ControlFrame::TabBackGround()
{
    handle("Property Get 'TabBackGround'", [&] {
        auto* tabs = tabControl();
        const auto look = diagnostics::utilities().Look();
        if (tabs && look) setBackground(*tabs, lookColor(look->Color(kTabBackGroundColor)));
    });
    return kTabBackGroundColor;
}

void ControlFrame::SetPipeClass(const DeviceRef& pipeClass)
{
    handle("Property Set 'PipeClass'", [&] {
        mPipeClass = pipeClass;
        if (!mPipeClass) return;
        gWorkset = mPipeClass->Workset();
        Refresh();
    });
}

void ControlFrame::navigateTo(const ObjectRef& current, bool toOriginal) const
{
    auto& globals = must(must(gWorkset).AppGlobals());
    const auto navigator = globals.Exist("NAVIGATOR") ? globals.Navigator() : nullptr;
    if (!navigator) return;
    auto target = asDevice(current);
    if (toOriginal && target) target = target->CDevice();
    if (target) navigator->SetPLTObject(target);
}

bool ControlFrame::ValidChapter(const DeviceRef&, std::int32_t& ErrorID, std::string& strSelectChapter)
{
    ErrorID = 0;
    strSelectChapter.clear();
    return true;
}

void ControlFrame::ActivateRollbackState(const UndoStateRef& PipeSpecUndoState)
{
    const diagnostics::Trace trace(cls_, "ActivateRollbackState");
    handle("Sub ActivateRollbackState", [&] {
        if (tracesRollbackEntry_) trace.text("enter");
        if (PipeSpecUndoState) {
            trace.text("setting new m_PipeSpecUndoState");
            m_PipeSpecUndoState = PipeSpecUndoState;
        }
        if (!gWorkset) {
            trace.text("quit (no workset)");
            return;
        }
        if (m_PipeSpecUndoState && gWorkset->CurrentUndoState() != m_PipeSpecUndoState) {
            trace.text("setting gWorkset.CurrentUndoState to m_PipeSpecUndoState");
            gWorkset->SetCurrentUndoState(m_PipeSpecUndoState);
        }
        trace.text("leave");
    });
}

void ControlFrame::Shutdown()
{
    handle("Sub Shutdown", [&] { shutdownParts(); });
    shutDown_ = true;
}

QString ControlFrame::className() const
{
    auto name = cls_;
    if (name.starts_with(kLibrary)) name.remove_prefix(kLibrary.size());
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

void ControlFrame::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) handle("Sub LanguageChange", [&] { retranslate(); });
}

void ControlFrame::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_F1) {
        QWidget::keyPressEvent(event);
        return;
    }
    handle("Sub UserControl_KeyDown", [&] { qtplatform::showHelp(*this, className()); });
    event->accept();
}

}  // namespace pipespec::frame
