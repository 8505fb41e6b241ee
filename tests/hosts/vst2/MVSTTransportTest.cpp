// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MVSTText.h"
#include "hosts/vst2/MVSTTransport.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

using namespace Vst2;

namespace {

static_assert(MVSTTransport::kFields == 16071 && MVSTTransport::kPositionFields == 11776);

VstTimeInfo Playing(double position) {
    VstTimeInfo time = {};
    time.ppqPos = position;
    time.tempo = 90;
    time.timeSigNumerator = 6;
    time.timeSigDenominator = 8;
    time.barStartPos = 2.26;
    time.flags = kVstTransportPlaying;
    return time;
}

TEST(MVSTTransport, TellsPlayingFromJumpingAndStopping) {
    MVSTTransport reader;
    MTransport transport;
    const struct {
        double position;
        int flags;
        bool isPlaying, hasJumped, changed;
    } rows[] = {{10, kVstTransportPlaying, false, true, false},
                {10.1, kVstTransportPlaying, true, false, true},
                {12.1, kVstTransportPlaying, true, false, false},
                {14.6, kVstTransportPlaying, true, true, false},
                {14.7, 0, false, false, true},
                {14.8, kVstTransportPlaying, true, false, true},
                {30, 0, false, false, true},
                {30.1, kVstTransportPlaying, false, true, false}};
    for (const auto& row : rows) {
        VstTimeInfo time = Playing(row.position);
        time.flags = row.flags;
        reader.Update(time, 64, transport);
        EXPECT_EQ(transport.isPlaying, row.isPlaying) << row.position;
        EXPECT_EQ(transport.hasJumped, row.hasJumped) << row.position;
        EXPECT_EQ(transport.playStateChanged, row.changed) << row.position;
    }
    EXPECT_TRUE(transport.isValid);
    EXPECT_EQ(transport.tempo, 90);
    EXPECT_EQ(transport.signatureNumerator, 6);
    EXPECT_EQ(transport.barStart, 2.5);  // on an eighth
    VstTimeInfo ofEvents = Playing(15);
    ofEvents.tempo = 99;
    reader.UpdatePosition(ofEvents, transport);
    EXPECT_EQ(transport.tempo, 99);
    reader.Update(Playing(15), 64, transport);
    EXPECT_EQ(transport.tempo, 90);
}

TEST(MVSTTransport, CountsFromTheEndOfABlockLongerThanTwoQuarterNotes) {
    MVSTTransport reader;
    reader.SetSampleRate(48000);
    MTransport transport;
    constexpr int kQuarter = 32000;  // frames, at tempo 90
    const struct {
        double position;
        int frames;
        bool hasJumped;
    } rows[] = {{0, 4 * kQuarter, false},    {4, 8 * kQuarter, false},
                {12, 4 * kQuarter, false},   {12, 4 * kQuarter, true},
                {18, 4 * kQuarter, false},   {24.1, 64, true},
                {24.2, 2 * kQuarter, false}, {26.2, 64, false},
                {26, 2 * kQuarter, false},   {28.1, 64, true}};
    for (const auto& row : rows) {
        reader.Update(Playing(row.position), row.frames, transport);
        EXPECT_EQ(transport.hasJumped, row.hasJumped) << row.position;
        EXPECT_TRUE(transport.isPlaying);
    }
}

TEST(MVSTTransport, TakesAFieldThatTheHostHasNotFlaggedOnlyWhenASongMayHaveIt) {
    MVSTTransport reader;
    MTransport transport;
    VstTimeInfo time = {};
    const auto update = [&](int flags) {
        time.flags = flags;
        reader.Update(time, 64, transport);
    };
    update(0);
    EXPECT_EQ(transport.tempo, 120);
    EXPECT_EQ(transport.signatureDenominator, 4);
    time = Playing(1);
    time.cycleEndPos = 4;
    update(0);
    time.tempo = 1000;
    time.barStartPos = time.cycleEndPos = -1e6;
    time.timeSigNumerator = 65;
    for (const double position : {-1e6, 1.0}) {
        time.ppqPos = position;
        update(0);
        EXPECT_EQ(transport.tempo, 90);
        EXPECT_EQ(transport.songPosition, 1);
        EXPECT_EQ(transport.barStart, 2.5);
        EXPECT_EQ(transport.cycleEnd, 4);
        EXPECT_EQ(transport.signatureNumerator, 6);
    }
    for (const double position : {1.0, -1e6}) {
        time.ppqPos = position;
        update(MVSTTransport::kFields & ~kVstTransportPlaying);
        EXPECT_EQ(transport.tempo, 1000);
        EXPECT_EQ(transport.songPosition, position);
        EXPECT_EQ(transport.barStart, -1e6);
        EXPECT_EQ(transport.cycleEnd, -1);
        EXPECT_EQ(transport.signatureNumerator, 65);
    }
}

TEST(MVSTTransport, HasACycleOnlyWhenItHasALength) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double rows[][3] = {{4, 8, 4}, {4, 4, -1}, {8, 4, -1}, {4, infinity, -1}};
    for (const auto& [start, end, expected] : rows) {
        MTransport transport;
        VstTimeInfo time = Playing(0);
        time.cycleStartPos = start;
        time.cycleEndPos = end;
        MVSTTransport().Update(time, 64, transport);
        EXPECT_EQ(transport.cycleStart, expected) << end;
        EXPECT_EQ(transport.cycleEnd, expected < 0 ? -1 : end) << end;
    }
}

TEST(MVSTTransport, KeepsWhatItKnewWhenTheHostTalksNonsense) {
    MTransport transport;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    MVSTTransport reader;
    reader.Update(Playing(1), 64, transport);
    for (const double wrong : {nan, 0.0, -5.0}) {
        VstTimeInfo time = Playing(nan);
        time.tempo = wrong;
        time.barStartPos = nan;
        time.timeSigNumerator = time.timeSigDenominator = 0;
        reader.Update(time, 64, transport);
        EXPECT_EQ(transport.tempo, 90);
        EXPECT_EQ(transport.songPosition, 1);
        EXPECT_EQ(transport.barStart, 2.5);
        EXPECT_EQ(transport.signatureDenominator, 8);
    }
}

TEST(CopyText, CutsBetweenCharacters) {
    const struct {
        const char* text;
        std::size_t limit;
        const char* copied;
    } rows[] = {
        {"abc", 3, "abc"}, {"abc", 2, "ab"}, {"a\u00b0b", 2, "a"}, {"\u20ac", 2, ""}, {"", 0, ""}};
    for (const auto& row : rows) {
        char buffer[8] = "xxxxxxx";
        CopyText(row.text, row.limit, buffer);
        EXPECT_EQ(std::string(buffer), row.copied);
    }
}

}  // namespace
