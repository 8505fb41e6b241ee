// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/FrameCounter.h"
#include "dsp/delay/MDelayLine.h"
#include "tests/support/Noise.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numbers>
#include <utility>
#include <vector>

// What a moving delay time costs: the lines of six bands, two taps and two channels, each moved
// before every piece of 64 samples, against the same lines standing still and against stretching
// everything stored at each move.

namespace {

constexpr int kSampleRate = 48000;
constexpr int kLines = 6 * 2 * 2;
constexpr int kLength = 24'000;  // half a second
constexpr int kFrames = 64;

/// A length that swings by `depth` around its middle once a second, at most kLength.
int Moved(int piece, double depth) {
    const double angle = 2 * std::numbers::pi * piece * kFrames / kSampleRate;
    return static_cast<int>(kLength * (1 + depth * std::sin(angle)) / (1 + depth));
}

/// A line that stretches its samples at once, one after the other.
class PlainLine {
public:
    void Resize(int length, MGrowingBuffer<float>&) {
        if (length == static_cast<int>(samples_.size())) return;
        std::rotate(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(position_),
                    samples_.end());
        position_ = 0;
        std::vector<float> stretched(static_cast<std::size_t>(length));
        const double ratio = static_cast<double>(samples_.size() - 1) / (length - 1);
        for (int i = 0; i < length; ++i) {
            const double place = i * ratio;
            const std::size_t j = std::min(static_cast<std::size_t>(place), samples_.size() - 2);
            const auto f = static_cast<float>(place - static_cast<double>(j));
            stretched[i] = (1 - f) * samples_[j] + f * samples_[j + 1];
        }
        samples_ = stretched;
    }

    void Exchange(const float* in, float* out, int count) {
        for (int i = 0; i < count; ++i) {
            out[i] = std::exchange(samples_[position_], in[i]);
            position_ = position_ + 1 == samples_.size() ? 0 : position_ + 1;
        }
    }

private:
    std::vector<float> samples_ = std::vector<float>(kLength);
    std::size_t position_ = 0;
};

template <class Line>
void Retime(benchmark::State& state, double depth) {
    const auto lines = std::make_unique<Line[]>(kLines);
    MGrowingBuffer<float> scratch;
    Channels samples(2, kFrames);
    samples.FillWithNoise(1, 0.25f);
    int piece = 0;
    const auto run = [&] {
        for (int line = 0; line < kLines; ++line) {
            lines[line].Resize(Moved(piece, depth), scratch);
            lines[line].Exchange(samples[0].data(), samples[1].data(), kFrames);
        }
        benchmark::ClobberMemory();
        ++piece;
    };
    // Until all that the lines hold was written while they moved.
    for (int frames = 0; frames < 2 * kLength; frames += kFrames) run();
    for (auto _ : state) run();
    ReportFrames(state, kFrames);
    state.counters["percent_of_core"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kFrames / kSampleRate / 100,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void RetimeLines(benchmark::State& state, double depth) { Retime<MDelayLine>(state, depth); }
void RetimePlain(benchmark::State& state, double depth) { Retime<PlainLine>(state, depth); }

BENCHMARK_CAPTURE(RetimeLines, slow, 0.002)->Name("retime/24_lines");
BENCHMARK_CAPTURE(RetimePlain, slow, 0.002)->Name("retime/24_lines/reference");
BENCHMARK_CAPTURE(RetimeLines, deep, 0.5)->Name("retime/24_lines/deep");
BENCHMARK_CAPTURE(RetimeLines, still, 0.0)->Name("retime/24_lines/still");

}  // namespace
