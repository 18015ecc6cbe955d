#include "ranges/frmPCOMRange.h"

#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "qtplatform/QtHost.h"

#include <QKeyEvent>

namespace pipespec::ranges {

namespace {
QString translated(std::string_view text) { return QString::fromStdString(diagnostics::utilities().Translate(text)); }
}  // namespace

frmPCOMRange::frmPCOMRange(QWidget* parent)
    : ControlFrame(cls::FrmPCOMRange, parent),
      PCOMRange1(new qtplatform::PCOMRange(this)),
      OkAbort1(new qtplatform::OkAbortBar(this))
{
    handle("Sub Form_Load", [&] {
        setWindowTitle(translated(""));
        const auto mainWindow =
            std::dynamic_pointer_cast<qtplatform::QtMainWindow>(diagnostics::utilities().MainWindow());
        if (mainWindow && mainWindow->window()) setWindowIcon(mainWindow->window()->windowIcon());
    });
    connectHandler(OkAbort1, &qtplatform::OkAbortBar::ClickClose, "Sub OkAbort1_ClickClose", [this] { closeForm(); });
    connectHandler(PCOMRange1, &qtplatform::PCOMRange::Changed, "Sub PCOMRange1_Changed",
                   [this] { emit PCOMRange_Changed(); });
    connect(PCOMRange1, &qtplatform::PCOMRange::DoResize, this, [this] { Form_Resize(); });
    // The only row of its list takes the sizes it asks for.
    connect(PCOMRange1, &qtplatform::PCOMRange::DoResizeColumns, PCOMRange1, &qtplatform::PCOMRange::SetColumnWidth);
    connect(PCOMRange1, &qtplatform::PCOMRange::DoResizeHead, PCOMRange1, &qtplatform::PCOMRange::SetHeadSize);
}

void frmPCOMRange::Init(const DeviceRef& component)
{
    handle("Sub Init", [&] {
        const auto owner = asDevice(must(component).Owner());
        mComponent = component;
        setCaption();
        PCOMRange1->Init(component, owner, true);
        Form_Resize();
    });
}

void frmPCOMRange::setCaption()
{
    const auto& component = must(mComponent);
    setWindowTitle(translated(msg::RangeFor) + " " +
                   QString::fromStdString(must(component.Owner()).Name() + "|" + component.Name() + " - " +
                                          component.Description()));
}

void frmPCOMRange::retranslate()
{
    if (mComponent) setCaption();
}

void frmPCOMRange::InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass)
{
    PCOMRange1->InitNDRange(element, pipeClass);
}

void frmPCOMRange::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Escape) return ControlFrame::keyPressEvent(event);
    handle("Sub Form_KeyPress", [&] { closeForm(); });
}

void frmPCOMRange::resizeEvent(QResizeEvent* event)
{
    ControlFrame::resizeEvent(event);
    Form_Resize();
}

// The form follows the size the row asks for: as high as the row (and the
// bar), at least as wide as the row and the strip of the bar. Qt sizes the
// inside of a window, so the height of its frame does not enter.
void frmPCOMRange::Form_Resize()
{
    handle("Sub Form_Resize", [&] {
        const auto row = PCOMRange1->sizeHint();
        const auto bar = OkAbort1->sizeHint();
        const int height = std::max(row.height(), bar.height());
        const int width = std::max(this->width(), row.width() + kBarStrip);
        if (height != this->height() || width != this->width()) resize(width, height);
        PCOMRange1->setGeometry(0, 0, row.width(), row.height());
        OkAbort1->setGeometry(width - kBarStrip, 0, kBarStrip, bar.height());
    });
}

void frmPCOMRange::closeForm() { must(must(diagnostics::utilities().MainWindow()).WindowService()).CloseForm(*this); }

}  // namespace pipespec::ranges
