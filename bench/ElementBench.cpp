// Element creation at scale: N elements in one pipe class without the PDMS
// chapter, each from a catalogue component of its own, so that no element is
// ever questioned as a duplicate. The non-interactive road scans the class's
// elements for one of the same root before each creation; the interactive
// road does not ask and shows what creation costs without that scan.
//
// The PDMS road: N variants of one flange dropped on a class for the outside
// design system. Every drop after the first is a duplicate of the same root,
// answered yes; each element gets its chapter cards and state column and walks
// the selector tree by its own answer down to a bore question.

#include "BenchSupport.h"
#include "diagnostics/HeadlessHost.h"
#include "elements/AddToPipeClass.h"
#include "platform/JsonNameTable.h"
#include "platform/store/Database.h"

#include <benchmark/benchmark.h>

#include <optional>
#include <string>
#include <vector>

namespace pipespec {
namespace {

using bench::Catalogue;
using bench::PdmsCatalogue;

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

void BM_ElementCreationPdms(benchmark::State& state)
{
    const auto names = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
    const diagnostics::ScopedHeadlessHost host(names);
    host.tools().setTraceEnabled(false);
    host.utilities().setYesNoDefault(mb::AnswerYes);
    const int count = static_cast<int>(state.range(0));

    std::optional<PdmsCatalogue> catalogue;
    for (auto _ : state) {
        state.PauseTiming();
        catalogue.emplace(count);
        state.ResumeTiming();
        for (const auto& component : catalogue->components)
            benchmark::DoNotOptimize(addtopipeclass::NewPipeClassElement(component, catalogue->pipeClass, false));
        state.PauseTiming();
        // The elements and the selector root; the last element walked to its leaf.
        const auto elements = catalogue->pipeClass->Devices();
        if (elements->Count() != count + 1) state.SkipWithError("not every element was made");
        const auto link = elements->Item(elements->Count())->Spec("PDMS.Selector");
        if (!link || !link->LinkObject() || link->LinkObject()->Name() != "FTYPE:WN")
            state.SkipWithError("the walk did not reach the leaf");
        if (!host.utilities().errors().empty())
            state.SkipWithError(host.utilities().errors().front().description.c_str());
        catalogue.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * count);
    state.SetComplexityN(count);
}

void BM_ElementCreation(benchmark::State& state) { createElements(state, false); }
void BM_ElementCreationInteractive(benchmark::State& state) { createElements(state, true); }

// Run once: these have no target and show how creation grows; at 10,000
// elements the scan alone makes a run take some seconds.
BENCHMARK(BM_ElementCreation)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity()->Repetitions(1);
BENCHMARK(BM_ElementCreationInteractive)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity()
    ->Repetitions(1);
BENCHMARK(BM_ElementCreationPdms)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace
}  // namespace pipespec
