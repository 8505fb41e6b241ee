// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueFrequency.h"
#include "plugin/values/MValueNumber.h"
#include "plugin/values/MValuePercents.h"
#include "plugin/values/MValueScale.h"
#include "plugin/values/MValueStep.h"
#include "plugin/values/MValueVolume.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

TEST(MValueNumber, StepsWithinItsLimits) {
    double value = 5;
    MValueNumber<double> scale(value, {0, 10, 0.5, 2, 1});
    scale.Increment(-3);
    EXPECT_EQ(value, 3.5);
    scale.IncrementPower(1, true);
    EXPECT_EQ(value, 4.5) << "two steps";
    scale.IncrementPower(30, true);
    EXPECT_EQ(value, 6.5) << "no more than the largest step";
    scale.IncrementPower(2000, false);
    EXPECT_EQ(value, 4.5);
    scale.Increment(1000);
    EXPECT_EQ(value, 10);
    value = 50;
    scale.Validate();
    EXPECT_EQ(value, 10);
}

TEST(MValueNumber, MapsPositionsAndTextsAndTellsChanges) {
    double value = 5;
    MValueNumber<double> scale(value, {0, 20, 1, 1, 7});
    scale.SetNormalised(0.25);
    EXPECT_FALSE(scale.IsChanged());
    scale.SetNormalised(0.5);
    EXPECT_TRUE(scale.IsChanged());
    EXPECT_EQ(value, 10);
    value = 100;
    EXPECT_EQ(scale.GetNormalised(), 1) << "positions stay within 0..1";
    scale.SetNormalised(std::nan(""));
    EXPECT_EQ(value, 100) << "what is no number is not stored";
    EXPECT_TRUE(scale.SetDefault());
    EXPECT_FALSE(scale.SetDefault());
    EXPECT_EQ(value, 7);
    const MValueNumber<double> point(value, {7, 7, 1, 1, 7});
    EXPECT_EQ(point.GetNormalised(), 0);

    // Text: by its format, and typed within the limits.
    MValueNumber<double> gain(value, MMakeValueLimits(-24.0, 24.0, 0.0), "{+0.2} dB");
    EXPECT_EQ(gain.GetDisplayTextFrom01(1), "+24.00 dB");
    EXPECT_TRUE(gain.ParseDisplayText("3db"));
    EXPECT_FALSE(gain.ParseDisplayText("+3.00 dB")) << "the same value again is no change";
    for (const char* text : {"4 Hz", "dB", ""}) EXPECT_FALSE(gain.ParseDisplayText(text)) << text;
    EXPECT_EQ(gain.GetDisplayText(), "+3.00 dB");
    EXPECT_TRUE(gain.Edit("1000"));
    EXPECT_EQ(value, 24) << "held within the limits";
}

TEST(MValueNumber, IntegersStayExactAndWithinTheirType) {
    std::int16_t small = 0;
    MValueNumber<std::int16_t> smallScale(small, {-100, 100, 1, 10, 0}, "{0} st");
    smallScale.SetNormalised(0.29);
    EXPECT_EQ(small, -42) << "the nearest whole number";
    EXPECT_EQ(smallScale.GetDisplayText(), "-42 st");
    EXPECT_FALSE(smallScale.ParseDisplayText("1.5")) << "no whole number";
    EXPECT_FALSE(smallScale.ParseDisplayText("70000")) << "beyond the type";

    constexpr std::int64_t kLarge = std::numeric_limits<std::int64_t>::max();
    std::int64_t large = 0;
    MValueNumber<std::int64_t> largeScale(large, {-kLarge, kLarge, 1, 10, 0});
    EXPECT_TRUE(largeScale.ParseDisplayText("9007199254740993"));
    EXPECT_TRUE(largeScale.FromString(largeScale.ToString()));
    EXPECT_EQ(large, 9007199254740993) << "more digits than a double has";
    largeScale.SetNormalised(1);
    EXPECT_EQ(large, kLarge);
    EXPECT_FALSE(largeScale.ParseDisplayText("9223372036854775808"));
}

TEST(MValueNumber, SavesAndLoadsByTypeNameAndTakesPositionsOfOtherKinds) {
    MXMLTree tree("scale");
    double value = 0.123456789, target = 0;
    MValueNumber<double> number(value, MMakeValueLimits(0.0, 1.0, 0.0));
    MValuePercents percents(value, MMakeValueLimits(0.0, 1.0, 0.0));
    percents.Save(tree.Root());
    value = 0.5;
    EXPECT_FALSE(number.Load(tree.Root())) << "saved by another type";
    EXPECT_TRUE(percents.Load(tree.Root()));
    EXPECT_EQ(value, 0.123457);
    EXPECT_FALSE(percents.FromString("12%")) << "storage holds plain numbers";
    value = 0.25;
    EXPECT_TRUE(MValuePercents(target, MMakeValueLimits(0.0, 0.5, 0.0)).Assign(percents));
    EXPECT_EQ(target, 0.25);
    EXPECT_TRUE(MValueVolume(target, MMakeValueLimits(0.0, 4.0, 0.0)).Assign(percents));
    EXPECT_EQ(target, 1);
}

TEST(MValueNumber, BentAndSteppedScalesMoveWithinTheirOwnPositions) {
    double value = 0.0625;
    const auto percents = [&] {
        return std::make_unique<MValuePercents>(value, MMakeValueLimits(0.0, 1.0, 0.5));
    };
    MValueScaleSqr square(percents());
    MValueScalePower power(percents());
    EXPECT_EQ(square.GetNormalised(), 0.25);
    EXPECT_EQ(power.GetNormalised(), 0.5);
    EXPECT_EQ(power.GetDisplayTextFrom01(0.5), "6.2%") << "6.25 rounds to the even digit";
    square.SetNormalised(0.5);
    square.Increment(10);
    EXPECT_NEAR(value, 0.51 * 0.51, 1e-12) << "thousandths of the way";
    square.IncrementPower(12, false);
    EXPECT_NEAR(square.GetNormalised(), 0.41, 1e-12) << "a tenth at the most";

    double hertz = 200;
    MValueFrequency frequency(hertz, MMakeValueLimits(20.0, 20000.0, 1000.0));
    EXPECT_EQ(frequency.GetDisplayTextFrom01(0.5), "10.0 kHz") << "evenly over the hertz";
    frequency.SetNormalised(2.0 / 3);
    EXPECT_NEAR(hertz, 2000, 1e-9);
    frequency.IncrementPower(20, true);
    EXPECT_NEAR(frequency.GetNormalised(), 2.0 / 3 + 0.1, 1e-12);
    EXPECT_EQ(MValueFrequency(hertz, {20, 20, 0, 0, 20}).GetNormalised(), 1);

    MValueStepPercents stepped(value, {0, 1, 0.3, 0.3, 0});
    stepped.SetNormalised(0.5);
    EXPECT_EQ(stepped.GetDisplayText(), "60.0%");
    EXPECT_TRUE(stepped.ParseDisplayText("100%"));
    EXPECT_EQ(value, 1) << "the end is reached though it is no whole step";
}
