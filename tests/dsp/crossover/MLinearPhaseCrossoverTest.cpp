// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "dsp/crossover/MLinearPhaseCrossover.h"
#include "tests/dsp/crossover/CrossoverMeasure.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace {

using namespace CrossoverMeasure;

constexpr int kDelay = MLinearPhaseCrossover::kDelay;

using FloatBands = std::vector<std::vector<float>>;

/// A crossover whose design is in use, and what one channel leaves behind in it.
struct Splitter : MLinearPhaseCrossover {
    Splitter(std::span<const double> limits, double sampleRate, bool fixedQ) {
        Use(limits, sampleRate, fixedQ);
    }
    void Use(std::span<const double> limits, double sampleRate, bool fixedQ) {
        Design(static_cast<int>(limits.size()) + 1, limits, sampleRate, fixedQ);
        BeginBlock();
    }

    /// All bands of `input`, in blocks whose sizes come from `blocks` by turns.
    FloatBands Run(const std::vector<float>& input, const std::vector<int>& blocks,
                   std::span<const MRampEnds> gains = {}) {
        FloatBands bands(static_cast<std::size_t>(BandCount()), std::vector<float>(input.size()));
        const int count = static_cast<int>(input.size());
        for (int first = 0, turn = 0; first < count; ++turn) {
            const int block = std::min(blocks[turn % blocks.size()], count - first);
            std::vector<float*> outputs;
            for (auto& band : bands) outputs.push_back(band.data() + first);
            Split(state, input.data() + first, gains, outputs, block);
            first += block;
        }
        return bands;
    }

    MLinearPhaseChannelState state;
};

/// The largest difference of the bands' sum from the delayed input, in decibels of full scale.
double SumError(const FloatBands& bands, const std::vector<float>& input) {
    std::vector<double> wanted(kDelay);
    wanted.insert(wanted.end(), input.begin(), input.end() - kDelay);
    return Decibels(LargestDifference(Sum(bands), wanted));
}

TEST(MLinearPhaseCrossover, BandsAndTheirSumErrByTheAttenuationWhereLimitsAreATransitionApart) {
    const double transition = MLinearPhaseDesigner::TransitionWidth(48000);
    const std::vector<double> rows[] = {{1000},
                                        {26, 269, 626, 1480, 6314},
                                        {1000, 1001 + transition, 1002 + 2 * transition},
                                        {200, 2000}};
    std::vector<float> impulse(kDelay + 2048);
    impulse[0] = 1;
    for (const auto& limits : rows) {
        // In the hybrid form the kernels of neighbours differ in length, and their ripples add up.
        for (const bool fixedQ : {false, true}) {
            if (fixedQ && limits.back() < 1.5 * limits[0]) continue;
            const FloatBands bands = Splitter(limits, 48000, fixedQ).Run(impulse, {1000});
            const std::vector<double> sum = Sum(bands);
            for (const double frequency : Frequencies(5, 23999, 400)) {
                EXPECT_LE(Decibels(ResponseAt(sum, frequency, 48000, kDelay) - 1.0),
                          -MLinearPhaseDesigner::kAttenuation + (fixedQ ? 4 : 0))
                    << limits[0] << " at " << frequency << (fixedQ ? ", hybrid" : "");
                for (std::size_t band = 0; band < bands.size() && !fixedQ; ++band) {
                    const auto response = ResponseAt(bands[band], frequency, 48000, kDelay);
                    const bool isStopped =
                        (band > 0 && frequency < limits[band - 1] - transition / 2) ||
                        (band < limits.size() && frequency > limits[band] + transition / 2);
                    EXPECT_LT(Decibels(response),
                              3 - (isStopped ? MLinearPhaseDesigner::kAttenuation : 0))
                        << frequency;
                    EXPECT_NEAR(response.imag(), 0, 2e-6) << "real once the delay is taken away";
                }
            }
        }
    }
}

TEST(MLinearPhaseCrossover, TakesLimitsInAnyOrder) {
    std::vector<float> impulse(kDelay + 2048);
    impulse[100] = 1;
    Splitter crossed(std::array{2000.0, 6000.0, 500.0}, 48000, false);
    Splitter rising(std::array{500.0, 2000.0, 6000.0}, 48000, false);
    const FloatBands bands = crossed.Run(impulse, {512});
    EXPECT_EQ(bands, rising.Run(impulse, {512}));
    EXPECT_LE(SumError(bands, impulse), -70);
}

TEST(MLinearPhaseCrossover, AnyMixtureOfBlocksGivesTheSameBitsAtTheSameDelay) {
    const std::vector<float> noise = WhiteNoise(140000, 22);
    const double limits[] = {200, 2000, 9000};
    const FloatBands wanted = Splitter(limits, 48000, false).Run(noise, {65536});
    EXPECT_LE(SumError(wanted, noise), -75);
    const std::vector<int> rows[] = {{1},    {64},   {2047},
                                     {2048}, {2049}, {1, 65536, 3, 2048, 511, 4096, 1, 1}};
    for (const auto& blocks : rows) {
        EXPECT_EQ(Splitter(limits, 48000, false).Run(noise, blocks), wanted) << blocks[0];
    }
}

TEST(MLinearPhaseCrossover, GainsActBeforeTheFilters) {
    const std::vector<float> noise = WhiteNoise(12000, 24);
    Splitter crossover(std::vector<double>{400, 4000}, 48000, false);
    // Standing and moving, and changing within a block of the convolution.
    const std::array<MRampEnds, 3> rows[] = {{{{0.5, 0.5}, {2, 2}, {1, 1}}},
                                             {{{0, 1}, {1, 0.25}, {0.3, 0.3}}}};
    std::array<MLinearPhaseChannelState, 3> alone;
    for (const auto& gains : rows) {
        const FloatBands bands = crossover.Run(noise, {12000}, gains);
        for (int band = 0; band < 3; ++band) {
            std::vector<float> wanted(noise.size());
            const double step = (gains[band].to - gains[band].from) / 12000;
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                const double gain = gains[band].from + step * static_cast<double>(i);
                wanted[i] = static_cast<float>(gain * static_cast<double>(noise[i]));
            }
            crossover.ProcessBand(alone[band], band, wanted.data(), wanted.data(), 12000);
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                ASSERT_NEAR(bands[band][i], wanted[i], 2e-6) << band << " at " << i;
            }
        }
    }
}

TEST(MLinearPhaseCrossover, AddedBandsStartFromSilenceInStepWithTheOthers) {
    const std::vector<double> six = {100, 300, 1000, 3000, 9000}, two = {100};
    const std::vector<float> silence(9000), more = WhiteNoise(9000, 26);
    Splitter crossover(six, 48000, false);
    crossover.Run(WhiteNoise(3333, 25), {100});
    crossover.Use(two, 48000, false);
    crossover.Run(WhiteNoise(3333, 25), {100});
    crossover.Run(silence, {77});
    crossover.Use(six, 48000, false);
    for (const auto& band : crossover.Run(silence, {77})) EXPECT_EQ(band, silence);
    EXPECT_LE(SumError(crossover.Run(more, {77}), more), -30);
}

TEST(MLinearPhaseCrossover, IsFiniteForAnyLimitsAndRefusesNonsense) {
    const double nan = std::nan("");
    const std::vector<double> limitRows[] = {
        {0, -5, 1e-9, 0.5, 1}, {1e300, 30000, 1e6, 30000, 30000}, {15000, 50, 9000, 20, 3000}};
    for (const double sampleRate : {1.0, 8000.0, 768000.0}) {
        for (const auto& limits : limitRows) {
            for (const bool fixedQ : {false, true}) {
                Splitter crossover(limits, sampleRate, fixedQ);
                EXPECT_THROW(crossover.Design(7, limits, sampleRate, fixedQ), MException);
                EXPECT_THROW(crossover.Design(2, {&nan, 1}, sampleRate, fixedQ), MException);
                EXPECT_THROW(crossover.Design(2, limits, 0, fixedQ), MException);
                crossover.BeginBlock();
                const auto bands = crossover.Run(WhiteNoise(9000, 27), {999});
                EXPECT_EQ(bands.size(), 6u);
                for (const auto& band : bands) {
                    for (const float sample : band) ASSERT_LT(std::abs(sample), 20);
                }
            }
        }
    }
}

}  // namespace
