// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MChoiceReader.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

TEST(MChoiceReader, ReadsNamesGenerously) {
    const std::vector<std::string> modes = {"Default", "Classic", "PingPong", "Ping"};
    const std::vector<std::string> lengths = {"4", "2", "1", "1 / 2", "1 / 4", "1 / 8", "1 / 16"};
    const struct {
        const std::vector<std::string>& names;
        std::vector<std::pair<const char*, int>> rows;
        std::vector<const char*> refused;
    } lists[] = {
        {modes,
         {{"classic", 1}, {" Ping Pong ", 2}, {"ping", 3}, {"PINGP", 2}, {"def", 0}, {"2", 2}},
         {"", " ", "p", "classics", "4", "-1", "1.5"}},
        {lengths,
         {{"1/8", 5}, {"1 / 8", 5}, {"1/8d", 5}, {"1/8 T", 5}, {"1", 2}, {"1/16.", 6}, {"2", 1}},
         {"1/1", "3", "1/", "1/8x", "1/8dd", "d"}}};
    for (const auto& [names, rows, refused] : lists) {
        for (const auto& [text, index] : rows) EXPECT_EQ(MReadChoice(names, text), index) << text;
        for (const char* text : refused) EXPECT_FALSE(MReadChoice(names, text)) << text;
    }
}
