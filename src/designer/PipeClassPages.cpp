#include "designer/PipeClassPages.h"

#include "designer/DesignerHost.h"
#include "diagnostics/Messages.h"
#include "diagnostics/Translate.h"
#include "qtplatform/PictureByObject.h"

#include <QLabel>
#include <QVBoxLayout>

namespace pipespec::designer {

PipeClassPages::PipeClassPages(QWidget* parent) : QTabWidget(parent)
{
    setDocumentMode(true);
    pages_ = {
        {"PipeSpecComp", qtplatform::ObjectKind::Element, msg::window::ComponentListPage,
         msg::window::ComponentListPurpose, nullptr, nullptr, nullptr},
        {"PipeSpecSelector", qtplatform::ObjectKind::Selector, msg::window::SelectorsPage,
         msg::window::SelectorsPurpose, nullptr, nullptr, nullptr},
        {"PipeSpecNDRange", qtplatform::ObjectKind::Chapter, msg::window::RangesPage, msg::window::RangesPurpose,
         nullptr, nullptr, nullptr},
        {"PipeCompSearch", qtplatform::ObjectKind::Component, msg::window::ComponentSearchPage,
         msg::window::ComponentSearchPurpose, nullptr, nullptr, nullptr},
    };
    for (auto& page : pages_) addTab(placeholder(page), qtplatform::pictureOfKind(page.picture), {});
    retranslate();
    setPipeClass(nullptr);
}

QWidget* PipeClassPages::placeholder(Page& page)
{
    auto* widget = new QWidget(this);  // Owned by the tabs once added.
    widget->setObjectName(page.control);
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

void PipeClassPages::setPipeClass(const DeviceRef& pipeClass)
{
    pipeClass_ = pipeClass;
    for (int at = 0; at < count(); ++at) setTabEnabled(at, pipeClass_ != nullptr);
    showSubject();
}

bool PipeClassPages::showPage(const QString& name)
{
    for (int at = 0; at < count(); ++at) {
        if (name.compare(QString::fromLatin1(pages_[static_cast<std::size_t>(at)].control), Qt::CaseInsensitive) == 0 ||
            name.compare(tabText(at), Qt::CaseInsensitive) == 0) {
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
    showSubject();
}

void PipeClassPages::showSubject()
{
    for (const auto& page : pages_) {
        if (!pipeClass_) {
            page.subject->setText(shown(msg::window::ChoosePipeClass));
        } else {
            const auto name =
                pipeClass_->Name() + (pipeClass_->Description().empty() ? "" : " – " + pipeClass_->Description());
            page.subject->setText(
                QString::fromStdString(diagnostics::FillPercent1(shown(msg::window::PipeClassIs).toStdString(), name)));
        }
        page.text->setText(shown(page.purpose) + "\n\n" + shown(msg::window::PageComesLater));
        // A centred layout gives a wrapped label the height of one line per break, not per wrap.
        page.text->setMinimumHeight(page.text->heightForWidth(page.text->width()));
    }
}

}  // namespace pipespec::designer
