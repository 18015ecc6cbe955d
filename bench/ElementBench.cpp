// Element creation at scale: N elements in one pipe class without the PDMS
// chapter, each from a catalogue component of its own, so that no element is
// ever questioned as a duplicate. The non-interactive road scans the class's
// elements for one of the same root before each creation; the interactive
// road does not ask and shows what creation costs without that scan.

#include "BenchSupport.h"
#include "diagnostics/HeadlessHost.h"
#include "elements/AddToPipeClass.h"
#include "platform/Database.h"
#include "platform/NameTable.h"

#include <benchmark/benchmark.h>

#include <optional>
#include <string>
#include <vector>

namespace pipespec {
namespace {

using bench::attribute;

// A catalogue of `count` components in the base project and an empty pipe
// class in the plant project, offered in 20 nominal diameters.
struct Catalogue {
    std::shared_ptr<platform::Database> database = platform::Database::create();
    std::vector<DeviceRef> components;
    DeviceRef pipeClass;

    explicit Catalogue(int count)
    {
        const auto base = database->addProject("BASE");
        const auto plant = database->addProject("PLANT", base);
        database->workset()->SetCurrentProject(plant);

        const auto catalog = base->addRoot("@40");
        components.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const auto name = bench::numbered("C", i);
            const auto component = asDevice(catalog->OwnElements()->CreateNewWithName(name));
            attribute(component, "GD", "VFCD", "10100");
            components.push_back(component);
        }

        pipeClass = asDevice(plant->addRoot("@20")->OwnElements()->CreateNewWithName("PC-A1"));
        attribute(pipeClass, "GD", "VFCD", "10000");
        attribute(pipeClass, "NR", "DNFROM", "15");
        attribute(pipeClass, "NR", "DNTO", "600");
        const auto list = attribute(pipeClass, "NR", "DNLIST", "");
        int row = 0;
        for (const int dn : {10, 15, 20, 25, 32, 40, 50, 65, 80, 100, 125, 150, 200, 250, 300, 350, 400, 500, 600, 700})
            list->SetXValue(row++, std::to_string(dn));
    }
};

void createElements(benchmark::State& state, bool interactive)
{
    const auto names = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
    const diagnostics::ScopedHeadlessHost host(names);
    host.tools().setTraceEnabled(false);
    const int count = static_cast<int>(state.range(0));

    // Made and dropped while the clock stands, so that only creation is timed.
    std::optional<Catalogue> catalogue;
    for (auto _ : state) {
        state.PauseTiming();
        catalogue.emplace(count);
        state.ResumeTiming();
        for (const auto& component : catalogue->components)
            benchmark::DoNotOptimize(addtopipeclass::NewPipeClassElement(component, catalogue->pipeClass, interactive));
        state.PauseTiming();
        if (catalogue->pipeClass->Devices()->Count() != count) state.SkipWithError("not every element was made");
        catalogue.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * count);
    state.SetComplexityN(count);
}

void BM_ElementCreation(benchmark::State& state) { createElements(state, false); }
void BM_ElementCreationInteractive(benchmark::State& state) { createElements(state, true); }

BENCHMARK(BM_ElementCreation)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(BM_ElementCreationInteractive)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace
}  // namespace pipespec
