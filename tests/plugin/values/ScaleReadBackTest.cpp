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

double Same(double value) { return value; }
double Thousandfold(double value) { return 1000 * value; }
double Hundredfold(double value) { return 100 * value; }
double Decibels(double amplitude) { return 20 * std::log10(amplitude); }
double SquaredDecibels(double root) { return 40 * std::log10(root); }
double Hertz(double log10Hertz) { return std::pow(10, log10Hertz); }
double Cents(double hertz) { return 1200 * std::log2(hertz); }
double Degrees(double turns) { return 360 * turns; }

struct Scale {
    const char* name;
    std::string (*format)(double);
    std::optional<double> (*parse)(const std::string&);
    double (*shown)(double);  // the number that the text shows, in the text's smaller unit
    double digit;  // how far the text may be off, in its last digit; 0: one whole (pitch)
    std::vector<double> grid;
};

std::vector<Scale> AllScales() {
    return {
        {"volume", MValueVolume::Format, MValueVolume::Parse, Decibels, 0.5,
         Logarithmic(1e-6, 100)},
        {"volume without unit", MValueVolume::FormatWithoutUnit, MValueVolume::Parse, Decibels, 0.5,
         Logarithmic(1e-6, 100)},
        {"root volume", MValueVolume::FormatSquareRoot, MValueVolume::ParseSquareRoot,
         SquaredDecibels, 0.5, Logarithmic(1e-3, 1)},
        {"pan", MValuePan::Format, MValuePan::Parse, Hundredfold, 1, Even(-1, 1)},
        {"percents", MValuePercents::Format, MValuePercents::Parse, Hundredfold, 0.5, Even(-2, 2)},
        {"small percents", MValuePercents::Format, MValuePercents::Parse, Hundredfold, 0.5,
         Even(-0.02, 0.02)},
        {"time", MValueTimeMS::Format, MValueTimeMS::Parse, Thousandfold, 0.5, Even(-0.1, 2)},
        {"short time", MValueTimeMS::Format, MValueTimeMS::Parse, Thousandfold, 0.5,
         Logarithmic(1e-6, 0.02)},
        {"frequency", MValueFrequency::Format, MValueFrequency::Parse, Same, 0.5,
         Logarithmic(1e-4, 1e5)},
        {"linear frequency", MValueFrequencyLinear::Format, MValueFrequencyLinear::Parse, Same, 0.5,
         Even(-100, 22050)},
        {"log frequency", MValueFrequencyLog::Format, MValueFrequencyLog::Parse, Hertz, 0.5,
         Even(std::log10(20), std::log10(20000))},
        {"degrees", MValueDegreesFrom01::Format, MValueDegreesFrom01::Parse, Degrees, 0.5,
         Even(-1, 2)},
        {"pitch", MValuePitch::Format, MValuePitch::Parse, Cents, 0, Logarithmic(1e-3, 40000)},
        {"number", MValueNumber<double>::Format, MValueNumber<double>::Parse, Same, 0.5,
         Logarithmic(1e-30, 1e30)},
    };
}

// The worth of the last digit of the number that `text` shows.
double LastDigit(const std::string& text) {
    const std::string number = text.substr(0, text.find_first_not_of("+-.0123456789"));
    const std::size_t point = number.find('.');
    const double digit =
        point == std::string::npos ? 1 : std::pow(10, -double(number.size() - point - 1));
    return text.ends_with("kHz") ? 1000 * digit : digit;
}

void ExpectReadsBack(const Scale& scale, double value) {
    const std::string text = scale.format(value);
    const std::optional<double> back = scale.parse(text);
    ASSERT_TRUE(back) << scale.name << ": " << text;
    const double allowed = scale.digit > 0 ? scale.digit * LastDigit(text) : 0.5;
    ASSERT_NEAR(scale.shown(*back), scale.shown(value), allowed * (1 + 1e-6) + 1e-9)
        << scale.name << ": " << text;
}

}  // namespace

TEST(ScaleReadBack, EveryDisplayedTextMeansItsValueUnderAnyLocale) {
    const ForeignLocale foreign;
    for (const Scale& scale : AllScales()) {
        for (const double value : scale.grid) ExpectReadsBack(scale, value);
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
