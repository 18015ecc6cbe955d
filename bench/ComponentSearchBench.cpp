// The component search over a pipe class of 50,000 elements, as a user
// changes the diameter with AutoFind on: the helper's search, the query over
// what it found and the grid's refresh.

#include "BenchSupport.h"
#include "componentsearch/PipeCompSearch.h"
#include "diagnostics/HeadlessHost.h"
#include "qtplatform/QtGrid.h"

#include <QAction>
#include <QComboBox>

#include <benchmark/benchmark.h>

namespace pipespec {
namespace {

void BM_ComponentSearch50k(benchmark::State& state)
{
    const diagnostics::ScopedHeadlessHost host(bench::shippedNames());
    host.tools().setTraceEnabled(false);
    const bench::LargeClass large(50'000);
    componentsearch::PipeCompSearch search;
    search.resize(1200, 800);
    search.show();
    search.SetPipeClass(large.pipeClass);
    search.autoFind().trigger();
    auto& codes = search.functionCodes();
    codes.setCurrentIndex(codes.findText("Function 10100"));
    emit codes.activated(codes.currentIndex());
    // Two diameters in turn, so that every pick searches.
    auto& diameters = search.diameters();
    const int picks[] = {diameters.findText("DN 100"), diameters.findText("DN 50")};
    int turn = 0;
    for (auto _ : state) {
        diameters.setCurrentIndex(picks[turn]);
        emit diameters.activated(picks[turn]);
        turn = 1 - turn;
    }
    // 10100 is every 900th element of 50,000: 56 rows.
    if (search.grid().tableModel().rowCount() != 56) state.SkipWithError("the search found other rows");
}
BENCHMARK(BM_ComponentSearch50k)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace pipespec
