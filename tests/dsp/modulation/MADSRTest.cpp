// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MADSR.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int kRate = 1000;
const MADSRSettings kSettings{
    .attack = 0.1, .decay = 0.2, .sustain = 0.4, .release = 0.1, .velocityAmount = 0.5};

TEST(MADSR, FollowsItsLinesHoweverTheTimeIsCut) {
    // Milliseconds and levels of a note of velocity 0, whose peak is 0.5; released at 400 ms.
    const std::pair<int, double> rows[] = {{0, 0},      {50, 0.25}, {100, 0.5},
                                           {200, 0.35}, {300, 0.2}, {390, 0.2},
                                           {450, 0.1},  {500, 0},   {900, 0}};
    for (const int cut : {1, 7, 60, 1000}) {
        MADSR envelope;
        envelope.NoteOn(0);
        int now = 0;
        const auto goTo = [&](int end) {
            double level = envelope.Advance(0, kRate, kSettings);
            while (now < end) {
                const int count = std::min(cut, end - now);
                level = envelope.Advance(count, kRate, kSettings);
                now += count;
            }
            return level;
        };
        for (const auto& [time, level] : rows) {
            if (time > 400 && now < 400) {
                goTo(400);
                envelope.NoteOff();
            }
            EXPECT_NEAR(goTo(time), level, 1e-9) << time << " in pieces of " << cut;
        }
    }
}

TEST(MADSR, NeitherANewNoteNorOtherSettingsMakeItJump) {
    MADSR envelope;
    MADSRSettings settings = kSettings;
    double last = 0;
    for (int i = 0; i < 20000; ++i) {
        if (i % 97 == 0) envelope.NoteOn((i % 3) * 0.5);
        if (i % 61 == 0) envelope.NoteOff();
        if (i % 41 == 0) settings.sustain = (i % 5) * 0.25;
        const double level = envelope.Advance(1, kRate, settings);
        EXPECT_LE(std::abs(level - last), 1.0001 / 100) << i;  // the steepest line: 100 ms
        last = level;
    }
    const double bad = std::nan("");
    envelope.NoteOn(bad);
    EXPECT_EQ(envelope.Advance(1, kRate, {bad, -1, bad, 0, bad}), 0);
}

}  // namespace
