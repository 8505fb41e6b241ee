// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MMeter.h"
#include "tests/support/Noise.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

namespace {

constexpr int kSampleRate = 44100;

void FillWithSine(Channels& sound, int channel, float amplitude) {
    for (int i = 0; i < sound.Length(); ++i) {
        const double phase = 2 * std::numbers::pi * 997 * i / kSampleRate;
        sound[channel][i] = amplitude * static_cast<float>(std::sin(phase));
    }
}

double Decibels(float amplitude) { return 20 * std::log10(static_cast<double>(amplitude)); }

TEST(MMeter, ShowsPeakAndRmsOfASineOnEachChannel) {
    MMeter meter;
    meter.Prepare(kSampleRate);
    Channels sound(2, 3 * kSampleRate);
    FillWithSine(sound, 0, 0.5f);
    FillWithSine(sound, 1, 0.25f);
    for (int first = 0; first + 441 <= sound.Length(); first += 441) {
        meter.Feed(sound.From(first), 2, 441);
    }
    for (int c = 0; c < 2; ++c) {
        EXPECT_NEAR(Decibels(meter.Peak(c)), -6.02 * (c + 1), 0.01);
        EXPECT_NEAR(Decibels(meter.Rms(c)), -6.02 * (c + 1) - 3.01, 0.01);
    }
    for (const int c : {-1, 2, 7, 8}) EXPECT_EQ(meter.Peak(c) + meter.Rms(c), 0) << c;
}

TEST(MMeter, FallsAtItsPaceInBlocksOfAnySize) {
    for (const int count : {32, 441, 4410}) {
        MMeter meter;
        meter.Prepare(kSampleRate);
        Channels sound(1, count);
        sound[0].assign(count, 1.0f);
        for (int done = 0; done < 3 * kSampleRate; done += count) {
            meter.Feed(sound.Constants(), 1, count);
        }
        int frames = 0;
        for (; frames < kSampleRate / 2; frames += count) meter.FeedSilence(count);
        const double seconds = static_cast<double>(frames) / kSampleRate;
        EXPECT_NEAR(Decibels(meter.Peak(0)), -20 * seconds, 0.01) << count;
        EXPECT_NEAR(meter.Rms(0), std::exp(-seconds / 2 / 0.3), 1e-3) << count;
        for (; frames < 30 * kSampleRate; frames += count) meter.FeedSilence(count);
        EXPECT_EQ(meter.Peak(0), 0) << count;
        EXPECT_EQ(meter.Rms(0), 0) << count;
    }
}

TEST(MMeter, RecoversFromWhatIsNotFinite) {
    for (const float bad : {HUGE_VALF, NAN, std::numeric_limits<float>::max()}) {
        MMeter meter;
        Channels sound(1, 64);
        sound[0][5] = bad;
        meter.Feed(sound.Constants(), 1, 64);
        EXPECT_TRUE(std::isfinite(meter.Peak(0)) && std::isfinite(meter.Rms(0)));
        sound[0].assign(64, 0.5f);
        meter.Prepare(kSampleRate);
        for (int n = 0; n < 3000; ++n) meter.Feed(sound.Constants(), 1, 64);
        EXPECT_NEAR(meter.Peak(0), 0.5, 1e-6);
        EXPECT_NEAR(meter.Rms(0), 0.5, 1e-4);
    }
}

TEST(MMeter, IsReadWhileAnotherThreadFeeds) {
    MMeter meter;
    std::atomic<bool> isOver = false;
    std::thread reader([&] {
        while (!isOver) {
            EXPECT_LE(meter.Peak(0), 1.0f);
            EXPECT_LE(meter.Rms(1), 1.0f);
        }
    });
    Channels sound(2, 64);
    for (int n = 0; n < 5000; ++n) {
        sound[0].assign(64, n % 2 == 0 ? 1.0f : 0.1f);
        meter.Feed(sound.Constants(), 2, 64);
    }
    isOver = true;
    reader.join();
}

}  // namespace
