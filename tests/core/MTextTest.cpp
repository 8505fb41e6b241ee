// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MText.h"
#include "tests/support/ForeignLocale.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

TEST(MText, ReadsTheNumberThatATextBeginsWith) {
    const struct {
        const char* text;
        double value;
        const char* rest;
    } rows[] = {{"-6 dB", -6, "dB"},  {" 350ms ", 350, "ms"}, {"+0.5", 0.5, ""},
                {"1,5 k", 1.5, "k"},  {",5", 0.5, ""},        {".5", 0.5, ""},
                {"1e3", 1000, ""},    {"0x10", 0, "x10"},     {"1, 2", 1, ", 2"},
                {"1.000,5", 1, ",5"}, {"5,", 5, ","},         {"\t-0,25\n", -0.25, ""}};
    for (const auto& [text, value, rest] : rows) {
        const auto number = MText::ReadLeadingNumber(text);
        ASSERT_TRUE(number) << text;
        EXPECT_EQ(number->value, value) << text;
        EXPECT_EQ(number->rest, rest) << text;
        EXPECT_EQ(MText::ReadNumber(text).has_value(), number->rest.empty()) << text;
    }
    for (const char* text : {"", "  ", "dB", "-", "+", "+-5", "--5", "inf", "-inf", "nan", "1e999",
                             "infinity", "NAN(1)", ".", ",", "e5"}) {
        EXPECT_FALSE(MText::ReadLeadingNumber(text)) << text;
    }
}

TEST(MText, WritesNumbersThatReadBackToTheSameBitsUnderAnyLocale) {
    const ForeignLocale foreign;
    const std::pair<double, const char*> rows[] = {
        {0, "0"},        {0.1, "0.1"},    {0.30000000000000004, "0.30000000000000004"},
        {1e22, "1e+22"}, {1e-7, "1e-07"}, {1234567.25, "1234567.25"}};
    for (const auto& [value, text] : rows) EXPECT_EQ(MText::WriteNumber(value), text);
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) continue;
        const auto back = MText::ReadNumber(MText::WriteNumber(value));
        ASSERT_TRUE(back) << value;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(*back), std::bit_cast<std::uint64_t>(value));
    }
}

TEST(MText, TrimsAndFoldsAsciiOnly) {
    const ForeignLocale foreign;
    EXPECT_EQ(MText::Trim(" \t a b\r\n"), "a b");
    EXPECT_EQ(MText::Trim(" \n"), "");
    EXPECT_TRUE(MText::EqualsIgnoringCase("INPUT", "input")) << "no dotless i";
    EXPECT_EQ(MText::ToLower("INPUT É"), "input É");
    for (const auto& [one, other] : {std::pair("é", "É"), {"ab", "abc"}, {"[", "{"}})
        EXPECT_FALSE(MText::EqualsIgnoringCase(one, other)) << one;
}
