#pragma once

// The services without a window: what the command line and the tests run
// on. Everything the logic reports, asks or logs is kept in memory, so a
// caller can read it back. Not synchronised: use it from one thread.

#include "diagnostics/ServiceRegistry.h"
#include "diagnostics/Translate.h"
#include "objectmodel/ServiceInterfaces.h"

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pipespec::diagnostics {

// How a trace shows an object ("Nothing" when there is none) and a value.
[[nodiscard]] std::string describeObject(const ObjectRef& object);
[[nodiscard]] std::string describeValue(const Variant& value);

enum class TraceKind { Enter, Leave, LeaveText, Text, Object, Value };

struct TraceLine {
    TraceKind kind = TraceKind::Text;
    std::string cls;
    std::string function;
    std::string text;  // empty for Enter and Leave; "label = what" for Object and Value

    bool operator==(const TraceLine&) const = default;
};

class HeadlessTools final : public IGlobalTools {
public:
    explicit HeadlessTools(std::shared_ptr<const INameTable> names = nullptr);

    void setNames(std::shared_ptr<const INameTable> names);
    std::shared_ptr<const INameTable> Names() const override;

    // On unless switched off globally or for that function; the lines of a
    // switched-off function are not recorded.
    bool TraceEnabled(std::string_view cls, std::string_view function) const override;
    void setTraceEnabled(bool on);
    void setTraceEnabled(std::string_view cls, std::string_view function, bool on);

    void TraceText(std::string_view cls, std::string_view function, std::string_view text) override;
    void TraceObject(std::string_view cls, std::string_view function, std::string_view label,
                     const ObjectRef& object) override;
    void TraceEnter(std::string_view cls, std::string_view function) override;
    void TraceLeave(std::string_view cls, std::string_view function) override;
    void TraceLeaveText(std::string_view cls, std::string_view function, std::string_view text) override;
    void TraceValue(std::string_view cls, std::string_view function, std::string_view label,
                    const Variant& value) override;

    const std::vector<TraceLine>& lines() const noexcept { return lines_; }
    void clear() noexcept { lines_.clear(); }

    // One readable line: "QuorlPipeSpecComp.AddToPipeClass CheckValid: <text>",
    // with "enter", "leave" or "leave: <text>" for the frame lines.
    [[nodiscard]] static std::string format(const TraceLine& line);

private:
    void record(TraceKind kind, std::string_view cls, std::string_view function, std::string text);

    std::shared_ptr<const INameTable> names_;
    bool enabled_ = true;
    // Class -> functions whose trace is switched off.
    std::map<std::string, std::set<std::string, std::less<>>, std::less<>> switchedOff_;
    std::vector<TraceLine> lines_;
};

struct ErrorReport {
    long number = 0;
    std::string description;
    std::string cls;
    std::string function;

    bool operator==(const ErrorReport&) const = default;
};

struct MessageBoxRecord {
    std::string text;
    int flags = 0;
    std::string title;
    int answer = 0;

    bool operator==(const MessageBoxRecord&) const = default;
};

class HeadlessUtilities final : public IUtilities {
public:
    // The function-code table is known from the start.
    static constexpr int kFunctionCodeTable = 4849;

    explicit HeadlessUtilities(LanguageTable language = {});

    // Kept; a report that cannot be kept (no memory) is dropped.
    void ReportError(const ErrorInfo& error, std::string_view cls, std::string_view function) noexcept override;
    const std::vector<ErrorReport>& errors() const noexcept { return errors_; }

    std::string Translate(std::string_view text) const override;
    void setLanguage(LanguageTable language) { language_ = std::move(language); }

    // Answers from the script, in order; with the script used up, the first
    // button of the box, except for yes/no boxes, which get the yes/no default.
    int MessageBox(std::string_view text, int flags, std::string_view title) override;
    void scriptAnswer(int answer) { script_.push_back(answer); }
    void setYesNoDefault(int answer) noexcept { yesNoDefault_ = answer; }
    const std::vector<MessageBoxRecord>& messageBoxes() const noexcept { return messageBoxes_; }

    void WriteLog(std::string_view text) override;
    const std::vector<std::string>& logLines() const noexcept { return log_; }

    void BeginRefresh() override { ++refreshes_; }
    int refreshCount() const noexcept { return refreshes_; }

    // No window and no colour scheme without a window: both give nullptr, so
    // code that reaches them must treat an empty reference as "no window".
    std::shared_ptr<IMainWindow> MainWindow() const override { return nullptr; }
    std::shared_ptr<ILook> Look() const override { return nullptr; }

    // A number without a path: error Configuration.
    std::string StandardTablePath(int number) const override;
    void setStandardTablePath(int number, std::string path);

    // Progress nobody watches: every step is kept ("title: done/total
    // current"), and the work is cancelled before item `cancelAt` when set.
    std::unique_ptr<IProgress> BeginProgress(std::string_view title, int total) override;
    void cancelProgressAt(int item) noexcept { cancelAt_ = item; }
    const std::vector<std::string>& progressSteps() const noexcept { return progress_; }

    // Forgets what was recorded; the script, paths and settings stay.
    void clear() noexcept;

private:
    [[nodiscard]] int unscriptedAnswer(int flags) const noexcept;

    LanguageTable language_;
    std::vector<ErrorReport> errors_;
    std::deque<int> script_;
    int yesNoDefault_ = mb::AnswerYes;
    std::vector<MessageBoxRecord> messageBoxes_;
    std::vector<std::string> log_;
    int refreshes_ = 0;
    int cancelAt_ = -1;
    std::vector<std::string> progress_;
    std::map<int, std::string> tablePaths_{{kFunctionCodeTable, "@3D|00|VFCD"}};
};

// Installs a fresh headless host for as long as it lives and puts the
// services it replaced back afterwards. For tests and the command line.
class ScopedHeadlessHost {
public:
    explicit ScopedHeadlessHost(std::shared_ptr<const INameTable> names = nullptr);

    HeadlessTools& tools() const noexcept { return *tools_; }
    HeadlessUtilities& utilities() const noexcept { return *utilities_; }

private:
    std::shared_ptr<HeadlessTools> tools_;
    std::shared_ptr<HeadlessUtilities> utilities_;
    ScopedService<IGlobalTools> toolsInstalled_;
    ScopedService<IUtilities> utilitiesInstalled_;
};

}  // namespace pipespec::diagnostics
