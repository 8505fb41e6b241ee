// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/render/Refusals.h"
#include "tools/render/MBandArguments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using Slope = MAudioFilters::CrossoverGeneralizedType;

TEST(MBandArguments, ReadsCountLimitsCrossoverAndSlope) {
    EXPECT_EQ(MBandArguments().Read().count, 1);
    EXPECT_EQ(MBandArguments({.bands = 4}).Read().slope, Slope::Slope24);
    const MBandSetup setup =
        MBandArguments{.crossover = "Hybrid", .slope = 120, .limits = {"200", "2 kHz"}}.Read();
    EXPECT_EQ(setup.count, 3);
    EXPECT_EQ(setup.limits, (std::vector<double>{200, 2000}));
    EXPECT_EQ(setup.crossover, MBandSetup::Crossover::Hybrid);
    EXPECT_EQ(setup.slope, Slope::Slope120);
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
    ExpectRefusals(rows, [](const MBandArguments& options) { options.Read(); });
}

}  // namespace
