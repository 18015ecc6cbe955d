// The database file: opening a project of a million attributes, saving ten
// thousand changed attributes, and saving a whole project next to a bare
// SQLite bulk insert of the same rows, so that the cost of our layer over
// SQLite can be read off as a ratio.

#include "platform/Persistence.h"
#include "platform/PersistenceFormat.h"
#include "platform/SqliteFile.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace pipespec {
namespace {

using platform::Database;
using platform::ProjectFile;

constexpr int kAttributesPerDevice = 100;

std::filesystem::path scratch(const std::string& name)
{
    return std::filesystem::temp_directory_path() / ("pipespec-bench-" + std::to_string(::getpid()) + "-" + name);
}

// "D17": built by appending, which keeps GCC 12's -Wrestrict false alarm on
// "literal" + std::string at -O3 quiet.
std::string numbered(char prefix, int number)
{
    std::string name(1, prefix);
    name += std::to_string(number);
    return name;
}

// `devices` devices under one root, each with one chapter of 100 attributes.
std::shared_ptr<Database> project(int devices)
{
    auto database = Database::create();
    const auto root = database->addProject("PLANT")->addRoot("@20");
    for (int d = 0; d < devices; ++d) {
        const auto chapter = root->createChild(numbered('D', d))->createSpec("GD");
        for (int a = 0; a < kAttributesPerDevice; ++a) chapter->createSpec(numbered('A', a))->SetValue(std::to_string(a));
    }
    return database;
}

// A file of a million attributes, made once for the whole run and removed at its end.
const std::filesystem::path& millionFile()
{
    struct Scratch {
        std::filesystem::path path = scratch("million.pspec");
        Scratch() { ProjectFile::create(path, project(10'000)); }
        ~Scratch() { std::filesystem::remove(path); }
    };
    static const Scratch file;
    return file.path;
}

void BM_PersistOpenMillionAttributes(benchmark::State& state)
{
    const auto& path = millionFile();
    for (auto _ : state) {
        auto file = ProjectFile::open(path);
        benchmark::DoNotOptimize(file.database());
        state.PauseTiming();
        { const auto closing = std::move(file); }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * 10'000 * kAttributesPerDevice);
}
BENCHMARK(BM_PersistOpenMillionAttributes)->Unit(benchmark::kSecond)->Iterations(2);

void BM_PersistSaveTenThousandChanges(benchmark::State& state)
{
    auto file = ProjectFile::open(millionFile());
    const auto root = file.database()->project("PLANT")->root("@20");
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const auto value = "changed " + std::to_string(++round);
        // One attribute in each of 10,000 devices.
        for (const auto& device : root->ownChildren().items()) device->ownSpecs().items().front()->ownSpecs().items().front()->SetValue(value);
        state.ResumeTiming();
        benchmark::DoNotOptimize(file.save());
    }
    state.SetItemsProcessed(state.iterations() * 10'000);
}
BENCHMARK(BM_PersistSaveTenThousandChanges)->Unit(benchmark::kMillisecond)->Iterations(5);

// The rows of a whole project as our file has them, for the bare insert.
struct Row {
    std::int64_t id;
    std::int64_t kind;
    std::int64_t owner;
    std::int64_t position;
    std::string name;
    std::string value;
};

void collect(const platform::StoredObject& object, std::int64_t owner, std::size_t position, std::vector<Row>& rows)
{
    const auto* spec = dynamic_cast<const platform::Specification*>(&object);
    rows.push_back({static_cast<std::int64_t>(object.uniqueNumber()), static_cast<std::int64_t>(platform::format::kindOf(object)),
                    owner, static_cast<std::int64_t>(position), object.Name(), spec ? spec->plainValue() : std::string()});
    platform::format::forEachMember(object, [&](const auto& member, std::size_t at) {
        collect(*member, static_cast<std::int64_t>(object.uniqueNumber()), at, rows);
    });
}

void BM_PersistSaveWholeProject(benchmark::State& state)
{
    const auto database = project(static_cast<int>(state.range(0)));
    const auto path = scratch("whole.pspec");
    for (auto _ : state) {
        std::filesystem::remove(path);
        benchmark::DoNotOptimize(ProjectFile::create(path, database));
    }
    std::filesystem::remove(path);
    state.SetItemsProcessed(state.iterations() * state.range(0) * kAttributesPerDevice);
}
BENCHMARK(BM_PersistSaveWholeProject)->Arg(1'000)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_PersistRawBulkInsert(benchmark::State& state)
{
    const auto database = project(static_cast<int>(state.range(0)));
    std::vector<Row> rows;
    for (const auto& root : database->projects().front()->roots().items()) collect(*root, 0, 0, rows);
    const auto path = scratch("raw.db");
    using platform::sqlite::Connection;
    for (auto _ : state) {
        std::filesystem::remove(path);
        const auto file = Connection::open(path, Connection::Mode::Create);
        file.exec("PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL");
        file.exec(platform::format::kSchema);
        platform::sqlite::Transaction transaction(file);
        auto insert = file.prepare("INSERT INTO objects(id, kind, project, owner, position, name, value) VALUES(?1, ?2, 'PLANT', ?3, ?4, ?5, ?6)");
        for (const auto& row : rows) {
            insert.bind(1, row.id).bind(2, row.kind).bind(3, row.owner).bind(4, row.position).bind(5, row.name).bind(6, row.value);
            insert.run();
        }
        transaction.commit();
    }
    std::filesystem::remove(path);
    state.SetItemsProcessed(state.iterations() * state.range(0) * kAttributesPerDevice);
}
BENCHMARK(BM_PersistRawBulkInsert)->Arg(1'000)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace pipespec
