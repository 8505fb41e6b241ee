// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MKernelSet.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace {

using Four = std::array<double, 4>;

TEST(MControlKernels, AmplitudesArePowersOfTenToTheLastBits) {
    for (const MKernelSet& set : RunnableKernels()) {
        for (double decibels = -100; decibels <= 100; decibels += 0.0371) {
            const Four levels = {decibels, 0, -decibels, -0.0};
            Four amplitudes{}, plainest{};
            set.controls->amplitudes(levels.data(), amplitudes.data(), 4);
            RunnableKernels().front().controls->amplitudes(levels.data(), plainest.data(), 4);
            EXPECT_EQ(amplitudes, plainest) << set.name << ' ' << decibels;
            EXPECT_NEAR(amplitudes[0] / std::pow(10.0, decibels * 0.05), 1, 5e-15) << decibels;
            EXPECT_NEAR(amplitudes[2] / std::pow(10.0, decibels * -0.05), 1, 5e-15) << decibels;
            EXPECT_EQ(amplitudes[1], 1);
            EXPECT_EQ(amplitudes[3], 1);
        }
    }
}

TEST(MControlKernels, ControlsFollowTheirOwnSourceWithinTheirRange) {
    const Four foot = {-1, 10, 0.5, 0}, slope = {2, -4, 8, 1};
    const Four lowest = {-1, 0, -2, 3}, highest = {1, 20, 2, 4};
    const std::array<int, 4> source = {1, 0, 1, 2};
    const double sources[] = {0.25, 0.75, std::numeric_limits<double>::quiet_NaN()};
    for (const MKernelSet& set : RunnableKernels()) {
        Four values{};
        set.controls->follow(
            {foot.data(), slope.data(), lowest.data(), highest.data(), source.data()}, sources,
            values.data(), 4);
        EXPECT_EQ(values, (Four{0.5, 9, 2, 3})) << set.name;
    }
}

}  // namespace
