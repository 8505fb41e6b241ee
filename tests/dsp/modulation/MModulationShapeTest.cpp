// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MModulationShape.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(MModulationShape, HasItsValuesAtEveryPlace) {
    MShapeSettings settings;
    settings.stepCount = 4;
    settings.steps = {0.25, 1, -3, kNaN};
    using enum MShape;
    const struct {
        MShape shape;
        double smoothing, width, phase, value;
    } rows[] = {{Sine, 0, .5, 0, .5},         {Sine, 0, .5, .25, 1},
                {Sine, 0, .5, -.25, 0},       {Sine, 0, .5, 7 + 1.0 / 12, .75},
                {Triangle, 0, .5, .125, .75}, {Triangle, 0, .5, 5.75, 0},
                {SawUp, 0, .5, 2.25, .25},    {SawUp, 0, .5, -1e-20, 0},
                {SawDown, 0, .5, 3, 1},       {SawDown, 0, .5, kNaN, 1},
                {Square, 0, .25, .24, 1},     {Square, 0, .25, .26, 0},
                {Square, .5, .25, .0625, .5}, {Square, 1, .25, .375, .5},
                {Square, 1, 1, 0, 1},         {Square, 0, kNaN, 0, 0},
                {Steps, 0, .5, .3, 1},        {Steps, 0, .5, .6, 0},
                {Steps, .5, .5, 1, 0},        {Steps, .5, .5, 1.0625, .125},
                {Steps, .5, .5, .49, 1}};
    for (const auto& row : rows) {
        settings.shape = row.shape;
        settings.smoothing = row.smoothing;
        settings.width = row.width;
        EXPECT_NEAR(MEvaluateShape(settings, row.phase), row.value, 1e-12)
            << static_cast<int>(row.shape) << " at " << row.phase;
    }
}

TEST(MModulationShape, RandomValuesBelongToTheirCycleAndFillTheRange) {
    MShapeSettings stepped, smooth;
    stepped.shape = MShape::SteppedRandom;
    smooth.shape = MShape::SmoothRandom;
    stepped.seed = smooth.seed = 77777;
    double sum = 0, product = 0;
    constexpr int kCycles = 4000;
    for (int cycle = -kCycles / 2; cycle < kCycles / 2; ++cycle) {
        const double value = MEvaluateShape(stepped, cycle + 0.5);
        const double next = MEvaluateShape(stepped, cycle + 1.0);
        sum += value;
        product += (value - 0.5) * (next - 0.5);
        EXPECT_EQ(MEvaluateShape(smooth, cycle), value);
        EXPECT_NEAR(MEvaluateShape(smooth, cycle + 0.5), (value + next) / 2, 1e-12);
        EXPECT_NEAR(MEvaluateShape(smooth, cycle + 0.9999), next, 1e-7);
    }
    EXPECT_NEAR(sum / kCycles, 0.5, 0.02);
    EXPECT_NEAR(product / kCycles, 0, 0.006);  // neighbours know nothing of each other
    stepped.seed = 77778;
    EXPECT_NE(MEvaluateShape(stepped, 3.0), MEvaluateShape(smooth, 3.0));
}

}  // namespace
