// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MAmplitude.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(MAmplitude, IsThePowerOfTenToTheLastBits) {
    EXPECT_EQ(MAmplitudeOf(0), 1);
    for (double decibels = -100; decibels <= 100; decibels += 0.0371) {
        const double wanted = std::pow(10.0, decibels * 0.05);
        EXPECT_NEAR(MAmplitudeOf(decibels) / wanted, 1, 5e-15) << decibels;
    }
}

}  // namespace
