// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MModulationShape.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(MModulationShape, HasItsValuesAtEveryPlace) {
    MShapeSettings settings;
    settings.stepCount = 4;
    settings.steps = {0.25, 1, -3, kNaN};
    struct Row {
        MShape shape;
        double smoothing, width, phase, value;
    };
    const Row rows[] = {{MShape::Sine, 0, 0.5, 0, 0.5},
                        {MShape::Sine, 0, 0.5, 0.25, 1},
                        {MShape::Sine, 0, 0.5, -0.25, 0},
                        {MShape::Sine, 0, 0.5, 7.0 + 1.0 / 12, 0.75},
                        {MShape::Triangle, 0, 0.5, 0.125, .75},
                        {MShape::Triangle, 0, 0.5, 5.75, 0},
                        {MShape::SawUp, 0, 0.5, 2.25, 0.25},
                        {MShape::SawUp, 0, 0.5, -1e-20, 0},
                        {MShape::SawDown, 0, 0.5, 3, 1},
                        {MShape::SawDown, 0, 0.5, kNaN, 1},
                        {MShape::Square, 0, 0.25, 0.24, 1},
                        {MShape::Square, 0, 0.25, 0.26, 0},
                        {MShape::Square, 0.5, 0.25, 0.0625, 0.5},
                        {MShape::Square, 1, 0.25, 0.375, 0.5},
                        {MShape::Square, 1, 1, 0, 1},
                        {MShape::Square, 0, kNaN, 0, 0},
                        {MShape::Steps, 0, 0.5, 0.3, 1},
                        {MShape::Steps, 0, 0.5, 0.6, 0},
                        {MShape::Steps, 0.5, 0.5, 1, 0},
                        {MShape::Steps, 0.5, 0.5, 1.0625, 0.125},
                        {MShape::Steps, 0.5, 0.5, 0.49, 1}};
    for (const Row& row : rows) {
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
