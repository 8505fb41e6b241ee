// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandProcessor.h"
#include "dsp/MMeter.h"
#include "tests/adapters/BandsForTests.h"
#include "tests/adapters/ReferenceBands.h"
#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <stdexcept>

namespace {

/// One processor beside one reference, through blocks of random settings and sizes.
void CompareWithReference(int seed) {
    RandomBlocks choose(seed);
    const int channels = std::array{2, 2, 2, 1, 3, 8}[choose.Integer(0, 5)];
    const Slope slope = static_cast<Slope>(choose.Integer(0, 5));
    Bands bands(choose.Integer(1, 6), channels, slope);
    bands.block.isLinearPhase = choose.Integer(0, 1) == 1;
    bands.block.splitOverride = choose.Integer(0, 7) == 0 ? 0 : -1;
    ReferenceBands reference(channels);
    reference.analog.Design(bands.block.bandCount, kLimits, kSampleRate, slope);
    reference.linearPhase.Design(bands.block.bandCount, kLimits, kSampleRate, false);
    TestEffects effects(channels);

    double peak = 0, difference = 0;
    for (int n = 0; n < 20; ++n) {
        choose.Move(bands.block);
        Sound sound = Noise(channels, choose.Integer(0, 3) == 0 ? 256 : choose.Integer(1, 700), n);
        if (n % 4 == 0) sound[0][0] = std::numeric_limits<float>::infinity();
        if (n % 4 == 1) sound.back().back() = std::numeric_limits<float>::quiet_NaN();
        const Sound wanted = reference.Process(bands.block, effects, sound);
        peak = std::max(peak, Peak(wanted));
        difference = std::max(difference, Difference(bands.Run(sound), wanted));
    }
    EXPECT_LE(difference, 1e-6 * peak)
        << "seed " << seed << ", " << bands.block.bandCount << " bands, " << channels
        << " channels, " << (bands.block.isLinearPhase ? "linear phase" : "analog");
}

TEST(MBandProcessor, EqualsThePlainLoopForAnySettingsAndBlockSizes) {
    for (int seed = 0; seed < 80; ++seed) CompareWithReference(seed);
}

TEST(MBandProcessor, BypassesWithoutAllPassesUnlessTheAnalogCrossoverSplits) {
    for (int row = 0; row < 3; ++row) {
        Bands bands(row == 0 ? 1 : 3);
        bands.block.isLinearPhase = row == 1;
        bands.block.splitOverride = row == 2 ? 0 : -1;
        const Sound sound = Noise(1, 300, 3);
        Sound bypassed = sound;
        bands.processor.ProcessBypassed(bands.block, bypassed[0].data(), 300, 0);
        EXPECT_EQ(bypassed, sound) << row;
    }
}

TEST(MBandProcessor, HearsAChangedOutputGainOneBlockLateAsAStep) {
    Bands bands(1);
    bands.block.wet = {0, 0};
    bands.block.outputGain = {1, 0.5};
    const Sound sound = Noise(2, 100, 4);
    EXPECT_EQ(bands.Run(sound), sound);
    bands.block.Arrive();
    Sound halved = sound;
    for (auto& channel : halved) {
        for (float& sample : channel) sample *= 0.5f;
    }
    EXPECT_EQ(bands.Run(sound), halved);
}

TEST(MBandProcessor, PansByTheWetOfTheBlocksStartAtBothEnds) {
    const Sound sound = Noise(2, 100, 5);
    const Sound silence(1, std::vector<float>(100));
    for (const double wetAtStart : {0.0, 1.0}) {
        Bands bands(1);
        bands.block.bands[0].isBypassed = true;  // to hear the band's input alone
        bands.block.bands[0].panorama = {1, 1};
        bands.block.wet = {wetAtStart, 1 - wetAtStart};
        const Sound panned = bands.Run(sound);
        if (wetAtStart == 0) {
            EXPECT_EQ(panned, sound);
        } else {
            EXPECT_EQ(panned[0], silence[0]);
        }
    }
}

/// The peak in the second of two blocks, the first with a pulse, both with their gains.
double PeakAfterPulse(bool isLinearPhase, double firstGain, double secondGain) {
    Bands bands(2);
    bands.block.isLinearPhase = isLinearPhase;
    for (MBandSettings& band : bands.block.bands) band.isBypassed = true;
    Sound pulse(2, std::vector<float>(100));
    pulse[0].back() = pulse[1].back() = 1;
    bands.block.inputGain = {firstGain, firstGain};
    bands.Run(pulse);
    bands.block.inputGain = {secondGain, secondGain};
    return Peak(bands.Run(Sound(2, std::vector<float>(4000))));
}

TEST(MBandProcessor, GainsFollowTheAnalogFiltersAndPrecedeTheLinearPhaseOnes) {
    EXPECT_GT(PeakAfterPulse(false, 0, 1), 0.01);
    EXPECT_EQ(PeakAfterPulse(false, 1, 0), 0);
    EXPECT_EQ(PeakAfterPulse(true, 0, 1), 0);
    EXPECT_GT(PeakAfterPulse(true, 1, 0), 0.01);
}

TEST(MBandProcessor, ForgetsBandGainsAndPanoramasWhenFullyDryUnlessToldNotTo) {
    const Sound sound = Noise(2, 64, 7);
    for (const bool isAffected : {true, false}) {
        Bands bands(1);
        bands.block.wet = {0, 0};
        bands.block.bands[0].gain = {4, 4};
        bands.block.bands[0].panorama = {-0.5, -0.5};
        bands.block.wetAffectsGain = bands.block.wetAffectsPanorama = isAffected;
        EXPECT_EQ(bands.Run(sound) == sound, isAffected);
    }
}

TEST(MBandProcessor, MeasuresBandsBeforeTheOutputGainAndMutedOnesAsSilent) {
    for (const bool moves : {false, true}) {
        Bands bands(3);
        std::vector<MMeter> meters(kMaxCrossoverBands);
        bands.block.bandMeters = meters.data();
        bands.block.splitOverride = 0;
        bands.block.outputGain = {0.25, 0.25};
        bands.block.dry = {1, moves ? 1.001 : 1.0};
        bands.block.bands[1].isBypassed = true;
        bands.block.bands[2].isMuted = true;
        const Sound steady(2, std::vector<float>(4803, -0.5f));
        bands.Run(steady);
        // Half of the input by the effect, a tenth from its memory, and the dry input.
        EXPECT_NEAR(meters[0].Peak(1), 0.8, 1e-3);
        EXPECT_NEAR(meters[1].Peak(0), 0.5, 1e-6);
        EXPECT_EQ(meters[2].Peak(0), 0);
        EXPECT_EQ(meters[3].Peak(0), 0);
        EXPECT_NEAR(meters[1].Rms(1), 0.5 * std::sqrt(1 - std::exp(-4803 / 48000.0 / 0.3)), 1e-4);
    }
}

TEST(MBandProcessor, RunsOnAfterAnEffectThatThrew) {
    for (const bool isLinearPhase : {false, true}) {
        Bands disturbed(3), undisturbed(3);
        disturbed.block.isLinearPhase = undisturbed.block.isLinearPhase = isLinearPhase;
        // Bypassed, so that what the effects have missed is not heard.
        for (Bands* bands : {&disturbed, &undisturbed}) {
            for (MBandSettings& band : bands->block.bands) band.isBypassed = true;
        }
        for (int n = 0; n < 40; ++n) {
            const Sound sound = Noise(2, 100 + n, n);
            const Sound wanted = undisturbed.Run(sound);
            disturbed.effects.failingBand = n % 4 == 3 ? n / 4 % 3 : -1;
            if (disturbed.effects.failingBand >= 0) {
                EXPECT_THROW(disturbed.Run(sound), std::runtime_error);
            } else {
                EXPECT_EQ(disturbed.Run(sound), wanted) << n;
            }
        }
    }
}

TEST(MBandProcessor, TakesWhatIsNotFiniteAsSilenceAndLimitsTheRest) {
    constexpr float kHuge = std::numeric_limits<float>::max();
    constexpr float kBad[] = {std::numeric_limits<float>::infinity(), kHuge,
                              std::numeric_limits<float>::quiet_NaN(), -kHuge};
    for (const bool isLinearPhase : {false, true}) {
        Bands bands(6, 2, Slope::Slope120);
        bands.block.isLinearPhase = isLinearPhase;
        for (const float bad : kBad) {
            const Sound output = bands.Run(Sound(2, std::vector<float>(4096, bad)));
            EXPECT_TRUE(std::isfinite(Peak(output))) << bad;
        }
        // The loudest of filters has rung out after ten seconds.
        for (int n = 0; n < 120; ++n) {
            EXPECT_TRUE(std::isfinite(Peak(bands.Run(Sound(2, std::vector<float>(4096))))));
        }
        const Sound sound = Noise(2, 4096, 9);
        Bands fresh(6, 2, Slope::Slope120);
        fresh.block.isLinearPhase = isLinearPhase;
        EXPECT_LE(Difference(bands.Run(sound), fresh.Run(sound)), 1e-3);
    }
}

TEST(MBandProcessor, GivesTheSameBitsInBlocksOfAnySize) {
    for (const bool isLinearPhase : {false, true}) {
        Bands whole(5), parts(5);
        for (Bands* bands : {&whole, &parts}) {
            bands->block.isLinearPhase = isLinearPhase;
            bands->block.wet = {0.8, 0.8};
            bands->block.bands[2].gain = {0.5, 0.5};
            bands->block.bands[3].panorama = {-0.25, -0.25};
        }
        const Sound sound = Noise(2, 9000, 10);
        Sound output = sound;
        std::mt19937 random(11);
        for (int first = 0, count = 0; first < 9000; first += count) {
            count = std::min(9000 - first, std::uniform_int_distribution(1, 600)(random));
            RunInPlace(parts.processor, parts.block, parts.effects, output, first, count);
        }
        EXPECT_EQ(whole.Run(sound), output);
    }
}

TEST(MBandProcessor, FollowsTheCountOfTheDesignUntilAllAgree) {
    Bands bands(3);
    bands.block.bandCount = 5;
    const Sound sound = Noise(2, 64, 13);
    bands.Run(sound);
    EXPECT_EQ(bands.effects.runs, (std::array{1, 1, 1, 0, 0, 0}));
    bands.block.bandCount = 1;
    bands.Run(sound);
    EXPECT_EQ(bands.effects.runs, (std::array{2, 1, 1, 0, 0, 0}));

    MBandProcessor undesigned;
    undesigned.Prepare(2);
    bands.block.bandCount = 4;
    for (const bool isLinearPhase : {false, true}) {
        bands.block.isLinearPhase = isLinearPhase;
        bands.block.wet = {0, 0};
        EXPECT_EQ(RunWhole(undesigned, bands.block, bands.effects, sound), sound);
    }
}

TEST(MBandProcessor, AllocatesNothingOnceReserved) {
    for (const bool isLinearPhase : {false, true}) {
        Bands bands(6);
        bands.block.isLinearPhase = isLinearPhase;
        std::vector<MMeter> meters(kMaxCrossoverBands);
        bands.block.bandMeters = meters.data();
        bands.processor.Reserve(bands.block, 512);
        RandomBlocks choose(14);
        Sound sound = Noise(2, 512, 15);
        const AllocationCounter allocations;
        for (int n = 0; n < 200; ++n) {
            choose.Move(bands.block);
            const int count = choose.Integer(1, 512);
            RunInPlace(bands.processor, bands.block, bands.effects, sound, 0, count);
            bands.processor.ProcessBypassed(bands.block, sound[0].data(), count, 0);
        }
        EXPECT_EQ(allocations.Count(), 0);
    }
}

TEST(MBandProcessor, StartsFromSilenceWhenPreparedOrReserved) {
    for (const bool isLinearPhase : {false, true}) {
        Bands used(4), fresh(4);
        used.block.isLinearPhase = fresh.block.isLinearPhase = isLinearPhase;
        const Sound sound = Noise(2, 5000, 17);
        const Sound wanted = fresh.Run(sound);
        for (const bool isReserved : {false, true}) {
            used.Run(sound);
            if (isReserved) {
                used.processor.Reserve(used.block, 100);
            } else {
                used.processor.Prepare(2);
            }
            used.effects = TestEffects(2);
            EXPECT_EQ(used.Run(sound), wanted);
        }
    }
}

}  // namespace
