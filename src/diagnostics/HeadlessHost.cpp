#include "diagnostics/HeadlessHost.h"

#include "diagnostics/ServiceRegistry.h"
#include "objectmodel/Errors.h"
#include "objectmodel/Text.h"

#include <type_traits>
#include <utility>
#include <variant>

namespace pipespec::diagnostics {

namespace {

// The button sets of a message box and the answer of each set's first button.
constexpr int kButtonsMask = 7;
constexpr int kAbortRetryIgnore = 2;
constexpr int kYesNoCancel = 3;
constexpr int kYesNo = 4;
constexpr int kRetryCancel = 5;
constexpr int kAnswerAbort = 3;
constexpr int kAnswerRetry = 4;

template <class Ref>
std::string describeCount(const Ref& ref, std::string_view what)
{
    return ref ? std::string(what) + " of " + std::to_string(ref->Count()) : "Nothing";
}

}  // namespace

std::string describeObject(const ObjectRef& object) { return object ? object->SystemFullName() : "Nothing"; }

std::string describeValue(const Variant& value)
{
    return std::visit(
        [](const auto& v) -> std::string {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, std::monostate>)
                return "Empty";
            else if constexpr (std::is_same_v<T, bool>)
                return v ? "True" : "False";
            else if constexpr (std::is_same_v<T, std::int64_t>)
                return std::to_string(v);
            else if constexpr (std::is_same_v<T, double>)
                return text::Str(v);
            else if constexpr (std::is_same_v<T, std::string>)
                return v;
            else if constexpr (std::is_same_v<T, ObjectRef>)
                return describeObject(v);
            else if constexpr (std::is_same_v<T, CollectionRef>)
                return describeCount(v, "Collection");
            else
                return describeCount(v, "Map");
        },
        value.storage());
}

// --- HeadlessTools ---------------------------------------------------------

HeadlessTools::HeadlessTools(std::shared_ptr<const INameTable> names) : names_(std::move(names)) {}

void HeadlessTools::setNames(std::shared_ptr<const INameTable> names) { names_ = std::move(names); }

std::shared_ptr<const INameTable> HeadlessTools::Names() const { return names_; }

bool HeadlessTools::TraceEnabled(std::string_view cls, std::string_view function) const
{
    if (!enabled_) return false;
    const auto functions = switchedOff_.find(cls);
    return functions == switchedOff_.end() || !functions->second.contains(function);
}

void HeadlessTools::setTraceEnabled(bool on) { enabled_ = on; }

void HeadlessTools::setTraceEnabled(std::string_view cls, std::string_view function, bool on)
{
    if (!on) {
        switchedOff_[std::string(cls)].emplace(function);
        return;
    }
    const auto functions = switchedOff_.find(cls);
    if (functions == switchedOff_.end()) return;
    if (const auto found = functions->second.find(function); found != functions->second.end())
        functions->second.erase(found);
}

void HeadlessTools::TraceText(std::string_view cls, std::string_view function, std::string_view text)
{
    if (TraceEnabled(cls, function)) record(TraceKind::Text, cls, function, std::string(text));
}

void HeadlessTools::TraceObject(std::string_view cls, std::string_view function, std::string_view label,
                                const ObjectRef& object)
{
    if (TraceEnabled(cls, function))
        record(TraceKind::Object, cls, function, std::string(label) + " = " + describeObject(object));
}

void HeadlessTools::TraceEnter(std::string_view cls, std::string_view function)
{
    if (TraceEnabled(cls, function)) record(TraceKind::Enter, cls, function, {});
}

void HeadlessTools::TraceLeave(std::string_view cls, std::string_view function)
{
    if (TraceEnabled(cls, function)) record(TraceKind::Leave, cls, function, {});
}

void HeadlessTools::TraceLeaveText(std::string_view cls, std::string_view function, std::string_view text)
{
    if (TraceEnabled(cls, function)) record(TraceKind::LeaveText, cls, function, std::string(text));
}

void HeadlessTools::TraceValue(std::string_view cls, std::string_view function, std::string_view label,
                               const Variant& value)
{
    if (TraceEnabled(cls, function))
        record(TraceKind::Value, cls, function, std::string(label) + " = " + describeValue(value));
}

void HeadlessTools::record(TraceKind kind, std::string_view cls, std::string_view function, std::string text)
{
    lines_.push_back({kind, std::string(cls), std::string(function), std::move(text)});
}

std::string HeadlessTools::format(const TraceLine& line)
{
    std::string out = line.cls + " " + line.function + ": ";
    switch (line.kind) {
    case TraceKind::Enter: return out + "enter";
    case TraceKind::Leave: return out + "leave";
    case TraceKind::LeaveText: return out + "leave: " + line.text;
    case TraceKind::Text:
    case TraceKind::Object:
    case TraceKind::Value: break;
    }
    return out + line.text;
}

// --- HeadlessUtilities -----------------------------------------------------

HeadlessUtilities::HeadlessUtilities(LanguageTable language) : language_(std::move(language)) {}

void HeadlessUtilities::ReportError(const ErrorInfo& error, std::string_view cls, std::string_view function) noexcept
{
    try {
        errors_.push_back({error.Number, error.Description, std::string(cls), std::string(function)});
    } catch (...) {
        // Reporting is the last resort of every error tail; it has no one to tell.
    }
}

std::string HeadlessUtilities::Translate(std::string_view text) const
{
    return diagnostics::Translate(text, language_);
}

int HeadlessUtilities::MessageBox(std::string_view text, int flags, std::string_view title)
{
    int answer = unscriptedAnswer(flags);
    if (!script_.empty()) {
        answer = script_.front();
        script_.pop_front();
    }
    messageBoxes_.push_back({std::string(text), flags, std::string(title), answer});
    return answer;
}

int HeadlessUtilities::unscriptedAnswer(int flags) const noexcept
{
    switch (flags & kButtonsMask) {
    case kYesNo:
    case kYesNoCancel: return yesNoDefault_;
    case kAbortRetryIgnore: return kAnswerAbort;
    case kRetryCancel: return kAnswerRetry;
    default: return mb::AnswerOk;  // OK only, OK / Cancel
    }
}

void HeadlessUtilities::WriteLog(std::string_view text) { log_.emplace_back(text); }

std::string HeadlessUtilities::StandardTablePath(int number) const
{
    const auto found = tablePaths_.find(number);
    if (found == tablePaths_.end())
        throw PlatformError(err::Configuration, "No path known for standard table " + std::to_string(number));
    return found->second;
}

void HeadlessUtilities::setStandardTablePath(int number, std::string path) { tablePaths_[number] = std::move(path); }

std::unique_ptr<IProgress> HeadlessUtilities::BeginProgress(std::string_view title, int total)
{
    class Unwatched final : public IProgress {
    public:
        Unwatched(HeadlessUtilities& host, std::string_view title, int total)
            : host_(host),
              title_(title),
              total_(total)
        {
        }
        bool Step(int done, std::string_view current) override
        {
            host_.progress_.push_back(title_ + ": " + std::to_string(done) + "/" + std::to_string(total_) + " " +
                                      std::string(current));
            return host_.cancelAt_ < 0 || done < host_.cancelAt_;
        }

    private:
        HeadlessUtilities& host_;
        std::string title_;
        int total_;
    };
    return std::make_unique<Unwatched>(*this, title, total);
}

void HeadlessUtilities::clear() noexcept
{
    progress_.clear();
    errors_.clear();
    messageBoxes_.clear();
    log_.clear();
    refreshes_ = 0;
}

// --- ScopedHeadlessHost ----------------------------------------------------

ScopedHeadlessHost::ScopedHeadlessHost(std::shared_ptr<const INameTable> names)
    : tools_(std::make_shared<HeadlessTools>(std::move(names))),
      utilities_(std::make_shared<HeadlessUtilities>()),
      toolsInstalled_(setTools, tools_),
      utilitiesInstalled_(setUtilities, utilities_)
{
}

}  // namespace pipespec::diagnostics
