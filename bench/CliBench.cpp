// The command line at scale: `add` with 1,000 component names on the sample's
// catalogue grown by 20,000 components, the whole run as a user starts it.
// The database file is opened, the names are looked up, the elements made and
// reported; it is a dry run, so the file stays as it was for the next run.

#include "BenchSupport.h"
#include "cli/Arguments.h"
#include "cli/Commands.h"
#include "platform/JsonNameTable.h"
#include "platform/JsonProject.h"
#include "platform/persistence/Persistence.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace pipespec {
namespace {

using nlohmann::json;

constexpr int kCatalogueSize = 20'000;
constexpr int kNamed = 1'000;

std::string bulkName(int number) { return bench::numbered("FL-BULK-", number); }

// The entry of `name` in a list of named JSON objects.
json& named(json& list, const std::string& name)
{
    const auto found = std::find_if(list.begin(), list.end(), [&](const json& entry) { return entry["name"] == name; });
    if (found == list.end()) throw std::runtime_error("the sample project has no " + name);
    return *found;
}

// The sample project with kCatalogueSize more weld-neck flanges in the base
// catalogue, made as the sample's own are; a file made once for the whole run.
const std::filesystem::path& bulkCatalogueFile()
{
    struct Scratch {
        std::filesystem::path path = bench::scratch("catalogue.pspec");
        Scratch()
        {
            json document = json::parse(std::ifstream(platform::sampleProjectPath()));
            auto& catalogue = named(named(named(document["projects"], "BASE")["roots"], "@40")["devices"], "CAT");
            json bulk = {{"name", "BULK"}, {"folder", true}, {"devices", json::array()}};
            for (int i = 0; i < kCatalogueSize; ++i)
                bulk["devices"].push_back(
                    {{"name", bulkName(i)},
                     {"cdevice", "BASE:@40|CAT|BASE|FL-WN"},
                     {"specs",
                      {{{"name", "CONN"},
                        {"specs", {{{"name", "DN1"}, {"value", "100"}, {"table", "BASE:@3D|01|DIN|05"}}}}}}}});
            catalogue["devices"].push_back(std::move(bulk));
            const auto names = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
            platform::ProjectFile::create(path, platform::readJsonProject(document, "bench", *names).database);
        }
        Scratch(const Scratch&) = delete;
        Scratch& operator=(const Scratch&) = delete;
        ~Scratch() { std::filesystem::remove(path); }
    };
    static const Scratch file;
    return file.path;
}

void BM_CliAddThousandOfTwentyThousand(benchmark::State& state)
{
    std::vector<std::string> words{"pipespec", "add",       "--dry-run", "--duplicates",
                                   "yes",      "--choose",  "cancel",    "--json",
                                   "--class",  "PC-A1-DIN", "--db",      bulkCatalogueFile().string()};
    for (int i = 0; i < kNamed; ++i) words.push_back(bulkName(i * (kCatalogueSize / kNamed)));
    std::vector<const char*> argv;
    for (const auto& word : words) argv.push_back(word.c_str());
    auto args = cli::Arguments::parse(static_cast<int>(argv.size()), argv.data());
    const auto& all = cli::commands();
    const auto& add = *std::find_if(all.begin(), all.end(),
                                    [](const cli::CommandInfo& c) { return c.name == std::string_view("add"); });
    args.accept(add.accepts);

    for (auto _ : state) {
        std::ostringstream report;
        if (add.run(args, report) != cli::exitcode::Success) state.SkipWithError("add refused a component");
        benchmark::DoNotOptimize(report);
    }
    state.SetItemsProcessed(state.iterations() * kNamed);
}
BENCHMARK(BM_CliAddThousandOfTwentyThousand)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace pipespec
