// The component list as a user meets it: a pipe class of 50,000 elements set
// on the list until its first screen is painted, and a drop of 1,000
// catalogue components on the list (creation, re-reading the elements,
// selecting the new rows), on a class without and with the PDMS chapter.

#include "BenchSupport.h"
#include "componentlist/PipeSpecComp.h"
#include "diagnostics/HeadlessHost.h"
#include "qtplatform/QtGrid.h"

#include <QApplication>
#include <QPixmap>

#include <benchmark/benchmark.h>

#include <optional>

namespace pipespec {
namespace {

constexpr int kElements = 50'000;
constexpr int kDropped = 1'000;

void BM_ComponentListPipeClass50k(benchmark::State& state)
{
    const diagnostics::ScopedHeadlessHost host(bench::shippedNames());
    host.tools().setTraceEnabled(false);
    const bench::LargeClass large(kElements);
    componentlist::PipeSpecComp list;
    list.resize(1200, 800);
    list.show();
    list.SetPipeClass(large.pipeClass);  // Stores the standard query once, as a first opening does.
    for (auto _ : state) {
        list.SetPipeClass(nullptr);
        list.SetPipeClass(large.pipeClass);
        benchmark::DoNotOptimize(list.grab());
    }
    if (list.grid().tableModel().rowCount() != kElements) state.SkipWithError("not every element is listed");
}
BENCHMARK(BM_ComponentListPipeClass50k)->Unit(benchmark::kMillisecond);

// Drops `kDropped` components of a fresh catalogue on a list of its class.
template <class Catalogue>
void dropOnList(benchmark::State& state)
{
    const diagnostics::ScopedHeadlessHost host(bench::shippedNames());
    host.tools().setTraceEnabled(false);
    host.utilities().setYesNoDefault(mb::AnswerYes);
    for (auto _ : state) {
        state.PauseTiming();
        std::optional<Catalogue> catalogue(kDropped);
        std::optional<componentlist::PipeSpecComp> list(std::in_place);
        list->resize(1200, 800);
        list->SetPipeClass(catalogue->pipeClass);
        const auto dropped = catalogue->database->workset()->NewCollection();
        for (const auto& component : catalogue->components) dropped->Add(component);
        state.ResumeTiming();
        list->AddCDevicesToPipeClass(dropped);
        state.PauseTiming();
        if (list->grid().SelectedObjects()->Count() != kDropped) state.SkipWithError("not every new row is selected");
        list.reset();
        catalogue.reset();
        state.ResumeTiming();
    }
}

void BM_ComponentListDrop1000(benchmark::State& state) { dropOnList<bench::Catalogue>(state); }
void BM_ComponentListDrop1000Pdms(benchmark::State& state) { dropOnList<bench::PdmsCatalogue>(state); }
BENCHMARK(BM_ComponentListDrop1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ComponentListDrop1000Pdms)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pipespec
