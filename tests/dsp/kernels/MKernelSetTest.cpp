// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MBiquad.h"
#include "dsp/kernels/MKernelSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <span>
#include <vector>

namespace {

constexpr int kRoom = 600;  // samples, more than any kernel below touches

template <class Numbers>
bool SameBits(const Numbers& one, const Numbers& other) {
    return std::ranges::equal(std::as_bytes(std::span(one)), std::as_bytes(std::span(other)));
}

/// Everything that a kernel may read or write, filled from a seed and read from `offset` on.
struct Workbench {
    std::vector<float> floats[6];
    std::vector<double> doubles[2];
    MBiquadState states[4];
    int offset;

    Workbench(unsigned seed, int start) : offset(start) {
        std::mt19937 generator(seed);
        std::uniform_real_distribution<double> uniform(-1.5, 1.5);
        for (auto& buffer : floats) {
            for (int i = 0; i < kRoom; ++i)
                buffer.push_back(static_cast<float>(uniform(generator)));
        }
        for (auto& buffer : doubles) {
            for (int i = 0; i < kRoom; ++i) buffer.push_back(uniform(generator));
        }
        for (MBiquadState& state : states) state = {uniform(generator), uniform(generator)};
    }

    float* Floats(int index) { return floats[index].data() + offset; }
    double* Doubles(int index) { return doubles[index].data() + offset; }

    bool HasBitsOf(const Workbench& other) const {
        bool isEqual = SameBits(states, other.states);
        for (int i = 0; i < 6; ++i) isEqual = isEqual && SameBits(floats[i], other.floats[i]);
        for (int i = 0; i < 2; ++i) isEqual = isEqual && SameBits(doubles[i], other.doubles[i]);
        return isEqual;
    }
};

struct Row {
    const char* name;
    void (*run)(const MDelayKernels& kernels, Workbench& bench, int count);
};

constexpr MLoopRamps kMoving = {
    .feedback = {0.1, 0.0031}, .gain = {0.7, -0.0011}, .panorama = {-0.4, 0.0043}, .first = 3};
constexpr MLoopRamps kStill = {
    .feedback = {0.37, 0}, .gain = {0.61, 0}, .panorama = {0.23, 0}, .first = 0};
constexpr MLoopRamps kCentred = {
    .feedback = {0.37, 0}, .gain = {0.61, 0}, .panorama = {0, 0}, .first = 0};

void Clean(const MDelayKernels& kernels, Workbench& b, int count) {
    b.Floats(0)[count / 2] = std::numeric_limits<float>::quiet_NaN();
    b.Floats(0)[count / 3] = -std::numeric_limits<float>::infinity();
    b.Floats(0)[0] = 1e38f;
    kernels.copyClean(b.Floats(0), b.Floats(1), 1.25f, count);
}

void Mix(const MDelayKernels& kernels, Workbench& b, int count) {
    kernels.mixLoop(MLoopMix::Default, kMoving, b.Floats(0), b.Floats(1), b.Doubles(0), count);
    kernels.mixLoop(MLoopMix::Classic, kStill, b.Floats(2), b.Floats(3), b.Doubles(1), count);
}

void MixPingPong(const MDelayKernels& kernels, Workbench& b, int count) {
    const float* const input[2] = {b.Floats(0), b.Floats(1)};
    const float* const echo[2] = {b.Floats(2), b.Floats(3)};
    double* const loop[2] = {b.Doubles(0), b.Doubles(1)};
    kernels.mixPingPong(kMoving, input, echo, loop, count);
}

void AddPanned(const MDelayKernels& kernels, Workbench& b, int count) {
    const float* const echo[2] = {b.Floats(0), b.Floats(1)};
    for (const MLoopRamps& ramps : {kMoving, kStill, kCentred}) {
        float* const output[2] = {b.Floats(2), b.Floats(3)};
        kernels.addPanned(ramps, echo, output, count);
    }
}

void ExchangeAndOutput(const MDelayKernels& kernels, Workbench& b, int count) {
    for (const MLoopMix mix : {MLoopMix::Classic, MLoopMix::Default}) {
        for (const bool adds : {false, true}) {
            for (const double step : {0.0, 0.0021}) {
                kernels.exchangeAndOutput({mix, {0.7, step}, {1.1, -step}, 3, adds}, b.Floats(0),
                                          b.Floats(1), b.Floats(2), 1.2f, count);
            }
        }
    }
}

void ExchangePanned(const MDelayKernels& kernels, Workbench& b, int count) {
    const float* const input[2] = {b.Floats(0), b.Floats(1)};
    float* const line[2] = {b.Floats(2), b.Floats(3)};
    float* const output[2] = {b.Floats(4), b.Floats(5)};
    for (const MLoopMix mix : {MLoopMix::Classic, MLoopMix::Default}) {
        kernels.exchangePanned({mix, kStill, false}, input, line, output, 1.2f, count);
        kernels.exchangePanned({mix, kMoving, true}, input, line, output, 1.2f, count);
    }
}

void Filter(const MDelayKernels& kernels, Workbench& b, int count) {
    const MBiquadCoefficients low = DesignBiquad(BiquadType::LowPass, 3000, 0.9, 48000);
    const MBiquadCoefficients high = DesignBiquad(BiquadType::HighPass, 300, 0.9, 48000);
    double* const loop[2] = {b.Doubles(0), b.Doubles(1)};
    float* const input[2] = {b.Floats(0), b.Floats(1)};
    for (const int channels : {1, 2}) {
        for (const MFilterPair& pair : {MFilterPair{&low, &high, b.states, b.states + 2},
                                        MFilterPair{nullptr, &high, b.states, b.states + 2},
                                        MFilterPair{&low, nullptr, b.states, b.states + 2}}) {
            kernels.filterLoop(pair, 0.8, loop, channels, count);
            kernels.filterInput(pair, input, channels, count);
        }
    }
}

const Row kRows[] = {
    {"copyClean", Clean},
    {"exchange",
     [](const MDelayKernels& k, Workbench& b, int n) {
         k.exchange(MLoopMix::Classic, kMoving, b.Floats(0), b.Floats(1), b.Floats(2), 1.2f, n);
         k.exchange(MLoopMix::Default, kStill, b.Floats(0), b.Floats(1), b.Floats(3), 1.2f, n);
     }},
    {"exchangeAndOutput", ExchangeAndOutput},
    {"exchangePanned", ExchangePanned},
    {"mixLoop", Mix},
    {"mixPingPong", MixPingPong},
    {"filterLoop and filterInput", Filter},
    {"saturate",
     [](const MDelayKernels& k, Workbench& b, int n) {
         k.saturate({3.1, 1.01, 0.7, 0.8}, b.Doubles(0), n);
     }},
    {"freeze", [](const MDelayKernels& k, Workbench& b,
                  int n) { k.freeze(b.Floats(0), b.Floats(1), b.Doubles(0), n); }},
    {"store", [](const MDelayKernels& k, Workbench& b,
                 int n) { k.store(b.Doubles(0), b.Floats(0), 1.2f, n); }},
    {"addPanned", AddPanned},
    {"addScaled", [](const MDelayKernels& k, Workbench& b,
                     int n) { k.addScaled(kMoving, b.Floats(0), b.Floats(1), n); }},
    {"add",
     [](const MDelayKernels& k, Workbench& b, int n) { k.add(b.Floats(0), b.Floats(1), n); }},
    {"stretch",
     [](const MDelayKernels& k, Workbench& b, int n) {
         for (const double rate : {0.001, 0.4, 0.985, 1.0, 1.004, 1.9})
             k.stretch({0.3 + n % 7, rate, n, static_cast<int>(n * rate)}, b.Floats(0), b.Floats(1),
                       n);
     }},
};

}  // namespace

TEST(MKernelSet, GivesTheSameBitsInEverySet) {
    const std::span<const MKernelSet> sets = RunnableKernels();
    if (sets.size() < 2) GTEST_SKIP() << "this machine runs one set only";
    for (const Row& row : kRows) {
        for (const int count : {1, 2, 3, 4, 5, 7, 8, 15, 16, 31, 97, 256}) {
            for (const int offset : {0, 1, 3}) {
                const auto seed = static_cast<unsigned>(count * 10 + offset);
                Workbench plain(seed, offset);
                row.run(*sets[0].delay, plain, count);
                ASSERT_FALSE(plain.HasBitsOf(Workbench(seed, offset)))
                    << row.name << " did nothing";
                for (const MKernelSet& set : sets.subspan(1)) {
                    Workbench other(seed, offset);
                    row.run(*set.delay, other, count);
                    ASSERT_TRUE(other.HasBitsOf(plain)) << row.name << " of " << set.name << ", "
                                                        << count << " samples from " << offset;
                }
            }
        }
    }
}
