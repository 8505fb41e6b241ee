// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MBandArguments.h"
#include "tools/render/MRenderFailure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using Crossover = MBandSetup::Crossover;
using Slope = MAudioFilters::CrossoverGeneralizedType;

TEST(MBandArguments, IsOneBandUnlessBandsOrLimitsSayMore) {
    EXPECT_EQ(MBandArguments().Read().count, 1);
    EXPECT_EQ(MBandArguments{.bands = 4}.Read().count, 4);
    const MBandSetup setup = MBandArguments{.limits = {"200", "2 kHz"}}.Read();
    EXPECT_EQ(setup.count, 3);
    EXPECT_EQ(setup.limits, (std::vector<double>{200, 2000}));
}

TEST(MBandArguments, ReadsCrossoverAndSlope) {
    EXPECT_EQ(MBandArguments({.bands = 2, .crossover = "Hybrid"}).Read().crossover,
              Crossover::Hybrid);
    EXPECT_EQ(MBandArguments({.bands = 2, .crossover = "linear"}).Read().crossover,
              Crossover::LinearPhase);
    EXPECT_EQ(MBandArguments({.bands = 2, .slope = 120}).Read().slope, Slope::Slope120);
    EXPECT_EQ(MBandArguments({.bands = 2}).Read().slope, Slope::Slope24);
    EXPECT_EQ(MBandArguments({.bands = 2, .crossover = "linear", .slope = 48}).Read().slope,
              Slope::Slope48);
}

TEST(MBandArguments, SoloMutesAllOtherBands) {
    const MBandSetup setup =
        MBandArguments{.bands = 4, .mute = {2}, .solo = {2, 3}, .bypassBands = {1}}.Read();
    EXPECT_THAT(setup.muted, testing::UnorderedElementsAre(1, 2, 4));
    EXPECT_THAT(setup.bypassed, testing::ElementsAre(1));
}

TEST(MBandArguments, RefusesWhatDoesNotGoTogether) {
    const std::pair<MBandArguments, const char*> rows[] = {
        {{.bands = 0}, "1 to 6 bands"},
        {{.bands = 7}, "1 to 6 bands"},
        {{.limits = {"30", "60", "100", "1k", "2k", "3k"}}, "1 to 6 bands"},
        {{.bands = 3, .limits = {"200"}}, "takes 2 --limits, not 1"},
        {{.limits = {"2000", "200"}}, "upwards"},
        {{.limits = {"200", "200"}}, "upwards"},
        {{.limits = {"10"}}, "20 Hz to 20 kHz"},
        {{.limits = {"low"}}, "20 Hz to 20 kHz"},
        {{.bands = 2, .crossover = "steep"}, "analog, linear or hybrid"},
        {{.bands = 2, .slope = 36}, "12, 24, 48"},
        {{.bands = 2, .mute = {3}}, "--mute 3"},
        {{.bands = 2, .solo = {0}}, "--solo 0"},
        {{.bypassBands = {-1}}, "--bypass-band -1"},
    };
    for (const auto& [options, hint] : rows) {
        try {
            options.Read();
            ADD_FAILURE() << "accepted; expected " << hint;
        } catch (const MRenderFailure& failure) {
            EXPECT_EQ(failure.Code(), MExitCode::Usage);
            EXPECT_THAT(failure.Text(), testing::HasSubstr(hint));
        }
    }
}

}  // namespace
