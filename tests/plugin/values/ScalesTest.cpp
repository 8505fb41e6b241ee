// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MText.h"
#include "plugin/values/MValueFrequency.h"
#include "plugin/values/MValuePan.h"
#include "plugin/values/MValuePercents.h"
#include "plugin/values/MValueTimeMS.h"
#include "plugin/values/MValueVolume.h"
#include "tests/support/ForeignLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using Rows = std::vector<std::string>;

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
    std::string (*format)(double);
    std::optional<double> (*parse)(const std::string&);
    std::vector<double> grid;
    Rows shown;  // "value=text"
    Rows typed;  // "text=value", "text=" for what is refused
};

const std::vector<Scale> kScales = {
    {MValueVolume::Format,
     MValueVolume::Parse,
     Logarithmic(1e-6, 100),
     {"0=silence", "1e-51=silence", "1=0.00 dB", "0.5=-6.02 dB", "0.1=-20.0 dB", "2=6.02 dB",
      "10=20.0 dB", "-0.5=-6.02 dB", "0.9999=0.00 dB"},
     {"0=1", "-20=0.1", "-20 dB=0.1", "-20db=0.1", "+20 DB=10", "Silence=0", " silence =0",
      "-inf dB=0", "-20,0=0.1", "100000="}},
    {MValueVolume::FormatSquareRoot,
     MValueVolume::ParseSquareRoot,
     Even(0, 1),
     {"0.4=-15.9 dB", "0.7071067811865=-6.02 dB"},
     {"-20=0.316227766016838", "0=1", "silence=0"}},
    {MValuePan::Format,
     MValuePan::Parse,
     Even(-1, 1),
     {"0=center", "-0.5=50% left", "0.339=33% right", "-0.339=33% left", "0.999=99% right",
      "1=100% right", "-1e-51=center", "0.004=0% right"},
     {"-50=-0.5",  "50% left=-0.5", "left 50=-0.5", "L50=-0.5",   "50 l=-0.5",      "50%LEFT=-0.5",
      "r 50%=0.5", "50% right=0.5", "50 %=0.5",     "Center=0",   "centre=0",       "C=0",
      "left=-1",   "R=1",           "0% right=0",   "-50% left=", "left 50 right=", "lleft=",
      "50 lr=",    "right center="}},
    {MValuePercents::Format,
     MValuePercents::Parse,
     Even(-2, 2),
     {"0=0.00%", "0.005=0.50%", "0.01=1.0%", "0.5=50.0%", "-0.5=-50.0%", "3=300.0%"},
     {"50=0.5", "50%=0.5", " 50 % =0.5", "+50=0.5"}},
    {MValueTimeMS::Format,
     MValueTimeMS::Parse,
     Even(-0.01, 0.1),
     {"0=0 ms", "0.00005=0.050 ms", "0.0005=0.50 ms", "0.005=5.0 ms", "0.2504=250 ms",
      "0.2505=251 ms", "-0.0005=-0.50 ms", "-0.1=-100 ms", "0.01=10 ms", "12.3456=12346 ms"},
     {"350=0.35", "350MS=0.35", "0.35 s=0.35", "0,35s=0.35", "350000 us=0.35", "3.5e2=0.35"}},
    {MValueFrequency::Format,
     MValueFrequency::Parse,
     Logarithmic(1e-4, 1e5),
     {"0=0 Hz", "9e-6=0 Hz", "0.5=0.5000 Hz", "4.4=4.40 Hz", "44=44.0 Hz", "440=440 Hz",
      "440.5=441 Hz", "9999.4=9999 Hz", "10000=10.0 kHz", "-44=-44.0 Hz"},
     {"440 Hz=440", "440=440", "1.2k=1200", "1.2 kHz=1200", "1,2 KHZ=1200", "440 m="}},
    {MValueFrequencyLog::Format,
     MValueFrequencyLog::Parse,
     Even(1.3, 4.3),
     {"4=10.0 kHz"},
     {"10 kHz=4", "0=", "-5=", "-5 kHz="}}};

/// The two sides of a row.
std::pair<std::string, std::string> Split(const std::string& row) {
    return {row.substr(0, row.find('=')), row.substr(row.find('=') + 1)};
}

}  // namespace

TEST(Scales, ShowAValueAndReadWhatAUserMayTypeUnderAnyLocale) {
    const ForeignLocale foreign;
    for (const Scale& scale : kScales) {
        for (const std::string& row : scale.shown) {
            const auto [value, text] = Split(row);
            EXPECT_EQ(scale.format(*MText::ReadNumber(value)), text) << value;
        }
        for (const std::string& row : scale.typed) {
            const auto [text, meaning] = Split(row);
            const auto value = scale.parse(text), expected = MText::ReadNumber(meaning);
            ASSERT_EQ(value.has_value(), expected.has_value()) << text;
            EXPECT_NEAR(value.value_or(0), expected.value_or(0),
                        1e-12 * std::abs(value.value_or(0)));
        }
        for (const double value : scale.grid) {
            const std::string text = scale.format(value);
            const std::optional<double> back = scale.parse(text);
            ASSERT_TRUE(back) << text;
            // The text itself may be another where the number of decimals changes.
            const double again = scale.parse(scale.format(*back)).value_or(-1e9);
            ASSERT_NEAR(again, *back, 1e-12 * std::abs(*back)) << text;
        }
    }
    for (int percent = 1; percent <= 100; ++percent) {
        const std::string text = std::to_string(percent) + "% left";
        EXPECT_EQ(MValuePan::Format(*MValuePan::Parse(text)), text);
    }
}

TEST(Scales, ShowWhateverAValueMayHoldAndReadNoForeignText) {
    using Limits = std::numeric_limits<double>;
    for (const Scale& scale : kScales) {
        for (const double value : {Limits::max(), Limits::lowest(), Limits::denorm_min(),
                                   Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()}) {
            EXPECT_FALSE(scale.format(value).empty()) << value;
        }
        for (const char* text :
             {"", " ", "x", "5 x", "5 dB dB", "5 6", "nan", "inf", "1e999", "5%5", "5 ms left",
              "--5", "+-5", "(5)", "5)", "dB", "Hz", "%", "\xFF"}) {
            EXPECT_FALSE(scale.parse(text)) << scale.format(1) << ": " << text;
        }
    }
}
