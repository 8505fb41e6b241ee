// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "core/MFormat.h"
#include "core/MText.h"
#include "tests/support/ForeignLocale.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>

namespace {
/// The parts of "format|value|text".
std::array<std::string, 3> Split(const std::string& row) {
    const std::size_t first = row.find('|'), second = row.find('|', first + 1);
    return {row.substr(0, first), row.substr(first + 1, second - first - 1),
            row.substr(second + 1)};
}
}  // namespace

TEST(MFormat, WritesNumbersByTheirSpecificationWithTiesToTheEvenDigit) {
    const std::string numbers[] = {"{0;.2} dB|-6.0206|-6.02 dB",
                                   "{0.2}|2|2.00",
                                   "{0}|1.5|1.5000",
                                   "{0.0}|2.5|2",
                                   "{0.2}|0.125|0.12",
                                   "{0.1}|0.35|0.3",
                                   "{0.3}|0.0005|0.001",
                                   "{+0.2} dB|3|+3.00 dB",
                                   "{+0.2} dB|0|0.00 dB",
                                   "{+0.2} dB|-3|-3.00 dB",
                                   "{+0.2}|1e-21|0.00",
                                   "{0.2}|-0.001|0.00",
                                   "{0.10}|1e20|1e+20",
                                   "{0.9}|1e-9|0.000000001",
                                   "a{{b}|1|a{b}",
                                   "{1}{7}|1|",
                                   "none|1|none"};
    for (const std::string& row : numbers) {
        const auto [format, value, text] = Split(row);
        EXPECT_EQ(MFormat(format, *MText::ReadNumber(value)), text) << format;
    }
    const std::string integers[] = {
        "{0}|-42|-42",       "{0:02}|7|07",
        "{0:02}|123|123",    "{0;04}|-7|-007",
        "{0 4}|-7|  -7",     "{x}|255|ff",
        "{0x04}|10|000a",    "{x}|-1|ffffffffffffffff",
        "{+}|5|+5",          "{0+}|0|0",
        "{+}|-5|-5",         "{0.}|5|5.0000",
        "{+0.1} %|5|+5.0 %", "{0}|-9223372036854775808|-9223372036854775808"};
    for (const std::string& row : integers) {
        const auto [format, value, text] = Split(row);
        EXPECT_EQ(MFormat(format, std::int64_t{std::stoll(value)}), text) << format;
    }
    EXPECT_EQ(MFormat("{0.1} {1.1} {2.10}", -HUGE_VAL, -NAN, 1.0 / 3), "-inf nan 0.3333333333");
    EXPECT_EQ(MFormat("{0.1}", std::numeric_limits<double>::max()).size(), 311u);
    EXPECT_EQ(MFormat("{0.999999999999}", 0.5), "0.5") << "an absurd count is held in";
    EXPECT_LE(MFormat("{0 999999999999}", 1).size(), 100u) << "an absurd width is held in";
}

TEST(MFormat, PutsArgumentsWhereTheyAreAskedFor) {
    EXPECT_EQ(MFormat("{0}{1} ({2+} cents)", "A", 4, 12), "A4 (+12 cents)");
    EXPECT_EQ(MFormat("{2}{1}{0}", 1, std::string("é"), "z"), "zé1");
    EXPECT_EQ(MFormat("{1}|{0:02}|{1}", 3, "{0}"), "{0}|03|{0}") << "texts are not formatted again";
    EXPECT_EQ(MFormat("no arguments {0}"), "no arguments ");
    const ForeignLocale foreign;
    EXPECT_EQ(MFormat("{0.2} {1} {0.12}", 12345.5, 1234567), "12345.50 1234567 12345.5");
}

TEST(MFormat, RefusesAnOpenSpecification) {
    for (const char* format : {"{", "{0", "dB {+0.2", "{{{", "{0}{1;"}) {
        EXPECT_THROW(MFormat(format, 1), MException) << format;
    }
}
