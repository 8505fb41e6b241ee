// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MXML.h"
#include "tests/support/DelayEntry.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr int kDelayMode = 0, kMode = 13, kMode1 = 22;

std::int64_t Load(DelayEntry& delay, const std::string& attributes) {
    const MXMLTree tree = MXMLTree::Parse("<state " + attributes + "/>");
    MXMLNode root = tree.Root();
    return delay.Send(12, MEffectArgument(&root));
}

}  // namespace

TEST(MDelayLegacyState, ReadsTheModesOfOlderPresets) {
    const struct {
        const char* attributes;
        double mode, mode1, delayMode;
    } rows[] = {
        {R"(parameterclassicmode="0")", 0, 1, 0},
        {R"(parameterclassicmode="2" parameterclassicmode1="0")", 2, 0, 0},
        {R"(parameterclassicmode1="0")", 1, 1, 0},  // counts only beside the first tap's
        {R"(parameterserialmode="1")", 1, 1, 1},
        {R"(parameterclassicmode="0" parameterclassicmode1="2" parameterserialmode="1")", 0, 2, 1},
        {R"(parameterclassicmode="words" parameterclassicmode1="0")", 1, 0, 0},
        {R"(parameterclassicmode="99" parameterserialmode="-3")", 2, 1, 0},
        {R"(parameterclassicmode="1e999" parameterserialmode="")", 1, 1, 0},
        {R"(mode="0" parameterclassicmode="2")", 2, 1, 0},  // the older key has the last word
        {R"(mode="0" mode1="2" DelayMode="1")", 0, 2, 1},
        {"", 1, 1, 0}};
    for (const auto& row : rows) {
        DelayEntry delay;
        EXPECT_EQ(Load(delay, row.attributes), 0) << row.attributes << " is no whole state";
        EXPECT_EQ(delay.Record(kMode).Value(), row.mode) << row.attributes;
        EXPECT_EQ(delay.Record(kMode1).Value(), row.mode1) << row.attributes;
        EXPECT_EQ(delay.Record(kDelayMode).Value(), row.delayMode) << row.attributes;
    }
}
