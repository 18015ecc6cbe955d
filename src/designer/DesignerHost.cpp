#include "designer/DesignerHost.h"

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

DesignerHost::DesignerHost()
    : tools_(std::make_shared<Tools>([this](const std::string& line) { tell(HostMessage::Kind::Trace, line); })),
      utilities_(std::make_shared<qtplatform::QtUtilities>()),
      toolsInstalled_(std::make_unique<diagnostics::ScopedService<IGlobalTools>>(diagnostics::setTools, tools_)),
      utilitiesInstalled_(
          std::make_unique<diagnostics::ScopedService<IUtilities>>(diagnostics::setUtilities, utilities_))
{
    utilities_->setListeners([this](std::string_view text) { tell(HostMessage::Kind::Error, text); },
                             [this](std::string_view text) { tell(HostMessage::Kind::Log, text); });
}

DesignerHost::~DesignerHost() = default;

void DesignerHost::setNames(std::shared_ptr<const INameTable> names) { tools_->setNames(std::move(names)); }

void DesignerHost::setLanguage(const std::string& language) { utilities_->switchLanguage(language); }

void DesignerHost::tell(HostMessage::Kind kind, std::string_view text)
{
    emit message({kind, QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))});
}

}  // namespace pipespec::designer
