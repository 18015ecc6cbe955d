#include "designer/DesignerHost.h"

#include <QMessageBox>
#include <QWidget>

#include <functional>

namespace pipespec::designer {

QString shown(std::string_view literal) { return QString::fromStdString(diagnostics::utilities().Translate(literal)); }

// Trace as the headless host formats it, each line passed on at once.
class DesignerHost::Tools final : public IGlobalTools {
public:
    explicit Tools(std::function<void(const std::string&)> tell) : tell_(std::move(tell)) {}
    void setNames(std::shared_ptr<const INameTable> names) { lines_.setNames(std::move(names)); }

    std::shared_ptr<const INameTable> Names() const override { return lines_.Names(); }
    bool TraceEnabled(std::string_view cls, std::string_view function) const override
    {
        return lines_.TraceEnabled(cls, function);
    }
    void TraceText(std::string_view cls, std::string_view function, std::string_view text) override
    {
        pass([&] { lines_.TraceText(cls, function, text); });
    }
    void TraceObject(std::string_view cls, std::string_view function, std::string_view label,
                     const ObjectRef& object) override
    {
        pass([&] { lines_.TraceObject(cls, function, label, object); });
    }
    void TraceEnter(std::string_view cls, std::string_view function) override
    {
        pass([&] { lines_.TraceEnter(cls, function); });
    }
    void TraceLeave(std::string_view cls, std::string_view function) override
    {
        pass([&] { lines_.TraceLeave(cls, function); });
    }
    void TraceLeaveText(std::string_view cls, std::string_view function, std::string_view text) override
    {
        pass([&] { lines_.TraceLeaveText(cls, function, text); });
    }
    void TraceValue(std::string_view cls, std::string_view function, std::string_view label,
                    const Variant& value) override
    {
        pass([&] { lines_.TraceValue(cls, function, label, value); });
    }

private:
    template <class Record>
    void pass(Record&& record)
    {
        record();
        for (const auto& line : lines_.lines()) tell_(diagnostics::HeadlessTools::format(line));
        lines_.clear();
    }

    diagnostics::HeadlessTools lines_;
    std::function<void(const std::string&)> tell_;
};

// Texts, paths and the log as the headless host keeps them; reports go to
// the dock, boxes to the screen when there is a window.
class DesignerHost::Utilities final : public IUtilities {
public:
    explicit Utilities(DesignerHost& host) : host_(host) {}
    void setLanguage(diagnostics::LanguageTable table) { headless_.setLanguage(std::move(table)); }

    void ReportError(const ErrorInfo& error, std::string_view cls, std::string_view function) noexcept override
    {
        try {
            host_.tell(HostMessage::Kind::Error, std::string(cls) + " " + std::string(function) + ": " +
                                                     std::to_string(error.Number) + " " + error.Description);
        } catch (...) {
            // A report that cannot be shown is dropped: the tail it ends must not throw.
        }
    }
    std::string Translate(std::string_view text) const override { return headless_.Translate(text); }
    void BeginRefresh() override {}
    void WriteLog(std::string_view text) override { host_.tell(HostMessage::Kind::Log, std::string(text)); }
    std::shared_ptr<IMainWindow> MainWindow() const override { return nullptr; }
    int MessageBox(std::string_view text, int flags, std::string_view title) override
    {
        if (!host_.window_) return headless_.MessageBox(text, flags, title);
        return shownBox(QString::fromStdString(std::string(text)), flags, QString::fromStdString(std::string(title)));
    }
    std::shared_ptr<ILook> Look() const override { return nullptr; }
    std::string StandardTablePath(int number) const override { return headless_.StandardTablePath(number); }

private:
    // Flags: the low bits the buttons (0 OK, 4 yes/no), the next the icon.
    int shownBox(const QString& text, int flags, const QString& title) const
    {
        const auto icon = (flags & 0x70) == mb::Critical      ? QMessageBox::Critical
                          : (flags & 0x70) == mb::Exclamation ? QMessageBox::Warning
                          : (flags & 0x70) == mb::Information ? QMessageBox::Information
                                                              : QMessageBox::NoIcon;
        const bool yesNo = (flags & 0x0f) == 4;
        QMessageBox box(icon, title, text, yesNo ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok, host_.window_);
        const auto answer = box.exec();
        if (!yesNo) return mb::AnswerOk;
        return answer == QMessageBox::Yes ? mb::AnswerYes : mb::AnswerNo;
    }

    DesignerHost& host_;
    diagnostics::HeadlessUtilities headless_;
};

DesignerHost::DesignerHost()
    : tools_(std::make_shared<Tools>([this](const std::string& line) { tell(HostMessage::Kind::Trace, line); })),
      utilities_(std::make_shared<Utilities>(*this)),
      toolsInstalled_(std::make_unique<diagnostics::ScopedService<IGlobalTools>>(diagnostics::setTools, tools_)),
      utilitiesInstalled_(
          std::make_unique<diagnostics::ScopedService<IUtilities>>(diagnostics::setUtilities, utilities_))
{
}

DesignerHost::~DesignerHost() = default;

void DesignerHost::setNames(std::shared_ptr<const INameTable> names) { tools_->setNames(std::move(names)); }

void DesignerHost::setLanguage(const std::string& language)
{
    utilities_->setLanguage(language == "de"
                                ? diagnostics::LanguageTable{}
                                : diagnostics::LanguageTable::load(diagnostics::LanguageTable::shippedPath(language)));
    language_ = language;
}

void DesignerHost::tell(HostMessage::Kind kind, const std::string& text)
{
    emit message({kind, QString::fromStdString(text)});
}

}  // namespace pipespec::designer
