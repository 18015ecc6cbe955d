// The wizard's engine on the sample project's catalogue: the components it
// offers a pipe class (what the panel shows on each Init), and the solving
// of a template class whose one placeholder stands for the 90-degree elbows
// of DN 15 to 300 (the classes' diameters).

#include "diagnostics/HeadlessHost.h"
#include "platform/JsonProject.h"
#include "qtplatform/WizardEngine.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <variant>

namespace {

using namespace pipespec;

struct Sample {
    platform::LoadedDatabase loaded = platform::loadJsonProject(
        platform::sampleProjectPath(), *platform::JsonNameTable::load(platform::JsonNameTable::shippedPath()));
    diagnostics::ScopedHeadlessHost host{loaded.names};

    Sample() { host.tools().setTraceEnabled(false); }

    DeviceRef pipeClass(const char* name) const
    {
        return asDevice(
            loaded.database->workset()->CurrentProject()->ObjectByPath(std::string("@20|PIPECLASSES|") + name, 1));
    }
};

void BM_WizardOffersSampleCatalogue(benchmark::State& state)
{
    const Sample sample;
    const auto pipeClass = sample.pipeClass("PC-A1-DIN");
    pipeClass->Spec("GD.ECHECK")->SetValue("1");
    qtplatform::WizardEngine engine;
    std::size_t offered = 0;
    for (auto _ : state) offered = engine.Offers(pipeClass).size();
    state.counters["catalogue"] = static_cast<double>(qtplatform::WizardEngine::Catalogue(pipeClass).size());
    state.counters["offered"] = static_cast<double>(offered);
}
BENCHMARK(BM_WizardOffersSampleCatalogue)->Unit(benchmark::kMillisecond);

void BM_WizardSolveTemplateSample(benchmark::State& state)
{
    const Sample sample;
    // The sample's structure class holds one placeholder: elbows DN 15 to DN 300.
    const auto pipeClass = sample.pipeClass("PC-S3-STRUCT");
    const auto workset = sample.loaded.database->workset();
    const auto undo = workset->NewUndoState();
    workset->SetCurrentUndoState(undo);
    qtplatform::WizardEngine engine;
    Variant made;
    for (auto _ : state) {
        engine.SolveTemplate(pipeClass, made);
        state.PauseTiming();
        undo->Undo();
        state.ResumeTiming();
    }
    const auto* count = std::get_if<std::int64_t>(&made.storage());
    if (!count || *count == 0) state.SkipWithError("solving made nothing");
    state.counters["elementsMade"] = count ? static_cast<double>(*count) : 0;
}
BENCHMARK(BM_WizardSolveTemplateSample)->Unit(benchmark::kMillisecond);

}  // namespace
