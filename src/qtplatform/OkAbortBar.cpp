#include "qtplatform/OkAbortBar.h"

#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPushButton>

namespace pipespec::qtplatform {

OkAbortBar::OkAbortBar(QWidget* parent) : QWidget(parent), ok_(new QPushButton(this)), abort_(new QPushButton(this))
{
    ok_->setObjectName("ok");
    abort_->setObjectName("abort");
    ok_->setDefault(true);
    auto* layout = new QHBoxLayout(this);  // Owned by this bar.
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch();
    layout->addWidget(ok_);
    layout->addWidget(abort_);
    connect(ok_, &QPushButton::clicked, this, [this] {
        emit ClickOk();
        emit ClickClose();
    });
    connect(abort_, &QPushButton::clicked, this, [this] {
        emit ClickAbort();
        emit ClickClose();
    });
    retranslate();
}

void OkAbortBar::setOkEnabled(bool enabled) { ok_->setEnabled(enabled); }

bool OkAbortBar::okEnabled() const { return ok_->isEnabled(); }

void OkAbortBar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) retranslate();
}

void OkAbortBar::retranslate()
{
    const auto text = [](std::string_view literal) {
        return QString::fromStdString(diagnostics::utilities().Translate(literal));
    };
    ok_->setText(text(msg::Ok));
    abort_->setText(text(msg::Cancel));
}

}  // namespace pipespec::qtplatform
