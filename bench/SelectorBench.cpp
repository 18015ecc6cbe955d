// The question walk as a selector tab refreshes it: every component of the
// tab walked down its selector chain and back up, all into one collection of
// question attributes. The tree is six questions deep with two answers on
// every level, and the components already carry their answers and their link,
// so the walk reads and makes nothing.

#include "BenchSupport.h"
#include "diagnostics/HeadlessHost.h"
#include "platform/JsonNameTable.h"
#include "selectors/Selectors.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace pipespec {
namespace {

using bench::attribute;
using bench::numbered;

constexpr int kLevels = 6;
constexpr int kComponents = 5000;

std::string question(int level) { return numbered("SEL.Q", level); }
// The components answer every question by one bit of their number.
const char* answerOf(int component, int level) { return (component >> (level - 1)) % 2 ? "B" : "A"; }

struct SelectorWorld : bench::Projects {
    DeviceRef pipeClass;
    DeviceRef selectorBase;
    std::vector<DeviceRef> components;

    SelectorWorld()
    {
        // What every selector is made from, and the generic-type menu.
        selectorBase = bench::selectorBase(*this);
        const auto menu = asDevice(base->addRoot("@3D")->OwnElements()->CreateNewWithName("@Menu"));
        menu->OwnElements()->CreateNewWithName("101XX")->SetDescription("FLAN");

        pipeClass = asDevice(plant->addRoot("@20")->OwnElements()->CreateNewWithName("PC-A1"));
        attribute(pipeClass, "GD", "VFCD", "10000");
        const auto root = asDevice(pipeClass->OwnElements()->CreateNewWithName("SelectorRoot"));
        root->SetCDevice(selectorBase);
        const auto top = selector(root, "FLAN", "FLAN", question(1));
        growChain(top, 1);

        for (int i = 0; i < kComponents; ++i) {
            const auto component = asDevice(pipeClass->OwnElements()->CreateNewWithName(numbered("E", i)));
            attribute(component, "GD", "VFCD", "10100");
            for (int level = 1; level <= kLevels; ++level)
                attribute(component, "SEL", numbered("Q", level), answerOf(i, level));
            components.push_back(component);
        }
    }

    DeviceRef selector(const DeviceRef& owner, const std::string& name, const std::string& answer,
                       const std::string& next) const
    {
        return bench::selector(owner, name, answer, next, selectorBase);
    }

    // Two children per level, named "Qn:A" and "Qn:B" as the walk looks them up.
    void growChain(const DeviceRef& parent, int level)
    {
        if (level > kLevels) return;
        for (const auto* answer : {"A", "B"}) {
            const auto child = selector(parent, numbered("Q", level) + ":" + answer, answer,
                                        level < kLevels ? question(level + 1) : std::string());
            growChain(child, level + 1);
        }
    }

    void walkAll() const
    {
        CollectionRef questions;
        for (const auto& component : components) {
            addtopipeclass::SpecMap bores;
            DeviceRef top;
            SpecRef shop;
            DeviceRef leaf;
            addtopipeclass::SetQuestion(pipeClass, component, questions, bores, top, shop, leaf, false);
        }
        benchmark::DoNotOptimize(questions);
    }
};

void BM_SetQuestionReadOnlyWalkOfOneTab(benchmark::State& state)
{
    const auto names = platform::JsonNameTable::load(platform::JsonNameTable::shippedPath());
    const diagnostics::ScopedHeadlessHost host(names);
    host.tools().setTraceEnabled(false);
    const SelectorWorld world;
    // The first walk gives every component its link to the leaf; the timed
    // walks then find everything in place.
    world.walkAll();
    if (!host.utilities().errors().empty()) state.SkipWithError(host.utilities().errors().front().description.c_str());
    const auto link = world.components.back()->Spec("SEL.Selector");
    if (!link || !link->LinkObject() ||
        link->LinkObject()->Name() != numbered("Q", kLevels) + ":" + answerOf(kComponents - 1, kLevels))
        state.SkipWithError("the walk did not reach the leaves");
    for (auto _ : state) world.walkAll();
    state.SetItemsProcessed(state.iterations() * kComponents);
}
BENCHMARK(BM_SetQuestionReadOnlyWalkOfOneTab)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pipespec
