// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MBlockPieces.h"

#include <gtest/gtest.h>

#include <vector>

TEST(MBlockPieces, AreAsLongAsAllowedAndEndWhereSomethingHappens) {
    struct Row {
        int count, limit;
        std::vector<int> events, lengths;
    };
    const Row rows[] = {
        {256, 64, {}, {64, 64, 64, 64}},
        {70, 64, {}, {64, 6}},
        {5, 64, {}, {5}},
        {40, 1, {}, {16, 16, 8}},
        {0, 64, {}, {}},
        {200, 64, {100, 103, 130}, {64, 36, 16, 16, 64, 4}},  // 103 waits until 116, 130 until 132
        {64, 64, {0, 1, 60}, {16, 44, 4}},
        {20, 64, {7, 19}, {16, 4}},
    };
    for (const Row& row : rows) {
        MBlockPieces pieces(row.count, row.limit);
        std::vector<int> lengths;
        while (!pieces.IsDone()) {
            int next = row.count;
            for (const int event : row.events) {
                if (event > pieces.Start()) next = std::min(next, event);
            }
            lengths.push_back(pieces.Take(next));
        }
        EXPECT_EQ(lengths, row.lengths) << row.count << " in " << row.limit;
    }
}
