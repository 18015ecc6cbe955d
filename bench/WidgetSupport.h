#pragma once

// What the benchmarks of widgets need: an application object, offscreen.

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cstdlib>

namespace pipespec::bench {

// Made on first use, offscreen: a benchmark opens no window on anyone's desktop.
inline void needApplication()
{
    static int argc = 1;
    static char name[] = "pipespec_bench";
    static char* argv[] = {name, nullptr};
    static const bool offscreen = ::setenv("QT_QPA_PLATFORM", "offscreen", 1) == 0;
    static const QApplication application(argc, argv);
    benchmark::DoNotOptimize(offscreen);
}

}  // namespace pipespec::bench
