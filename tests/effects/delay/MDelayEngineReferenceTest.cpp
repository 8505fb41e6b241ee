// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MKernelSet.h"
#include "effects/delay/MDelayEngine.h"
#include "tests/support/DelaySettingsMaker.h"
#include "tests/support/MReferenceDelay.h"
#include "tests/support/Noise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr int kSampleRate = 8000;  // low, so that short blocks reach every line length

struct Difference {
    double largest = 0;
    double peak = 0;
};

/// The plain loop stretches its lines at once. Where a line is read before the next change the
/// engine gives the same numbers.
constexpr int kLongestLine = 3100;  // samples: a dotted eighth at 60 beats per minute

void KeepTimes(MDelaySettings& settings, const MDelaySettings& before) {
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        MDelayTapSettings& now = settings.taps[tap];
        const MDelayTapSettings& kept = before.taps[tap];
        now.delay = kept.delay;
        now.leftOffset = kept.leftOffset;
        now.rightOffset = kept.rightOffset;
        now.isSynchronised = kept.isSynchronised;
        now.syncLength = kept.syncLength;
        now.syncType = kept.syncType;
    }
}

/// Runs engine and reference side by side over random settings and block sizes.
Difference Compare(unsigned seed, int channels, const MKernelSet& kernels, bool mayCurve) {
    std::mt19937 generator(seed);
    MDelayEngine engine(kernels);
    MReferenceDelay reference;
    MDelaySettings settings = DefaultDelaySettings();
    Difference difference;
    double tempo = 120;
    int sinceTimes = kLongestLine;  // samples
    for (int block = 0; block < 60; ++block) {
        // Prepared anew in mid-sound: other channels, another rate, the settings of the block
        // before.
        if (block == 30) channels = 1 + channels % 3;
        if (block % 30 == 0) {
            engine.Prepare(channels, kSampleRate + 100 * block);
            reference.Prepare(channels, kSampleRate + 100 * block);
            EXPECT_TRUE(engine.IsTailSilent());
        }
        // The even component of the saturation runs away from loud loops; keep those quiet.
        const MDelaySettings before = settings;
        if (block != 30) {
            settings = RandomDelaySettings(generator, settings, mayCurve ? 0.7 : 1.0);
        }
        if (!mayCurve) settings.saturation = 0;
        if (sinceTimes < kLongestLine) {
            KeepTimes(settings, before);
        } else {
            sinceTimes = 0;
            // Now and then a tempo beyond the fastest, or none at all.
            const double odd[] = {1e7, -5, std::numeric_limits<double>::quiet_NaN()};
            tempo = std::uniform_real_distribution<double>(60, 200)(generator);
            if (generator() % 4 == 0) tempo = odd[generator() % 3];
        }
        const int count = std::uniform_int_distribution<int>(1, 700)(generator);
        sinceTimes += count;
        Channels input(channels, count), output(channels, count), expected(channels, count);
        input.FillWithNoise(seed * 100 + static_cast<unsigned>(block), mayCurve ? 0.3f : 1.0f);
        // What is no sound counts as silence.
        input[0][count / 2] = std::array{NAN, INFINITY, -INFINITY}[block % 3];
        engine.Update(settings);
        reference.Update(settings);
        engine.Process(settings, tempo, input.Constants(), output.Pointers(), count);
        reference.Process(settings, tempo, input.Constants(), expected.Pointers(), count);
        for (int c = 0; c < channels; ++c) {
            for (int i = 0; i < count; ++i) {
                const auto want = static_cast<double>(expected[c][i]);
                difference.peak = std::max(difference.peak, std::abs(want));
                difference.largest = std::max(difference.largest,
                                              std::abs(static_cast<double>(output[c][i]) - want));
            }
        }
        settings = Arrived(settings);
    }
    return difference;
}

}  // namespace

TEST(MDelayEngineReference, EqualsThePlainLoopExactlyAndWithSaturationWithinAMillionthOfThePeak) {
    for (const MKernelSet& kernels : RunnableKernels()) {
        for (unsigned seed = 0; seed < 120; ++seed) {
            const bool mayCurve = seed % 2 == 1;
            const int channels = 1 + static_cast<int>(seed % 3) + (seed % 14 == 6 ? 5 : 0);
            const Difference difference = Compare(seed, channels, kernels, mayCurve);
            ASSERT_GT(difference.peak, 0.01) << "seed " << seed;
            ASSERT_LE(difference.largest, mayCurve ? 1e-6 * difference.peak : 0)
                << kernels.name << ", seed " << seed << ", " << channels << " channels";
        }
    }
}
