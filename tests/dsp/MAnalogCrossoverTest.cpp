// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/dsp/MAnalogTranscription.h"
#include "core/MException.h"
#include "dsp/MAnalogCrossover.h"
#include "tests/dsp/CrossoverMeasure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using namespace CrossoverMeasure;
using Slope = MAnalogCrossover::Slope;

constexpr Slope kSlopes[] = {Slope::Slope12, Slope::Slope24, Slope::Slope48,
                             Slope::Slope72, Slope::Slope96, Slope::Slope120};

std::vector<double> RandomLimits(std::mt19937& random, int bandCount) {
    std::uniform_real_distribution<double> pitch(std::log(20.0), std::log(20000.0));
    std::vector<double> limits;
    for (int i = 1; i < bandCount; ++i) limits.push_back(std::exp(pitch(random)));
    std::sort(limits.begin(), limits.end());
    return limits;
}

/// A crossover whose design is in use.
struct Designed : MAnalogCrossover {
    Designed(const std::vector<double>& limits, double sampleRate, Slope slope) {
        Design(static_cast<int>(limits.size()) + 1, limits, sampleRate, slope);
        BeginBlock();
    }
};

TEST(MAnalogCrossover, SumOfAllBandsIsFlatAndHasThePhaseOfTheAllPasses) {
    std::mt19937 random(7);
    std::vector<std::pair<double, std::vector<double>>> rows = {
        {48000, {1000}},
        {48000, {1000, 1000, 1000, 1000, 1000}},
        {48000, {20, 20.5, 21, 21.5, 22}},
        {96000, {19000, 19500, 20000, 20000, 20000}},
        {192000, {20, 200, 2000, 20000}}};
    for (int bands = 3; bands <= 6; ++bands) rows.emplace_back(48000, RandomLimits(random, bands));
    for (const auto& [sampleRate, limits] : rows) {
        const int count = static_cast<int>(sampleRate * 3);
        for (const Slope slope : kSlopes) {
            // With more points the first-order all-passes of 12 dB/oct only come near their phase.
            if (slope == Slope::Slope12 && limits.size() > 1) continue;
            MAnalogPairState state, unsplit;
            const Designed crossover(limits, sampleRate, slope);
            std::vector<double> passed = Impulse(count);
            const auto sum = Sum(SplitAnalog(crossover, state, passed, 4096));
            for (const double frequency : Frequencies(10, 0.499 * sampleRate, 23)) {
                EXPECT_LE(std::abs(Decibels(ResponseAt(sum, frequency, sampleRate))), 1e-5)
                    << static_cast<int>(slope) << ", " << limits.size() << " limits from "
                    << limits[0] << " at " << frequency;
            }
            if (slope == Slope::Slope12) continue;
            crossover.RunAllPasses(unsplit, {passed.data(), passed.data()}, count);
            EXPECT_LE(LargestDifference(sum, passed), 1e-5) << static_cast<int>(slope);
        }
    }
}

TEST(MAnalogCrossover, FastAndPlainFormEqualTheTranscriptionForAnySettings) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> anyBands(1, 6), anyBlock(1, 700);
    for (const double sampleRate : {8000.0, 44100.0, 48000.0, 192000.0, 768000.0}) {
        for (const Slope slope : kSlopes) {
            const int bandCount = anyBands(random);
            std::vector<double> limits = RandomLimits(random, bandCount);
            for (double& limit : limits) limit = std::min(limit, 0.49 * sampleRate);
            if (bandCount == 6) std::swap(limits[1], limits[3]);  // as they come
            const std::vector<double> noise = Noise(6000, 40);
            const int block = anyBlock(random);

            MAnalogPairState pair;
            MAnalogChannelState channel;
            const Designed crossover(limits, sampleRate, slope);
            const Bands fast = SplitAnalog(crossover, pair, noise, block);
            MAnalogTranscription transcription(limits, sampleRate, static_cast<int>(slope));
            std::vector<double> plain(noise.size()), wanted(noise.size());
            for (int band = 0; band < bandCount; ++band) {
                transcription.ProcessBand(band, noise, wanted);
                crossover.ProcessBand(channel, band, noise.data(), plain.data(), 6000);
                EXPECT_LE(LargestDifference(plain, wanted), 1e-6) << sampleRate << " " << band;
                EXPECT_LE(LargestDifference(fast[band], wanted), 1e-6) << sampleRate << " " << band;
            }
        }
    }
}

TEST(MAnalogCrossover, NothingIsUnstableAtAnyRateWithAnyLimits) {
    const std::vector<double> limitRows[] = {{20, 20, 20, 20, 20},
                                             {0, -5, 1e-9, 0.5, 1},
                                             {20000, 30000, 1e6, HUGE_VAL, 1e300},
                                             {15000, 50, 9000, 20, 3000},
                                             {-HUGE_VAL, 0, 1, 2, 3}};
    const std::vector<double> noise = Noise(20000, 9);
    for (const double sampleRate : {1.0, 8000.0, 48000.0, 768000.0, 1e9}) {
        for (const auto& limits : limitRows) {
            for (const Slope slope : kSlopes) {
                const Designed crossover(limits, sampleRate, slope);
                MAnalogPairState state;
                EXPECT_LT(Peak(SplitAnalog(crossover, state, noise, 512)), 30)
                    << sampleRate << " " << limits[0];
            }
        }
    }
}

TEST(MAnalogCrossover, StaysBoundedWhileAllLimitsJumpAndForgetsTheJumps) {
    std::mt19937 random(13);
    std::uniform_real_distribution<double> pitch(std::log(20.0), std::log(20000.0));
    const std::vector<double> noise = Noise(64, 14), silence(1 << 17);
    for (const Slope slope : kSlopes) {
        MAnalogCrossover crossover;
        MAnalogPairState state;
        for (int block = 0; block < 3000; ++block) {
            double limits[5];
            for (double& limit : limits) limit = std::exp(pitch(random));  // in any order
            crossover.Design(6, limits, 48000, slope);
            crossover.BeginBlock();
            // Read as they stand, the filters' memories would reach 1e8 here.
            ASSERT_LT(Peak(SplitAnalog(crossover, state, noise, 64)), 50) << block;
        }
        SplitAnalog(crossover, state, silence, 4096);
        EXPECT_LT(Peak(SplitAnalog(crossover, state, noise, 64)), 4) << static_cast<int>(slope);
    }
}

TEST(MAnalogCrossover, WhatCannotBeDesignedThrowsAndLeavesTheDesign) {
    const double nan = std::nan("");
    const std::vector<double> limits = {100, 200, 400, 800, 1600}, bad = {100, nan, 400, 800, 1600};
    const std::vector<double> noise = Noise(1000, 4);
    Designed crossover({500, 5000}, 48000, Slope::Slope24);
    MAnalogPairState before, after;
    const Bands wanted = SplitAnalog(crossover, before, noise, 100);
    const struct {
        int bands;
        std::vector<double> limits;
        double rate;
        int slope;
    } rows[] = {{-1, limits, 48000, 1},      {0, limits, 48000, 1},    {7, limits, 48000, 1},
                {1000000, limits, 48000, 1}, {3, limits, 0, 1},        {3, limits, -48000, 1},
                {3, limits, nan, 1},         {3, limits, HUGE_VAL, 1}, {3, limits, 48000, -1},
                {3, limits, 48000, 6},       {3, bad, 48000, 1},       {3, {100}, 48000, 1}};
    for (const auto& [bands, frequencies, rate, slope] : rows) {
        EXPECT_THROW(crossover.Design(bands, frequencies, rate, static_cast<Slope>(slope)),
                     MException)
            << bands << " bands, rate " << rate << ", slope " << slope;
    }
    crossover.BeginBlock();
    EXPECT_EQ(SplitAnalog(crossover, after, noise, 100), wanted);
    EXPECT_NO_THROW(crossover.Design(2, bad, 48000, Slope::Slope24)) << "one limit is used";
}

TEST(MAnalogCrossover, RedesignKeepsTheMemoryOfTheFilters) {
    std::vector<double> sine(8192);
    for (std::size_t i = 0; i < sine.size(); ++i) {
        sine[i] = std::sin(2 * std::numbers::pi * 300 / 48000 * static_cast<double>(i));
    }
    for (const Slope slope : kSlopes) {
        Designed undisturbed({300, 1000, 3000}, 48000, slope);
        MAnalogPairState whole;
        const Bands wanted = SplitAnalog(undisturbed, whole, sine, 64);
        // A limit moved by a hundredth moves the sound by little from the first sample on.
        for (const auto& [limit, error] : {std::pair(300.0, 0.0), {303.0, 0.02}}) {
            Designed redesigned({300, 1000, 3000}, 48000, slope);
            MAnalogPairState state;
            SplitAnalog(redesigned, state, std::span(sine).first(4096), 64);
            redesigned.Design(4, std::vector<double>{limit, 1000, 3000}, 48000, slope);
            redesigned.BeginBlock();
            const Bands after = SplitAnalog(redesigned, state, std::span(sine).last(4096), 64);
            for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(after[i][0], wanted[i][4096], error);
        }
    }
}

TEST(MAnalogCrossover, FiltersThatAreAddedStartFromSilence) {
    const std::vector<double> silence(512);
    std::vector<double> loud(512, 1.0);
    MAnalogCrossover crossover;
    MAnalogPairState pair;
    MAnalogChannelState channel;
    const double limits[] = {60, 120, 240, 480, 960};
    const auto run = [&](int bands, Slope slope, const std::vector<double>& input) {
        crossover.Design(bands, limits, 48000, slope);
        crossover.BeginBlock();
        Bands all = SplitAnalog(crossover, pair, input, 512);
        for (int band = 0; band < bands; ++band) {
            all.emplace_back(512);
            crossover.ProcessBand(channel, band, input.data(), all.back().data(), 512);
        }
        return Peak(all);
    };
    run(6, Slope::Slope120, loud);
    for (int i = 0; i < 400; ++i) run(2, Slope::Slope12, silence);
    // What the other filters heard then would come out now.
    EXPECT_LT(run(6, Slope::Slope120, silence), 1e-9);
}

TEST(MAnalogCrossover, RecoversFromWhatIsNotANumber) {
    const Designed crossover({100, 1000}, 48000, Slope::Slope24);
    MAnalogPairState state;
    std::vector<double> broken(256, std::numeric_limits<double>::quiet_NaN());
    SplitAnalog(crossover, state, broken, 256);
    crossover.RunAllPasses(state, {broken.data(), broken.data()}, 256);
    std::vector<double> noise = Noise(256, 1);
    for (const auto& band : SplitAnalog(crossover, state, noise, 256)) {
        EXPECT_TRUE(std::isfinite(band.back()));
    }
    crossover.RunAllPasses(state, {noise.data(), noise.data()}, 256);
    EXPECT_TRUE(std::isfinite(noise.back()));
}

}  // namespace
