// Heap per stored attribute: a database of a million attributes, once built
// in memory and once opened from its file, measured as the heap it holds.
// A measurement rather than a timing, so each is taken once; the counter
// kBytesPerAttribute is the figure, devices and chapters included.

#include "BenchSupport.h"
#include "platform/persistence/Persistence.h"

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace pipespec {
namespace {

// Bytes handed out by malloc and not yet freed: the arena's blocks and the
// large ones malloc maps on their own (hblkhd), which uordblks leaves out.
double heapInUse()
{
    const auto info = ::mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

// What `make` returns holds the million attributes while the heap is read.
template <class Make>
void measureHeap(benchmark::State& state, const Make& make)
{
    for (auto _ : state) {
        const double before = heapInUse();
        const auto held = make();
        state.counters[bench::kBytesPerAttribute] = (heapInUse() - before) / bench::kMillionAttributes;
    }
}

void BM_MemoryPerAttributeBuilt(benchmark::State& state)
{
    measureHeap(state, [] { return bench::attributeProject(bench::kMillionDevices); });
}
BENCHMARK(BM_MemoryPerAttributeBuilt)->Unit(benchmark::kSecond)->Iterations(1)->Repetitions(1);

// The file is made before the first reading, so that only what opening keeps
// is counted: the database and SQLite's cache of the open file.
void BM_MemoryPerAttributeOpened(benchmark::State& state)
{
    const auto& path = bench::millionFile();
    measureHeap(state, [&path] { return platform::ProjectFile::open(path); });
}
BENCHMARK(BM_MemoryPerAttributeOpened)->Unit(benchmark::kSecond)->Iterations(1)->Repetitions(1);

}  // namespace
}  // namespace pipespec
