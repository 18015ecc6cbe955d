#include "qtplatform/QtHost.h"

#include "diagnostics/Translate.h"
#include "objectmodel/Errors.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QMessageBox>
#include <QPalette>
#include <QProgressDialog>
#include <QPushButton>

#include <array>
#include <utility>

namespace pipespec::qtplatform {

namespace {

QString qt(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

QWidget& formWidget(IForm& form)
{
    auto* widget = dynamic_cast<QWidget*>(&form);
    if (!widget) throw PlatformError(err::InvalidCall, "A form to show must be a widget");
    return *widget;
}

// Ends a modal loop as the form it waits on is hidden, however that happens.
class HideWatch final : public QObject {
public:
    explicit HideWatch(QEventLoop& loop) : loop_(loop) {}
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Hide) loop_.quit();
        return false;
    }

private:
    QEventLoop& loop_;
};

// The button sets of the flags' low digit, each button with its answer.
struct BoxButton {
    QMessageBox::StandardButton button;
    int answer;
};
using ButtonSet = std::vector<BoxButton>;

ButtonSet buttonSet(int flags)
{
    constexpr BoxButton ok{QMessageBox::Ok, 1}, cancel{QMessageBox::Cancel, 2}, abort{QMessageBox::Abort, 3},
        retry{QMessageBox::Retry, 4}, ignore{QMessageBox::Ignore, 5}, yes{QMessageBox::Yes, mb::AnswerYes},
        no{QMessageBox::No, mb::AnswerNo};
    switch (flags & 0x0f) {
    case 1: return {ok, cancel};
    case 2: return {abort, retry, ignore};
    case 3: return {yes, no, cancel};
    case 4: return {yes, no};
    case 5: return {retry, cancel};
    default: return {ok};
    }
}

QMessageBox::Icon boxIcon(int flags)
{
    switch (flags & 0xf0) {
    case mb::Critical: return QMessageBox::Critical;
    case 32: return QMessageBox::Question;
    case mb::Exclamation: return QMessageBox::Warning;
    case mb::Information: return QMessageBox::Information;
    default: return QMessageBox::NoIcon;
    }
}

int oleColor(const QColor& color) { return color.red() | (color.green() << 8) | (color.blue() << 16); }

}  // namespace

void QtWindowService::ShowForm(IForm& form)
{
    auto& widget = formWidget(form);
    widget.setWindowFlag(Qt::Window);
    widget.setWindowModality(Qt::ApplicationModal);
    QEventLoop loop;
    HideWatch watch(loop);
    widget.installEventFilter(&watch);
    widget.show();
    if (widget.isVisible()) loop.exec();
    widget.removeEventFilter(&watch);
}

void QtWindowService::CloseForm(IForm& form) { formWidget(form).close(); }

int QtLook::Color(int number) const
{
    const auto palette = QApplication::palette();
    constexpr std::array roles{QPalette::Window, QPalette::Base, QPalette::Text, QPalette::Button,
                               QPalette::AlternateBase};
    const auto role = number >= 0 && number < static_cast<int>(roles.size()) ? roles[static_cast<std::size_t>(number)]
                                                                             : QPalette::Window;
    return oleColor(palette.color(role));
}

void QtMainWindow::ShowProperties(const ObjectRef& object)
{
    if (viewer_ && window_) viewer_(object);
}

QtUtilities::QtUtilities(QWidget* mainWindow) : mainWindow_(std::make_shared<QtMainWindow>(mainWindow, nullptr)) {}

void QtUtilities::setMainWindow(QWidget* mainWindow, PropertiesViewer viewer)
{
    mainWindow_ = std::make_shared<QtMainWindow>(mainWindow, std::move(viewer));
}

void QtUtilities::setListeners(Listener reports, Listener log)
{
    reports_ = std::move(reports);
    log_ = std::move(log);
}

void QtUtilities::WriteLog(std::string_view text)
{
    kept_.WriteLog(text);
    if (log_) log_(text);
}

void QtUtilities::ReportError(const ErrorInfo& error, std::string_view cls, std::string_view function) noexcept
{
    kept_.ReportError(error, cls, function);
    try {
        if (reports_)
            reports_(std::string(cls) + " " + std::string(function) + ": " + std::to_string(error.Number) + " " +
                     error.Description);
        if (!mainWindow_->window()) return;
        auto* box =
            new QMessageBox(QMessageBox::Critical, qt(cls),  // Deleted as it closes.
                            qt(error.Description) + "\n\n" + qt(function) + " (" + QString::number(error.Number) + ")",
                            QMessageBox::Ok, mainWindow_->window());
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->setObjectName("error");
        box->open();
    } catch (...) {
        // The report is kept; a line or box that cannot be shown is no new failure.
    }
}

int QtUtilities::MessageBox(std::string_view text, int flags, std::string_view title)
{
    if (!mainWindow_->window()) return kept_.MessageBox(text, flags, title);
    QMessageBox box(boxIcon(flags), qt(title), qt(text), QMessageBox::NoButton, mainWindow_->window());
    const auto buttons = buttonSet(flags);
    for (const auto& entry : buttons) box.addButton(entry.button);
    box.setObjectName("messageBox");
    box.exec();
    const auto chosen = box.clickedButton() ? box.standardButton(box.clickedButton()) : QMessageBox::NoButton;
    for (const auto& entry : buttons)
        if (entry.button == chosen) return entry.answer;
    return buttons.back().answer;
}

std::unique_ptr<IProgress> QtUtilities::BeginProgress(std::string_view title, int total)
{
    if (!mainWindow_->window()) return kept_.BeginProgress(title, total);

    class Dialog final : public IProgress {
    public:
        Dialog(QWidget* window, const QString& title, int total)
            : dialog_(QString(), QApplication::translate("QProgressDialog", "Cancel"), 0, total, window),
              total_(total)
        {
            dialog_.setObjectName("progress");
            dialog_.setWindowTitle(title);
            dialog_.setWindowModality(Qt::WindowModal);
            dialog_.setMinimumDuration(400);
            dialog_.setMinimumWidth(420);
        }
        bool Step(int done, std::string_view current) override
        {
            dialog_.setLabelText(QStringLiteral("%1\n%2 / %3").arg(qt(current)).arg(done + 1).arg(total_));
            dialog_.setValue(done);  // A modal dialog lets the events through here, the Cancel click too.
            return !dialog_.wasCanceled();
        }

    private:
        QProgressDialog dialog_;
        int total_;
    };
    return std::make_unique<Dialog>(mainWindow_->window(), qt(title), total);
}

void QtUtilities::switchLanguage(std::string_view language)
{
    auto table = diagnostics::LanguageTable();
    if (language != "de") {
        const auto file = diagnostics::LanguageTable::shippedPath(language);
        std::error_code ignored;
        if (!std::filesystem::exists(file, ignored))
            throw PlatformError(err::Configuration, "No language table " + file.string());
        table = diagnostics::LanguageTable::load(file);
    }
    kept_.setLanguage(std::move(table));
    language_ = language;
    // Sent at once, so that every text is in the new language when the switch returns.
    QEvent change(QEvent::LanguageChange);
    for (auto* widget : QApplication::topLevelWidgets()) QApplication::sendEvent(widget, &change);
}

}  // namespace pipespec::qtplatform
