// The database file: opening a project of a million attributes, saving ten
// thousand changed attributes, and saving a whole project next to a bare
// SQLite bulk insert of the same rows, so that the cost of our layer over
// SQLite can be read off as a ratio.

#include "BenchSupport.h"
#include "platform/persistence/Persistence.h"
#include "platform/persistence/PersistenceFormat.h"
#include "platform/persistence/SqliteFile.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace pipespec {
namespace {

using bench::attributeProject;
using bench::kAttributesPerDevice;
using bench::millionFile;
using bench::scratch;
using platform::ProjectFile;

void BM_PersistOpenMillionAttributes(benchmark::State& state)
{
    const auto& path = millionFile();
    for (auto _ : state) {
        auto file = ProjectFile::open(path);
        benchmark::DoNotOptimize(file.database());
        state.PauseTiming();
        {
            const auto closing = std::move(file);
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * bench::kMillionAttributes);
}
BENCHMARK(BM_PersistOpenMillionAttributes)->Unit(benchmark::kSecond)->Iterations(1);

void BM_PersistSaveTenThousandChanges(benchmark::State& state)
{
    auto file = ProjectFile::open(millionFile());
    const auto root = file.database()->project("PLANT")->root("@20");
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const auto value = "changed " + std::to_string(++round);
        // One attribute in each of 10,000 devices.
        for (const auto& device : root->ownChildren().items())
            device->ownSpecs().items().front()->ownSpecs().items().front()->SetValue(value);
        state.ResumeTiming();
        benchmark::DoNotOptimize(file.save());
    }
    state.SetItemsProcessed(state.iterations() * bench::kMillionDevices);
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
    rows.push_back({static_cast<std::int64_t>(object.uniqueNumber()),
                    static_cast<std::int64_t>(platform::format::kindOf(object)), owner,
                    static_cast<std::int64_t>(position), object.Name(),
                    spec ? std::string(spec->plainValue()) : std::string()});
    platform::format::forEachMember(object, [&](const auto& member, std::size_t at) {
        collect(*member, static_cast<std::int64_t>(object.uniqueNumber()), at, rows);
    });
}

void BM_PersistSaveWholeProject(benchmark::State& state)
{
    const auto database = attributeProject(static_cast<int>(state.range(0)));
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
    const auto database = attributeProject(static_cast<int>(state.range(0)));
    std::vector<Row> rows;
    for (const auto& root : database->projects().front()->roots().items()) collect(*root, 0, 0, rows);
    const auto path = scratch("raw.db");
    using platform::sqlite::Connection;
    for (auto _ : state) {
        std::filesystem::remove(path);
        const auto file = Connection::open(path, Connection::Mode::Create);
        // A plain SQLite file of our page size: its default journal on disk, full syncs.
        file.exec("PRAGMA page_size = " + std::to_string(platform::format::kPageSize) +
                  "; PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL");
        file.exec(platform::format::kSchema);
        platform::sqlite::Transaction transaction(file);
        auto insert = file.prepare("INSERT INTO objects(id, kind, project, owner, position, name, value) VALUES(?1, "
                                   "?2, 'PLANT', ?3, ?4, ?5, ?6)");
        for (const auto& row : rows) {
            insert.bind(1, row.id)
                .bind(2, row.kind)
                .bind(3, row.owner)
                .bind(4, row.position)
                .bind(5, row.name)
                .bind(6, row.value);
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
