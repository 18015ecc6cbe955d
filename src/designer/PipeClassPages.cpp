#include "designer/PipeClassPages.h"

#include "componentlist/PipeSpecComp.h"
#include "componentsearch/PipeCompSearch.h"
#include "designer/DesignerHost.h"
#include "diagnostics/Messages.h"
#include "diagnostics/Translate.h"
#include "qtplatform/PictureByObject.h"

#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace pipespec::designer {

namespace {
QString filled(std::string_view literal, std::string_view value)
{
    return QString::fromStdString(diagnostics::FillPercent1(shown(literal).toStdString(), value));
}

// Why a control refused the pipe class, from its answers: 1 says that the
// chapter it names is missing or holds no values.
QString refusalText(std::int32_t errorId, const std::string& chapter)
{
    if (errorId == 1) return filled(msg::window::ChapterMissing, chapter);
    return filled(msg::window::ChapterRefused, chapter) + " (" + QString::number(errorId) + ")";
}
}  // namespace

PipeClassPages::PipeClassPages(QWidget* parent) : QTabWidget(parent)
{
    setDocumentMode(true);
    const auto described = [](const char* control, const char* alias, qtplatform::ObjectKind picture,
                              std::string_view caption, std::string_view purpose) {
        Page made;
        made.control = control;
        made.alias = alias;
        made.picture = picture;
        made.caption = caption;
        made.purpose = purpose;
        return made;
    };
    pages_.push_back(described("PipeSpecComp", "components", qtplatform::ObjectKind::Element,
                               msg::window::ComponentListPage, msg::window::ComponentListPurpose));
    pages_.push_back(described("PipeSpecSelector", "selectors", qtplatform::ObjectKind::Selector,
                               msg::window::SelectorsPage, msg::window::SelectorsPurpose));
    pages_.push_back(described("PipeSpecNDRange", "ranges", qtplatform::ObjectKind::Chapter, msg::window::RangesPage,
                               msg::window::RangesPurpose));
    pages_.push_back(described("PipeCompSearch", "search", qtplatform::ObjectKind::Component,
                               msg::window::ComponentSearchPage, msg::window::ComponentSearchPurpose));
    pages_.front().make = [] { return new componentlist::PipeSpecComp; };  // Owned by its page once added.
    pages_.back().make = [] { return new componentsearch::PipeCompSearch; };
    for (auto& page : pages_) {
        page.stack = new QStackedWidget(this);  // Owned by the tabs once added.
        page.stack->setObjectName(page.control);
        page.stack->addWidget(notice(page));
        addTab(page.stack, qtplatform::pictureOfKind(page.picture), {});
    }
    connect(this, &QTabWidget::currentChanged, this, [this](int at) {
        if (pipeClass_) chosen_ = at;
    });
    retranslate();
    setPipeClass(nullptr);
}

PipeClassPages::~PipeClassPages() { shutDownControls(); }

QWidget* PipeClassPages::notice(Page& page)
{
    auto* widget = new QWidget(page.stack);
    page.heading = new QLabel(widget);
    page.subject = new QLabel(widget);
    page.text = new QLabel(widget);
    QFont large = page.heading->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    large.setBold(true);
    page.heading->setFont(large);
    page.subject->setTextInteractionFlags(Qt::TextSelectableByMouse);
    page.text->setWordWrap(true);
    page.text->setFixedWidth(560);
    auto* picture = new QLabel(widget);
    picture->setPixmap(qtplatform::pictureOfKind(page.picture).pixmap(32, 32));
    auto* layout = new QVBoxLayout(widget);
    layout->setContentsMargins(32, 32, 32, 32);
    layout->setSpacing(10);
    layout->addStretch(1);
    for (auto* label : {picture, page.heading, page.subject, page.text}) layout->addWidget(label, 0, Qt::AlignHCenter);
    page.text->setAlignment(Qt::AlignHCenter);
    layout->addStretch(2);
    return widget;
}

void PipeClassPages::setDocument(const UndoStateRef& undoState)
{
    shutDownControls();
    undoState_ = undoState;
    pipeClass_ = nullptr;
    for (auto& page : pages_) {
        if (!page.make || !undoState_) continue;
        page.made = page.make();
        page.stack->addWidget(page.made);  // Owned by the page from now on.
        page.made->SetPipeSpecXML(pipeSpecXml_);
        page.made->ActivateRollbackState(undoState_);
    }
    setPipeClass(nullptr);
}

void PipeClassPages::shutDownControls()
{
    for (auto& page : pages_) {
        if (!page.made) continue;
        page.made->Shutdown();
        page.made->deleteLater();  // The host's step after Shutdown.
        page.made = nullptr;
        page.serves = false;
    }
}

void PipeClassPages::setPipeClass(const DeviceRef& pipeClass)
{
    pipeClass_ = pipeClass;
    for (int at = 0; at < count(); ++at) setTabEnabled(at, pipeClass_ != nullptr);
    // Disabling the tabs moved the current one along; the user's choice comes back.
    if (pipeClass_) setCurrentIndex(chosen_);
    for (auto& page : pages_) offer(page);
    showNotices();
}

// Asks the page's control whether it serves the pipe class: it gets the
// class and is shown, or the page says why not.
void PipeClassPages::offer(Page& page)
{
    page.serves = false;
    page.refusal.clear();
    if (!page.made || !pipeClass_) {
        page.stack->setCurrentIndex(0);
        return;
    }
    std::int32_t errorId = 0;
    std::string chapter;
    page.serves = page.made->ValidChapter(pipeClass_, errorId, chapter);
    if (page.serves) {
        page.made->ActivateRollbackState(nullptr);
        page.made->SetPipeClass(pipeClass_);
    } else {
        page.refusal = refusalText(errorId, chapter);
    }
    page.stack->setCurrentWidget(page.serves ? static_cast<QWidget*>(page.made) : page.stack->widget(0));
}

frame::ControlFrame* PipeClassPages::control(std::string_view name) const
{
    for (const auto& page : pages_)
        if (page.control == name) return page.made;
    return nullptr;
}

frame::ControlFrame* PipeClassPages::currentControl() const
{
    const auto at = currentIndex();
    if (at < 0) return nullptr;
    const auto& page = pages_[static_cast<std::size_t>(at)];
    return page.serves ? page.made : nullptr;
}

bool PipeClassPages::showPage(const QString& name)
{
    for (int at = 0; at < count(); ++at) {
        const auto& page = pages_[static_cast<std::size_t>(at)];
        const auto names = {QString::fromLatin1(page.control), QString::fromLatin1(page.alias), tabText(at)};
        if (std::any_of(names.begin(), names.end(),
                        [&](const QString& known) { return name.compare(known, Qt::CaseInsensitive) == 0; })) {
            setCurrentIndex(at);
            return true;
        }
    }
    return false;
}

void PipeClassPages::retranslate()
{
    for (int at = 0; at < count(); ++at) {
        const auto& page = pages_[static_cast<std::size_t>(at)];
        setTabText(at, shown(page.caption));
        setTabToolTip(at, QString::fromLatin1(page.control));
        page.heading->setText(shown(page.caption));
    }
    for (auto& page : pages_)
        if (!page.refusal.isEmpty()) offer(page);
    showNotices();
}

void PipeClassPages::showNotices()
{
    for (const auto& page : pages_) {
        if (!pipeClass_) {
            page.subject->setText(shown(msg::window::ChoosePipeClass));
        } else {
            const auto name =
                pipeClass_->Name() + (pipeClass_->Description().empty() ? "" : " – " + pipeClass_->Description());
            page.subject->setText(filled(msg::window::PipeClassIs, name));
        }
        if (!page.refusal.isEmpty())
            page.text->setText(page.refusal);
        else if (page.make)
            page.text->setText(shown(page.purpose));
        else
            page.text->setText(shown(page.purpose) + "\n\n" + shown(msg::window::PageComesLater));
        // A centred layout gives a wrapped label the height of one line per break, not per wrap.
        page.text->setMinimumHeight(page.text->heightForWidth(page.text->width()));
    }
}

}  // namespace pipespec::designer
