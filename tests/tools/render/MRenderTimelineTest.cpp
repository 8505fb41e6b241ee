// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/render/ProbeProcessor.h"
#include "tools/render/MRenderTimeline.h"

#include <gtest/gtest.h>

namespace {

constexpr int kRate = 1000;
constexpr double kTempo = 120;
constexpr int kParameter = ProbeEffect::Level;

/// Runs `frames` in blocks of `blockSize`; returns the level at the end of every frame.
std::vector<double> LevelsOf(const std::vector<MRenderLane>& lanes, int frames, int blockSize) {
    ProbeProcessor probe;
    MRenderTimeline timeline(lanes, kRate, kTempo);
    std::vector<double> levels;
    for (int position = 0; position < frames;) {
        const int block =
            timeline.StartBlock(position, std::min(blockSize, frames - position), probe);
        EXPECT_GT(block, 0);
        EXPECT_LE(block, blockSize);
        levels.insert(levels.end(), block, probe.Parameters()[kParameter].record->Value());
        position += block;
    }
    return levels;
}

TEST(MRenderTimeline, PutsEveryUnitOfTimeOnItsFrame) {
    const std::pair<MTimeUnit, double> rows[] = {
        {MTimeUnit::Seconds, 0.25}, {MTimeUnit::Samples, 250}, {MTimeUnit::Beats, 0.5}};
    for (const auto& [unit, time] : rows) {
        const auto levels = LevelsOf({{unit, false, {{time, {{kParameter, 5}}}}}}, 400, 83);
        for (int i = 0; i < 400; ++i) ASSERT_EQ(levels[i], i < 250 ? 1 : 5) << i;
    }
}

TEST(MRenderTimeline, FollowsALineInShortPiecesAndJumpsWhereTwoPointsMeet) {
    const std::vector<MRenderLane> lanes = {{MTimeUnit::Samples,
                                             true,
                                             {{100, {{kParameter, 2}}},
                                              {300, {{kParameter, 4}}},
                                              {300, {{kParameter, 8}}},
                                              {500, {{kParameter, 6}}}}}};
    for (const int blockSize : {1000, 64, 7}) {
        const auto levels = LevelsOf(lanes, 700, blockSize);
        for (int i = 0; i < 700; ++i) {
            const double line = i < 100   ? 1
                                : i < 300 ? 2 + (i + 1 - 100) * 0.01
                                : i < 500 ? 8 - (i + 1 - 300) * 0.01
                                          : 6;
            // The value is that of the piece's end, at most a piece ahead.
            const double slack = i >= 100 && i < 500 ? 0.01 * MRenderTimeline::kPieceFrames : 0;
            ASSERT_NEAR(levels[i], line, slack) << i << " in blocks of " << blockSize;
        }
        EXPECT_DOUBLE_EQ(levels[299], 4) << "the end of a line is met exactly";
    }
}

}  // namespace
