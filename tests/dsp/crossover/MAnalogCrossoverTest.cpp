// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "dsp/crossover/MAnalogCrossover.h"
#include "tests/dsp/crossover/CrossoverMeasure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

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

/// A crossover whose design is in use, and what two channels leave behind in it.
struct Splitter : MAnalogCrossover {
    Splitter(std::span<const double> limits, double sampleRate, Slope slope) {
        Use(limits, sampleRate, slope);
    }
    void Use(std::span<const double> limits, double sampleRate, Slope slope) {
        Design(static_cast<int>(limits.size()) + 1, limits, sampleRate, slope);
        BeginBlock();
    }

    /// All bands of `input` through the fast form, in blocks of `block` frames; the right channel
    /// hears the input backwards in time so that crosstalk shows.
    Bands Run(std::span<const double> input, int block) {
        const std::vector<double> right(input.rbegin(), input.rend());
        Bands bands(static_cast<std::size_t>(BandCount()), std::vector<double>(input.size()));
        std::vector<double> scrap(input.size());
        for (int first = 0; first < static_cast<int>(input.size()); first += block) {
            const int frames = std::min(block, static_cast<int>(input.size()) - first);
            std::array<MChannelPair, kMaxCrossoverBands> outputs{};
            for (std::size_t i = 0; i < bands.size(); ++i) {
                outputs[i] = {bands[i].data() + first, scrap.data() + first};
            }
            Split(state, input.data() + first, right.data() + first, outputs, frames);
        }
        return bands;
    }

    MAnalogPairState state;
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
            Splitter crossover(limits, sampleRate, slope);
            std::vector<double> passed = Impulse(count);
            const auto sum = Sum(crossover.Run(passed, 4096));
            for (const double frequency : Frequencies(10, 0.499 * sampleRate, 23)) {
                EXPECT_LE(std::abs(Decibels(ResponseAt(sum, frequency, sampleRate))), 1e-5)
                    << static_cast<int>(slope) << ", " << limits.size() << " limits from "
                    << limits[0] << " at " << frequency;
            }
            if (slope == Slope::Slope12) continue;
            crossover.RunAllPasses(crossover.state, {passed.data(), passed.data()}, count);
            EXPECT_LE(LargestDifference(sum, passed), 1e-5) << static_cast<int>(slope);
        }
    }
}

/// What band `band` makes of a sine of `frequency` hertz: every filter from its formula.
std::complex<double> BandResponse(std::span<const double> limits, Slope slope, int band,
                                  double frequency, double sampleRate) {
    const bool isFirstOrder = slope == Slope::Slope12;
    const int sections = std::max(1, static_cast<int>(slope)), times = isFirstOrder ? 1 : 2;
    const double pi = std::numbers::pi;
    const auto before = std::polar(1.0, -2 * pi * frequency / sampleRate);  // one sample ago
    std::complex<double> response = isFirstOrder && band % 2 == 1 ? -1 : 1;
    for (int j = 0; j < static_cast<int>(limits.size()); ++j) {
        const double pole = std::exp(-2 * pi * limits[j] / sampleRate);
        if (isFirstOrder && j < band - 1) response *= (pole - before) / (1.0 - pole * before);
        const std::complex<double> s(
            0, std::tan(pi * frequency / sampleRate) / std::tan(pi * limits[j] / sampleRate));
        for (int k = 0; k < sections; ++k) {
            const double damping = isFirstOrder ? 2 : 2 * std::sin((2 * k + 1) * pi / 4 / sections);
            const auto below = s * s + damping * s + 1.0;
            if (j >= band) response /= std::pow(below, times);
            if (j == band - 1) response *= std::pow(s * s / below, times);
            if (j < band - 1 && !isFirstOrder) response *= (s * s - damping * s + 1.0) / below;
        }
    }
    return response;
}

TEST(MAnalogCrossover, EachBandHasTheResponseOfItsFilters) {
    const std::vector<double> limits = {300, 1000, 1000, 4000, 12000}, impulse = Impulse(16384);
    for (const Slope slope : kSlopes) {
        MAnalogChannelState channel;
        Splitter crossover(limits, 48000, slope);
        std::vector<double> output(impulse.size());
        for (int band = 0; band < 6; ++band) {
            crossover.ProcessBand(channel, band, impulse.data(), output.data(), 16384);
            for (const double frequency : Frequencies(20, 23000, 29)) {
                EXPECT_LE(std::abs(ResponseAt(output, frequency, 48000) -
                                   BandResponse(limits, slope, band, frequency, 48000)),
                          1e-9)
                    << static_cast<int>(slope) << ", band " << band << " at " << frequency;
            }
        }
    }
}

TEST(MAnalogCrossover, FastFormEqualsThePlainFormForAnySettings) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> anyBands(1, 6), anyBlock(1, 700);
    for (const double sampleRate : {8000.0, 44100.0, 48000.0, 192000.0, 768000.0}) {
        for (const Slope slope : kSlopes) {
            const int bandCount = anyBands(random);
            std::vector<double> limits = RandomLimits(random, bandCount);
            for (double& limit : limits) limit = std::min(limit, 0.49 * sampleRate);
            std::vector<double> crossed = limits;
            std::reverse(crossed.begin(), crossed.end());
            const std::vector<double> noise = WhiteNoise<double>(6000, 40);
            MAnalogChannelState channel;
            const Bands fast = Splitter(crossed, sampleRate, slope).Run(noise, anyBlock(random));
            const Splitter rising(limits, sampleRate, slope);
            std::vector<double> wanted(noise.size());
            for (int band = 0; band < bandCount; ++band) {
                rising.ProcessBand(channel, band, noise.data(), wanted.data(), 6000);
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
    const std::vector<double> noise = WhiteNoise<double>(20000, 9);
    for (const double sampleRate : {1.0, 8000.0, 48000.0, 768000.0, 1e9}) {
        for (const auto& limits : limitRows) {
            for (const Slope slope : kSlopes) {
                EXPECT_LT(Peak(Splitter(limits, sampleRate, slope).Run(noise, 512)), 30)
                    << sampleRate << " " << limits[0];
            }
        }
    }
}

TEST(MAnalogCrossover, StaysBoundedWhileAllLimitsJumpAndForgetsTheJumps) {
    std::mt19937 random(13);
    std::uniform_real_distribution<double> pitch(std::log(20.0), std::log(20000.0));
    const std::vector<double> noise = WhiteNoise<double>(64, 14), silence(1 << 17);
    for (const Slope slope : kSlopes) {
        std::array<double, 5> limits = {100, 200, 400, 800, 1600};
        Splitter crossover(limits, 48000, slope);
        for (int block = 0; block < 3000; ++block) {
            for (double& limit : limits) limit = std::exp(pitch(random));  // in any order
            crossover.Use(limits, 48000, slope);
            // Read as they stand, the filters' memories would reach 1e8 here.
            ASSERT_LT(Peak(crossover.Run(noise, 64)), 50) << block;
        }
        crossover.Run(silence, 4096);
        EXPECT_LT(Peak(crossover.Run(noise, 64)), 4) << static_cast<int>(slope);
    }
}

TEST(MAnalogCrossover, WhatCannotBeDesignedThrowsAndLeavesTheDesign) {
    const double nan = std::nan("");
    const std::vector<double> limits = {100, 200, 400, 800, 1600}, bad = {100, nan, 400, 800, 1600};
    const std::vector<double> noise = WhiteNoise<double>(1000, 4);
    Splitter crossover(std::vector<double>{500, 5000}, 48000, Slope::Slope24);
    const Bands wanted = crossover.Run(noise, 100);
    const struct {
        int bands = 0;
        std::vector<double> limits;
        double rate = 0;
        int slope = 0;
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
    crossover.state.Reset();
    EXPECT_EQ(crossover.Run(noise, 100), wanted);
    EXPECT_NO_THROW(crossover.Design(2, bad, 48000, Slope::Slope24)) << "one limit is used";
}

TEST(MAnalogCrossover, RedesignKeepsTheMemoryOfTheFilters) {
    std::vector<double> sine(8192);
    for (std::size_t i = 0; i < sine.size(); ++i) {
        sine[i] = std::sin(2 * std::numbers::pi * 300 / 48000 * static_cast<double>(i));
    }
    for (const Slope slope : kSlopes) {
        std::array<double, 3> limits = {300, 1000, 3000};
        const Bands wanted = Splitter(limits, 48000, slope).Run(sine, 64);
        // A limit moved by a hundredth moves the sound by little from the first sample on.
        for (const auto& [limit, error] : {std::pair(300.0, 0.0), {303.0, 0.02}}) {
            limits[0] = 300;
            Splitter redesigned(limits, 48000, slope);
            redesigned.Run(std::span(sine).first(4096), 64);
            limits[0] = limit;
            redesigned.Use(limits, 48000, slope);
            const Bands after = redesigned.Run(std::span(sine).last(4096), 64);
            for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(after[i][0], wanted[i][4096], error);
        }
    }
}

TEST(MAnalogCrossover, FiltersThatAreAddedStartFromSilence) {
    const std::vector<double> silence(512), loud(512, 1.0), limits = {60, 120, 240, 480, 960};
    Splitter crossover(limits, 48000, Slope::Slope120);
    MAnalogChannelState channel;
    const auto run = [&](int bands, Slope slope, const std::vector<double>& input) {
        crossover.Use(std::span(limits).first(bands - 1), 48000, slope);
        Bands all = crossover.Run(input, 512);
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
    Splitter crossover(std::vector<double>{100, 1000}, 48000, Slope::Slope24);
    std::vector<double> broken(256, std::nan("")), noise = WhiteNoise<double>(256, 1);
    crossover.Run(broken, 256);
    crossover.RunAllPasses(crossover.state, {broken.data(), broken.data()}, 256);
    for (const auto& band : crossover.Run(noise, 256)) EXPECT_TRUE(std::isfinite(band.back()));
    crossover.RunAllPasses(crossover.state, {noise.data(), noise.data()}, 256);
    EXPECT_TRUE(std::isfinite(noise.back()));
}

}  // namespace
