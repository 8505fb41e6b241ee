// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandProcessor.h"
#include "dsp/MMeter.h"
#include "tests/adapters/BandsForTests.h"
#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <stdexcept>

namespace {

/// The band loop written down plainly: band after band, channel after channel, sample after sample,
/// split by ProcessBand.
struct PlainBands {
    MAnalogCrossover analog;
    MLinearPhaseCrossover linearPhase;
    std::array<MAnalogChannelState, MBandProcessor::kMaxChannels> analogStates;
    std::array<MLinearPhaseChannelState, MBandProcessor::kMaxChannels> linearStates;

    Sound Run(const MBandBlock& block, TestEffects& effects, Sound sound) {
        analog.BeginBlock();
        linearPhase.BeginBlock();
        const std::size_t count = sound[0].size();
        std::vector<std::vector<double>> sum(sound.size(), std::vector<double>(count));
        for (int band = 0; band < block.bandCount; ++band) {
            const MBandSettings& settings = block.bands[band];
            const Sound input = Input(block, band, sound), output = effects.Run(band, input);
            for (std::size_t c = 0; c < sound.size() && !settings.isMuted; ++c) {
                for (std::size_t i = 0; i < count; ++i) {
                    const double in = Wide(input[c][i]), out = Wide(output[c][i]);
                    const double mixed =
                        At(block.dry, i, count) * in + At(block.wet, i, count) * out;
                    sum[c][i] += settings.isBypassed ? in : mixed;
                }
            }
        }
        for (std::size_t c = 0; c < sound.size(); ++c) {
            for (std::size_t i = 0; i < count; ++i) {
                sound[c][i] = static_cast<float>(sum[c][i] * block.outputGain.from);
            }
        }
        return sound;
    }

private:
    static double Wide(float sample) { return static_cast<double>(sample); }
    static double At(const MRampEnds& ends, std::size_t i, std::size_t count) {
        return ends.from +
               static_cast<double>(i) * ((ends.to - ends.from) / static_cast<double>(count));
    }
    /// What a band's input is multiplied by at one end of a block.
    static double Gain(const MBandBlock& block, int band, double MRampEnds::*end) {
        const double gain = block.bands[band].gain.*end, wet = block.wet.*end;
        return block.inputGain.*end * (block.wetAffectsGain ? wet * gain + (1 - wet) : gain);
    }

    /// What the effect of a band hears.
    Sound Input(const MBandBlock& block, int band, Sound sound) {
        const MRampEnds gain{Gain(block, band, &MRampEnds::from),
                             Gain(block, band, &MRampEnds::to)};
        const bool splits = block.bandCount > 1 && block.splitOverride < 0;
        const int count = static_cast<int>(sound[0].size());
        for (std::size_t c = 0; c < sound.size(); ++c) {
            std::vector<double> wide(sound[c].size());
            for (int i = 0; i < count; ++i)
                wide[i] = std::isfinite(sound[c][i]) ? Wide(sound[c][i]) : 0;
            if (splits && !block.isLinearPhase) {
                analog.ProcessBand(analogStates[c], band, wide.data(), wide.data(), count);
            }
            float* const samples = sound[c].data();
            for (int i = 0; i < count; ++i)
                samples[i] = static_cast<float>(wide[i] * At(gain, i, count));
            if (splits && block.isLinearPhase) {
                linearPhase.ProcessBand(linearStates[c], band, samples, samples, count);
            }
        }
        const double share = block.wetAffectsPanorama ? block.wet.from : 1;
        for (int i = 0; i < count && sound.size() == 2; ++i) {
            const double p = share * At(block.bands[band].panorama, i, count);
            const double left = Wide(sound[0][i]), right = Wide(sound[1][i]);
            sound[0][i] = static_cast<float>(p >= 0 ? (1 - p) * left : left - p * right);
            sound[1][i] = static_cast<float>(p >= 0 ? right + p * left : (1 + p) * right);
        }
        return sound;
    }
};

/// One processor beside the plain loop, through blocks of random settings and sizes.
void CompareWithPlainBands(int seed) {
    RandomBlocks choose(seed);
    const int channels = std::array{2, 2, 2, 1, 3, 8}[choose.Integer(0, 5)];
    const Slope slope = static_cast<Slope>(choose.Integer(0, 5));
    Bands bands(choose.Integer(1, 6), channels, slope);
    bands.block.isLinearPhase = choose.Integer(0, 1) == 1;
    bands.block.splitOverride = choose.Integer(0, 7) == 0 ? 0 : -1;
    PlainBands plain;
    plain.analog.Design(bands.block.bandCount, kLimits, 48000, slope);
    plain.linearPhase.Design(bands.block.bandCount, kLimits, 48000, false);
    TestEffects effects(channels);

    double peak = 0, difference = 0;
    for (int n = 0; n < 20; ++n) {
        choose.Move(bands.block);
        Sound sound =
            Noise(channels, choose.Integer(0, 3) == 0 ? 256 : choose.Integer(1, 700), 1, n);
        if (n % 4 == 0) sound[0][0] = std::numeric_limits<float>::infinity();
        if (n % 4 == 1) sound.back().back() = std::numeric_limits<float>::quiet_NaN();
        const Sound wanted = plain.Run(bands.block, effects, sound);
        peak = std::max(peak, Peak(wanted));
        difference = std::max(difference, Difference(bands.Run(sound), wanted));
    }
    EXPECT_LE(difference, 1e-6 * peak)
        << "seed " << seed << ", " << bands.block.bandCount << " bands, " << channels
        << " channels, " << (bands.block.isLinearPhase ? "linear phase" : "analog");
}

TEST(MBandProcessor, EqualsThePlainLoopForAnySettingsAndBlockSizes) {
    for (int seed = 0; seed < 80; ++seed) CompareWithPlainBands(seed);
}

TEST(MBandProcessor, BypassesWithoutAllPassesWhereNothingIsSplit) {
    Bands bands(3);
    bands.block.splitOverride = 0;
    const Sound sound = Noise(1, 300);
    Sound bypassed = sound;
    bands.processor.ProcessBypassed(bands.block, bypassed[0].data(), 300, 0);
    EXPECT_EQ(bypassed, sound);
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
        bands.Run(Constant(2, 4803, -0.5f));
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
            const Sound sound = Noise(2, 100 + n, 1, n);
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

TEST(MBandProcessor, KeepsNothingOfTheBypassedSignalWhileAnotherCrossoverRuns) {
    Bands bands(4, 2, Slope::Slope120);
    const auto bypassed = [&](Sound sound) {
        bands.Run(sound);
        bands.processor.ProcessBypassed(bands.block, sound[0].data(), 1000, 0);
        return sound[0];
    };
    bypassed(Constant(2, 1000, 1));
    for (const bool isLinearPhase : {true, false}) {
        bands.block.isLinearPhase = isLinearPhase;
        EXPECT_EQ(bypassed(Constant(2, 1000, 0)), std::vector<float>(1000));
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
            const Sound output = bands.Run(Constant(2, 4096, bad));
            EXPECT_TRUE(std::isfinite(Peak(output))) << bad;
        }
        // The loudest of filters has rung out after ten seconds.
        for (int n = 0; n < 120; ++n) {
            EXPECT_TRUE(std::isfinite(Peak(bands.Run(Constant(2, 4096, 0)))));
        }
        const Sound sound = Noise(2, 4096);
        Bands fresh(6, 2, Slope::Slope120);
        fresh.block.isLinearPhase = isLinearPhase;
        EXPECT_LE(Difference(bands.Run(sound), fresh.Run(sound)), 1e-3);
    }
}

TEST(MBandProcessor, FollowsTheCountOfTheDesignUntilAllAgree) {
    Bands bands(3);
    bands.block.bandCount = 5;
    const Sound sound = Noise(2, 64);
    bands.Run(sound);
    EXPECT_EQ(bands.effects.runs, (std::array{1, 1, 1, 0, 0, 0}));
    bands.block.bandCount = 1;
    bands.Run(sound);
    EXPECT_EQ(bands.effects.runs, (std::array{2, 1, 1, 0, 0, 0}));

    Bands undesigned;
    undesigned.block.bandCount = 4;
    undesigned.block.wet = {0, 0};
    for (const bool isLinearPhase : {false, true}) {
        undesigned.block.isLinearPhase = isLinearPhase;
        EXPECT_EQ(undesigned.Run(sound), sound);
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
        Sound sound = Noise(2, 512);
        const AllocationCounter allocations;
        for (int n = 0; n < 200; ++n) {
            choose.Move(bands.block);
            const int count = choose.Integer(1, 512);
            bands.Run(sound, 0, count);
            bands.processor.ProcessBypassed(bands.block, sound[0].data(), count, 0);
        }
        EXPECT_EQ(allocations.Count(), 0);
    }
}

TEST(MBandProcessor, StartsFromSilenceWhenPreparedReservedOrSplitAgainInBlocksOfAnySize) {
    std::mt19937 random(11);
    for (const bool isLinearPhase : {false, true}) {
        Bands used(5), fresh(5);
        for (MBandBlock* block : {&used.block, &fresh.block}) {
            block->isLinearPhase = isLinearPhase;
            block->wet = {0.8, 0.8};
            block->bands[2].gain = {0.5, 0.5};
            block->bands[3].panorama = {-0.25, -0.25};
        }
        const Sound sound = Noise(2, 9000);
        const Sound wanted = fresh.Run(sound);
        for (int way = 0; way < 3; ++way) {
            used.Run(sound);
            if (way == 0) used.processor.Prepare(2);
            if (way == 1) used.processor.Reserve(used.block, 100);
            if (way == 2) {
                used.block.splitOverride = 0;
                used.Run(sound);
                used.block.splitOverride = -1;
            }
            used.effects = TestEffects(2);
            Sound output = sound;
            for (int first = 0, count = 0; first < 9000; first += count) {
                count = std::min(9000 - first, std::uniform_int_distribution(1, 600)(random));
                used.Run(output, first, count);
            }
            EXPECT_EQ(output, wanted);
        }
    }
}

}  // namespace
