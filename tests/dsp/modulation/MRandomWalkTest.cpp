// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MControlSmoother.h"
#include "dsp/modulation/MRandomWalk.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(MRandomWalk, HasTheSameValuesHoweverTheTimeIsCutAndStaysSmooth) {
    for (const double smoothness : {0.0, 0.5, 1.0}) {
        MRandomWalkSettings settings{.rate = 37.7, .smoothness = smoothness, .seed = 5};
        MRandomWalk fine, coarse;
        double last = fine.Advance(0, 48000, settings), least = 1, most = 0;
        const double steepest = 1.0001 * MRandomWalk::kLongestStep * 48 / 48000;
        for (int second = 0; second < 60; ++second) {
            for (int i = 0; i < 48000; ++i) {
                const double value = fine.Advance(1, 48000, settings);
                if (std::abs(value - last) > steepest) ADD_FAILURE() << "jump at " << i;
                least = std::min(least, value);
                most = std::max(most, last = value);
            }
            for (int done = 0; done < 48000 - 960; done += 64) coarse.Advance(64, 48000, settings);
            EXPECT_EQ(coarse.Advance(960, 48000, settings), last) << second;
            settings.rate = 30 + second % 18;
        }
        EXPECT_TRUE(least >= 0 && least < 0.1 && most > 0.9 && most <= 1) << least << " " << most;
    }
}

}  // namespace
