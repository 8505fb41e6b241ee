// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueDegreesFrom01.h"
#include "plugin/values/MValueFrequency.h"
#include "plugin/values/MValuePan.h"
#include "plugin/values/MValuePercents.h"
#include "plugin/values/MValuePitch.h"
#include "plugin/values/MValueTimeMS.h"
#include "plugin/values/MValueVolume.h"
#include "tests/support/ForeignLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

std::vector<double> Even(double from, double to) {
    std::vector<double> grid;
    for (int i = 0; i <= 2000; ++i) grid.push_back(from + (to - from) * i / 2000);
    return grid;
}

std::vector<double> Logarithmic(double from, double to) {
    std::vector<double> grid = Even(std::log(from), std::log(to));
    for (double& value : grid) value = std::exp(value);
    return grid;
}

struct Scale {
    const char* name;
    std::string (*format)(double);
    std::optional<double> (*parse)(const std::string&);
    std::vector<double> grid;
};

std::vector<Scale> AllScales() {
    return {
        {"volume", MValueVolume::Format, MValueVolume::Parse, Logarithmic(1e-6, 100)},
        {"bare volume", MValueVolume::FormatWithoutUnit, MValueVolume::Parse, Even(0, 4)},
        {"root volume", MValueVolume::FormatSquareRoot, MValueVolume::ParseSquareRoot, Even(0, 1)},
        {"pan", MValuePan::Format, MValuePan::Parse, Even(-1, 1)},
        {"percents", MValuePercents::Format, MValuePercents::Parse, Even(-2, 2)},
        {"small percents", MValuePercents::Format, MValuePercents::Parse, Even(-0.02, 0.02)},
        {"time", MValueTimeMS::Format, MValueTimeMS::Parse, Even(-0.1, 2)},
        {"short time", MValueTimeMS::Format, MValueTimeMS::Parse, Logarithmic(1e-6, 0.02)},
        {"frequency", MValueFrequency::Format, MValueFrequency::Parse, Logarithmic(1e-4, 1e5)},
        {"linear frequency", MValueFrequencyLinear::Format, MValueFrequencyLinear::Parse,
         Even(-100, 22050)},
        {"log frequency", MValueFrequencyLog::Format, MValueFrequencyLog::Parse, Even(1.3, 4.3)},
        {"degrees", MValueDegreesFrom01::Format, MValueDegreesFrom01::Parse, Even(-1, 2)},
        {"pitch", MValuePitch::Format, MValuePitch::Parse, Logarithmic(1e-3, 40000)},
        {"number", MValueNumber<double>::Format, MValueNumber<double>::Parse,
         Logarithmic(1e-30, 1e30)},
    };
}

}  // namespace

TEST(ScaleReadBack, EveryDisplayedTextMeansAValueAndShowingItMeansNoOtherUnderAnyLocale) {
    const ForeignLocale foreign;
    for (const Scale& scale : AllScales()) {
        for (const double value : scale.grid) {
            const std::string text = scale.format(value);
            const std::optional<double> back = scale.parse(text);
            ASSERT_TRUE(back) << scale.name << ": " << text;
            // The text itself may be another where the number of decimals changes.
            const double again = scale.parse(scale.format(*back)).value_or(-1e9);
            ASSERT_NEAR(again, *back, 1e-12 * std::abs(*back)) << scale.name << ": " << text;
        }
        if (scale.parse == MValueFrequencyLog::Parse) continue;  // its zero is 1 Hz
        EXPECT_EQ(scale.parse(scale.format(0.0)), 0.0) << scale.name << ": " << scale.format(0.0);
    }
}

TEST(ScaleReadBack, ShowsWhateverAValueMayHold) {
    using Limits = std::numeric_limits<double>;
    for (const Scale& scale : AllScales()) {
        for (const double value : {Limits::max(), Limits::lowest(), Limits::denorm_min(),
                                   Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()}) {
            EXPECT_FALSE(scale.format(value).empty()) << scale.name << ": " << value;
        }
    }
}

TEST(ScaleReadBack, ForeignTextMeansNothing) {
    for (const Scale& scale : AllScales()) {
        for (const char* text :
             {"", " ", "x", "5 x", "5 dB dB", "5 6", "nan", "inf", "1e999", "5%5", "5 ms left",
              "--5", "+-5", "(5)", "5)", "dB", "Hz", "%", "\xFF"}) {
            EXPECT_FALSE(scale.parse(text)) << scale.name << ": " << text;
        }
    }
}
