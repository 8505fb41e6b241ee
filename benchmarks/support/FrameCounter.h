// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <benchmark/benchmark.h>

/// Reports "ns_per_frame" for a benchmark whose every iteration processed `frames` frames.
inline void ReportFrames(benchmark::State& state, int frames) {
    state.SetItemsProcessed(state.iterations() * frames);
    state.counters["ns_per_frame"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * frames * 1e-9,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
