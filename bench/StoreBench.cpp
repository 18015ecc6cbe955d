// The object store on its own: making many devices under one owner the way
// element creation does (a free running number, then a few attributes),
// looking up an attribute through a chain of base objects, and resolving a
// catalogue path from the plant project.

#include "BenchSupport.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace pipespec {
namespace {

using bench::attribute;
using bench::numbered;
using bench::Projects;

void BM_StoreCreateDevicesWithAttributes(benchmark::State& state)
{
    const auto count = state.range(0);
    for (auto _ : state) {
        state.PauseTiming();
        auto projects = std::make_unique<Projects>();
        const auto elements = projects->plant->addRoot("@20")->OwnElements();
        state.ResumeTiming();

        for (std::int64_t i = 0; i < count; ++i) {
            const auto device = asDevice(elements->CreateNewWithName(elements->ItemName("001")));
            attribute(device, "GD", "VFCD", "10100");
            attribute(device, "GD", "Selector", "");
            attribute(device, "NR", "Lower", "15");
            attribute(device, "NR", "Upper", "600");
        }
        benchmark::DoNotOptimize(elements->Count());

        state.PauseTiming();
        projects.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_StoreCreateDevicesWithAttributes)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

// KIND <- COMPONENT in the catalogue, USER in the plant on COMPONENT: what
// USER reads of GD comes from three levels up, past chapters of other names.
struct ThreeLevels : Projects {
    DeviceRef user;

    ThreeLevels()
    {
        const auto catalogue = base->addRoot("@40");
        const auto kind = asDevice(catalogue->OwnElements()->CreateNewWithName("KIND"));
        const auto component = asDevice(catalogue->OwnElements()->CreateNewWithName("COMPONENT"));
        for (int i = 0; i < 20; ++i) {
            const auto name = numbered("A", i);
            attribute(kind, "GD", name, name);
            attribute(component, numbered("C", i % 5), name, name);
        }
        attribute(kind, "GD", "VFCD", "10100");
        component->SetCDevice(kind);
        user = asDevice(plant->addRoot("@20")->OwnElements()->CreateNewWithName("USER"));
        attribute(user, "OWN", "A", "a");
        user->SetCDevice(component);
    }
};

void BM_StoreSpecThroughThreeLevelCDeviceChain(benchmark::State& state)
{
    const ThreeLevels world;
    for (auto _ : state) benchmark::DoNotOptimize(world.user->Spec("GD.VFCD"));
}
BENCHMARK(BM_StoreSpecThroughThreeLevelCDeviceChain);

void BM_StoreSpecMissingAlongThreeLevelCDeviceChain(benchmark::State& state)
{
    const ThreeLevels world;
    for (auto _ : state) benchmark::DoNotOptimize(world.user->Spec("GD.NONE"));
}
BENCHMARK(BM_StoreSpecMissingAlongThreeLevelCDeviceChain);

// The catalogue owner path, eight levels deep with 20 siblings on each level,
// asked of the plant project, which has an @40 root of its own without it.
void BM_StoreObjectByPathClimbingToTheBaseProject(benchmark::State& state)
{
    const Projects projects;
    projects.plant->addRoot("@40");
    const std::string path = "@40|A20|Y00|A10|A30|Y00T00062|A02|B01";
    DeviceRef at = projects.base->addRoot("@40");
    std::string_view rest = std::string_view(path).substr(path.find('|') + 1);
    while (!rest.empty()) {
        const auto bar = rest.find('|');
        const std::string name(rest.substr(0, bar));
        rest = bar == std::string_view::npos ? std::string_view() : rest.substr(bar + 1);
        const auto elements = at->OwnElements();
        for (int i = 0; i < 20; ++i) elements->CreateNewWithName(name + "-" + std::to_string(i));
        at = asDevice(elements->CreateNewWithName(name));
    }
    if (projects.plant->ObjectByPath(path, 2) != at) {
        state.SkipWithError("the path does not lead to the catalogue owner");
        return;
    }
    for (auto _ : state) benchmark::DoNotOptimize(projects.plant->ObjectByPath(path, 2));
}
BENCHMARK(BM_StoreObjectByPathClimbingToTheBaseProject);

}  // namespace
}  // namespace pipespec
