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

// `count` variants of one flange in the base project and a PDMS class with a
// selector tree in the plant project.
struct PdmsCatalogue : bench::Projects {
    std::vector<DeviceRef> components;
    DeviceRef pipeClass;

    explicit PdmsCatalogue(int count)
    {
        // The folder of the state table, which the first element makes.
        base->tableRoot()->createChild("@3D")->createChild("00")->createChild("PDMS");
        const auto selectorBase = bench::selectorBase(*this);
        const auto catalog = base->root("@40");
        const auto flange = asDevice(catalog->OwnElements()->CreateNewWithName("FL-WN"));
        attribute(flange, "GD", "VFCD", "10100");
        attribute(flange, "PIPE", "VSTD", "FLAN");
        attribute(flange, "PIPE", "FTYPE", "WN");
        attribute(flange, "PDMS", "Selector", "");
        flange->Spec("PDMS")->SetControlProperties(
            "Cols:1;ColHorizontal:0;ColsTitles:VC11|;RowType:0;ColsSizes:0|800|;RowTitles:");
        components.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            const auto variant = asDevice(catalog->OwnElements()->CreateNewWithName(bench::numbered("FL-WN-", i)));
            variant->SetCDevice(flange);
            components.push_back(variant);
        }

        pipeClass = asDevice(plant->addRoot("@20")->OwnElements()->CreateNewWithName("PC-E3D"));
        attribute(pipeClass, "GD", "VFCD", "10001");
        attribute(pipeClass, "NR", "DNFROM", "15");
        attribute(pipeClass, "NR", "DNTO", "600");
        attribute(pipeClass, "PDMS", "State", "");
        attribute(pipeClass, "E3D", "MATXT", "");
        const auto root = asDevice(pipeClass->OwnElements()->CreateNewWithName("SelectorRoot"));
        root->SetCDevice(selectorBase);
        const auto flanges = bench::selector(root, "FLAN", "FLAN", "PIPE.FTYPE", selectorBase);
        for (const auto* type : {"WN", "BL"})
            bench::selector(flanges, std::string("FTYPE:") + type, type, "PDMS.PBOR1", selectorBase);
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
