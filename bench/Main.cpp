// The benchmark program: Google Benchmark's own output first, then one table
// of the figures that have a performance target, each judged against it. The
// table is markdown, so that it can go into the README as printed.

#include "BenchSupport.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using benchmark::BenchmarkReporter;
using Run = BenchmarkReporter::Run;

// What a target compares. Times are wall times in seconds.
enum class Check {
    WallAtMost,      // the benchmark's time at most `limit`
    GrowthFrom,      // no target: the benchmark's time over `other`'s, shown
    SpeedOfAtLeast,  // `other`'s time over the benchmark's at least `limit`
    BytesAtMost,     // the benchmark's bytes per attribute at most `limit`
};

struct Target {
    const char* benchmark;  // function name, then the arguments as the console shows them
    const char* work;
    Check check;
    double limit = 0;
    const char* other = nullptr;
};

// The performance targets, each with the benchmark that measures its work.
constexpr Target kTargets[] = {
    {"BM_ElementCreationPdms/10000", "Drop 10,000 components on a PDMS class, duplicates answered yes",
     Check::WallAtMost, 2.0},
    {"BM_ElementCreationPdms/10000", "The same drop: growth from 1,000 components", Check::GrowthFrom, 0,
     "BM_ElementCreationPdms/1000"},
    {"BM_SetQuestionReadOnlyWalkOfOneTab", "SetQuestion walk over the 5,000 components of one tab, 6 levels",
     Check::WallAtMost, 0.050},
    {"BM_QueryRefresh50k/sortByName:0", "Refresh 50,000 rows, filter and numeric sort, read one screen",
     Check::WallAtMost, 0.200},
    {"BM_QueryRefresh50k/sortByName:1", "Refresh 50,000 rows, filter and text sort, read one screen", Check::WallAtMost,
     0.200},
    {"BM_PersistOpenMillionAttributes", "Open a database of 1,000,000 attributes", Check::WallAtMost, 1.5},
    {"BM_PersistSaveTenThousandChanges", "Save 10,000 changed objects", Check::WallAtMost, 0.100},
    {"BM_PersistSaveWholeProject/1000", "Save a whole project, speed against a raw SQLite insert",
     Check::SpeedOfAtLeast, 0.5, "BM_PersistRawBulkInsert/1000"},
    {"BM_MemoryPerAttributeBuilt", "Heap per attribute, 1,000,000 built in memory", Check::BytesAtMost, 200},
    {"BM_MemoryPerAttributeOpened", "Heap per attribute, 1,000,000 opened from a file", Check::BytesAtMost, 200},
    {"BM_CliAddThousandOfTwentyThousand", "Command line add: 1,000 names on a catalogue of 20,000 components",
     Check::WallAtMost, 1.0},
    {"BM_QtGridShowQuery50k", "Qt grid: show a 50,000-row query, up to its first painted screen", Check::WallAtMost,
     0.300},
    {"BM_QtGridScrollOneScreen50k", "Qt grid: scroll 50,000 rows by one screen and paint it", Check::WallAtMost, 0.016},
    {"BM_ComponentListPipeClass50k", "Component list: set a class of 50,000 elements, up to its first painted screen",
     Check::WallAtMost, 0.300},
    {"BM_ComponentListDrop1000", "Component list: drop 1,000 components on a class (create, reread, select)",
     Check::WallAtMost, 0.500},
    {"BM_ComponentListDrop1000Pdms", "Component list: the same drop on a PDMS class, selector walk included",
     Check::WallAtMost, 1.0},
    {"BM_ComponentSearch50k", "Component search over a class of 50,000 elements", Check::WallAtMost, 0.050},
};

// Repetitions unless the command line says how many: the table shows their medians.
constexpr std::string_view kRepetitionsFlag = "--benchmark_repetitions";
constexpr int kRepetitions = 5;

// One benchmark instance as the table reads it.
struct Measured {
    double wall = 0;  // seconds
    double cpu = 0;   // seconds
    double bytesPerAttribute = 0;
    std::int64_t runs = 0;
    bool failed = false;
};

// A measured figure: three significant digits, "2.20", "0.497" and "219" alike.
std::string threeDigits(double value)
{
    const int magnitude = std::isfinite(value) && value > 0 ? static_cast<int>(std::floor(std::log10(value))) : 0;
    std::ostringstream text;
    text << std::fixed << std::setprecision(std::max(0, 2 - magnitude)) << value;
    return text.str();
}

// A target as one would write it: "2", "1.5", "200".
std::string asWritten(double value)
{
    std::ostringstream text;
    text << value;
    return text.str();
}

// A duration in the unit that suits it, the number written by `number`.
std::string duration(double seconds, std::string (*number)(double))
{
    if (seconds >= 1) return number(seconds).append(" s");
    if (seconds >= 1e-3) return number(seconds * 1e3).append(" ms");
    return number(seconds * 1e6).append(" us");
}

std::string prefixed(const char* prefix, const std::string& text) { return std::string(prefix).append(text); }

std::string targetText(const Target& target)
{
    switch (target.check) {
    case Check::WallAtMost: return prefixed("<= ", duration(target.limit, asWritten));
    case Check::GrowthFrom: return "none (x10 is linear)";
    case Check::SpeedOfAtLeast: return prefixed(">= ", asWritten(target.limit)).append(" of raw");
    case Check::BytesAtMost: return prefixed("<= ", asWritten(target.limit)).append(" B");
    }
    return {};
}

// What the table says of one target's measurement.
struct Judgement {
    std::string wall;
    std::string cpu;
    std::string met;
};

Judgement judged(const Target& target, const Measured& figures, const Measured* other)
{
    if (figures.failed || (other && other->failed)) return {"-", "-", "FAILED"};
    const auto yes = [](bool met) { return std::string(met ? "yes" : "NO"); };
    switch (target.check) {
    case Check::WallAtMost:
        return {duration(figures.wall, threeDigits), duration(figures.cpu, threeDigits),
                yes(figures.wall <= target.limit)};
    case Check::GrowthFrom:
        return {prefixed("x", threeDigits(figures.wall / other->wall)),
                prefixed("x", threeDigits(figures.cpu / other->cpu)), "-"};
    case Check::SpeedOfAtLeast:
        return {threeDigits(other->wall / figures.wall).append(" of raw"),
                threeDigits(other->cpu / figures.cpu).append(" of raw"),
                yes(other->wall / figures.wall >= target.limit)};
    case Check::BytesAtMost:
        return {threeDigits(figures.bytesPerAttribute).append(" B"), "-",
                yes(figures.bytesPerAttribute <= target.limit)};
    }
    return {};
}

using Row = std::array<std::string, 7>;

void printTable(std::ostream& out, const std::vector<Row>& rows)
{
    const Row head{"Benchmark", "Work", "Median wall", "Median CPU", "Target", "Met", "Runs"};
    std::array<std::size_t, head.size()> width{};
    for (std::size_t column = 0; column < head.size(); ++column) {
        width[column] = head[column].size();
        for (const auto& row : rows) width[column] = std::max(width[column], row[column].size());
    }
    const auto line = [&](const Row& row) {
        for (std::size_t column = 0; column < row.size(); ++column)
            out << "| " << std::left << std::setw(static_cast<int>(width[column])) << row[column] << ' ';
        out << "|\n";
    };
    line(head);
    Row rule;
    std::transform(width.begin(), width.end(), rule.begin(), [](std::size_t size) { return std::string(size, '-'); });
    line(rule);
    for (const auto& row : rows) line(row);
}

// Passes every report on to the display reporter the command line chose and
// keeps each instance's median; at the end prints the table of the targets
// whose benchmarks ran.
class TargetReporter final : public BenchmarkReporter {
public:
    explicit TargetReporter(std::unique_ptr<BenchmarkReporter> display) : display_(std::move(display)) {}

    bool ReportContext(const Context& context) override { return display_->ReportContext(context); }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        display_->ReportRuns(runs);
        // An instance reports its repetitions before their aggregates, so the
        // last report kept is the median, or the only run when there is one.
        for (const auto& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") continue;
            const double unitsPerSecond = benchmark::GetTimeUnitMultiplier(run.time_unit);
            const auto bytes = run.counters.find(pipespec::bench::kBytesPerAttribute);
            measured_[instanceName(run)] = {
                run.GetAdjustedRealTime() / unitsPerSecond, run.GetAdjustedCPUTime() / unitsPerSecond,
                bytes == run.counters.end() ? 0.0 : bytes->second.value, run.repetitions, run.error_occurred};
        }
    }

    void Finalize() override
    {
        display_->Finalize();
        // JSON and CSV output stay machine-readable.
        if (!dynamic_cast<const benchmark::ConsoleReporter*>(display_.get())) return;
        std::vector<Row> rows;
        for (const auto& target : kTargets) {
            const auto* figures = find(target.benchmark);
            const auto* other = target.other ? find(target.other) : nullptr;
            if (!figures || (target.other && !other)) continue;
            auto [wall, cpu, met] = judged(target, *figures, other);
            rows.push_back({target.benchmark, target.work, std::move(wall), std::move(cpu), targetText(target),
                            std::move(met), std::to_string(figures->runs)});
        }
        if (rows.empty()) return;
        auto& out = display_->GetOutputStream();
        out << "\nPerformance targets (medians of the runs of each benchmark):\n\n";
        printTable(out, rows);
    }

private:
    static std::string instanceName(const Run& run)
    {
        auto name = run.run_name.function_name;
        if (!run.run_name.args.empty()) name.append("/").append(run.run_name.args);
        return name;
    }

    const Measured* find(const std::string& name) const
    {
        const auto found = measured_.find(name);
        return found == measured_.end() ? nullptr : &found->second;
    }

    std::unique_ptr<BenchmarkReporter> display_;
    std::map<std::string, Measured> measured_;
};

}  // namespace

int main(int argc, char** argv)
{
    std::vector<char*> arguments(argv, argv + argc);
    std::string repetitions(kRepetitionsFlag);
    repetitions.append("=").append(std::to_string(kRepetitions));
    if (std::none_of(arguments.begin() + 1, arguments.end(),
                     [](const char* argument) { return std::string_view(argument).starts_with(kRepetitionsFlag); }))
        arguments.push_back(repetitions.data());
    int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);

    // The widgets' benchmarks need an application, offscreen: no window opens
    // on anyone's desktop. It lives until the benchmarks are done.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int qtCount = 1;
    const QApplication application(qtCount, argv);

    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
    TargetReporter reporter{std::unique_ptr<BenchmarkReporter>(benchmark::CreateDefaultDisplayReporter())};
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
