// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MMIDIControl.h"
#include "plugin/MAudioPlugin.h"
#include "plugin/parameters/ParameterEnumT.h"
#include "plugin/parameters/ParameterFloatT.h"
#include "plugin/presets/MPresetStepper.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Reports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <vector>

using testing::ElementsAre;
using testing::Pair;
using testing::SizeIs;

namespace {

using Source = MControllerSource;

/// Level and Width, 0..1, and a Mode of three.
class Plugin : public MAudioPlugin, public MPresetStepper, public MMIDIListener {
public:
    Plugin() {
        records[0].DefineFloat("level", "Level", 0, 1, 0.5, "");
        records[1].DefineFloat("width", "Width", 0, 1, 0.5, "");
        records[2].DefineEnum("mode", "Mode", {"A", "B", "C"}, 0);
        MParameterDirectory& table = MutableParameters();
        table.Add(std::make_unique<ParameterFloatT<>>(records[0], Identity(0, "Level")));
        table.Add(std::make_unique<ParameterFloatT<>>(records[1], Identity(1, "Width")));
        table.Add(std::make_unique<ParameterEnumT<>>(records[2], Identity(2, "Mode")));
    }
    static ParameterIdentity Identity(std::uint32_t first, const char* name) {
        return {first, name, name, nullptr};
    }
    void SendHostAutomation(std::uint32_t identifier, double x) override {
        sent.emplace_back(identifier, x);
    }
    void PostStep(int step) noexcept override { steps += step * 10 + 1; }
    void PostPlace(int place) noexcept override { places.push_back(place); }
    void NoteOn(int, int, double) noexcept override { ++ons; }
    void NoteOff(int, int) noexcept override { ++offs; }

    std::array<ParameterDefinition, 3> records;
    std::vector<std::pair<std::uint32_t, double>> sent;
    std::vector<int> places;
    int steps = 0, ons = 0, offs = 0;
};

class MMIDIControlTest : public testing::Test {
protected:
    MControllerAssignment& Controller(int place, const Source& source, const char* parameter) {
        settings.controllers[place] = {true, source, {parameter, 0}, {}};
        return settings.controllers[place];
    }
    void Receive(int offset, int status, int first, int second) {
        control.Receive(offset,
                        {static_cast<std::uint8_t>(status), static_cast<std::uint8_t>(first),
                         static_cast<std::uint8_t>(second), 0});
    }
    /// One message in a block of its own; where Level is then.
    double Send(int status, int first, int second) {
        Receive(0, status, first, second);
        control.BeginBlock(64);
        control.ApplyUntil(63, &plugin);
        return plugin.GetParameter(0);
    }

    Plugin plugin;
    MMIDIControl control{plugin, &plugin};
    MMIDISettings settings;
};

TEST_F(MMIDIControlTest, EverySourceMovesItsParameterOverItsRange) {
    struct Row {
        Source source;
        int status = 0, first = 0, second = 0;
        double expected = 0;
    };
    const Row rows[] = {
        {{.number = 7}, 0xB3, 7, 127, 0.9},
        {{.number = 7, .channel = 4}, 0xB3, 7, 0, 0.1},
        {{.number = 7, .channel = 5}, 0xB3, 7, 0, 0.5},
        {{.number = 8}, 0xB3, 7, 0, 0.5},
        {{.number = 7}, 0x37, 7, 127, 0.5},   // no status byte
        {{.number = 7}, 0xB3, 7, 0x80, 0.5},  // no data byte
        {{.number = 7}, 0xF0, 7, 127, 0.5},
        {{.number = 1, .isHighResolution = true}, 0xB0, 1, 127, 0.9},  // coarse part alone
        {{Source::Kind::PitchBend}, 0xE0, 0, 64, 0.5},
        {{Source::Kind::PitchBend}, 0xEF, 127, 127, 0.9},
        {{Source::Kind::PitchBend}, 0xE0, 0, 0, 0.1},
        {{Source::Kind::ChannelAftertouch}, 0xD0, 127, 0xFF, 0.9},
        {{Source::Kind::PolyAftertouch, 60}, 0xA0, 60, 0, 0.1},
        {{Source::Kind::PolyAftertouch, 61}, 0xA0, 60, 0, 0.5}};
    for (const Row& row : rows) {
        plugin.SetParameter(0, 0.5, true);
        MControllerAssignment& assignment = Controller(31, row.source, "Level");
        assignment.mapping.value = 0.1;
        assignment.mapping.maxValue = 0.9;
        control.SetSettings(settings);
        EXPECT_NEAR(Send(row.status, row.first, row.second), row.expected, 1e-12)
            << row.status << " " << row.first << " " << row.second;
    }
    settings.controllers[31].source = {.number = 1, .isHighResolution = true};
    control.SetSettings(settings);
    Send(0xB0, 1, 64);
    EXPECT_NEAR(Send(0xB0, 33, 3), 0.1 + 0.8 * (64 * 128 + 3) / 16383, 1e-12);
    EXPECT_NEAR(Send(0xB0, 1, 2), 0.1 + 0.8 * 256 / 16383, 1e-12);  // forgets the fine part
}

TEST_F(MMIDIControlTest, SoftTakeoverWaitsUntilTheControllerPassesTheParameter) {
    Controller(0, {.number = 7}, "Level").mapping.hasSoftTakeover = true;
    control.SetSettings(settings);
    EXPECT_EQ(Send(0xB0, 7, 10), 0.5);
    EXPECT_EQ(Send(0xB0, 7, 50), 0.5);
    EXPECT_NEAR(Send(0xB0, 7, 80), 80 / 127.0, 1e-12);  // past it in one step
    EXPECT_NEAR(Send(0xB0, 7, 3), 3 / 127.0, 1e-12);    // and it follows at once
    plugin.SetParameter(0, 0.9, false);
    EXPECT_EQ(Send(0xB0, 7, 20), 0.9);
    EXPECT_EQ(Send(0xB0, 7, 100), 0.9);
    EXPECT_NEAR(Send(0xB0, 7, 114), 114 / 127.0, 1e-12);  // as near as seven bits come
}

TEST_F(MMIDIControlTest, SwitchesTogglesAndEndlessKnobsMoveInTheirWays) {
    Controller(0, {.number = 1}, "Level").mapping.range = MControllerRange::Toggle;
    settings.notes[0] = {true, {"Width", 1}, {60, 0, MNoteMapping::Mode::Gate, 0.25, 0.75}};
    Controller(1, {.number = 2}, "Mode").mapping.range = MControllerRange::Relative;
    settings.presetController = {true, 5, 0};
    control.SetSettings(settings);
    EXPECT_EQ(Send(0xB0, 1, 127), 1);
    EXPECT_EQ(Send(0xB0, 1, 0), 1);
    EXPECT_EQ(Send(0xB0, 1, 64), 0);
    for (int i = 0; i < 64; ++i) Send(0xB0, 2, 1);  // each step alone is too short for a mode
    EXPECT_EQ(plugin.records[2].value, 1);
    for (int i = 0; i < 64; ++i) Send(0xB0, 2, 127);
    EXPECT_EQ(plugin.records[2].value, 0);
    Send(0x90, 60, 1);
    Send(0x91, 60, 1);
    Send(0x90, 60, 0);
    EXPECT_EQ(plugin.GetParameter(1), 0.75);  // still down on the other channel
    Send(0xB1, 123, 0);
    EXPECT_EQ(plugin.GetParameter(1), 0.25);
    EXPECT_EQ(plugin.ons, plugin.offs);
    Send(0x90, 60, 1);
    control.Reset();  // the key's end may never come
    EXPECT_EQ(plugin.GetParameter(1), 0.25);
    for (const int value : {127, 100, 0, 127, 20, 30, 0}) Send(0xB0, 5, value);
    EXPECT_EQ(plugin.steps, 11 + 11 - 9);  // next, next, previous
    control.ReportMoved();
    EXPECT_THAT(plugin.sent, ElementsAre(Pair(0, 0), Pair(1, 0.25), Pair(2, 0)));
    control.ReportMoved();
    EXPECT_THAT(plugin.sent, SizeIs(3));
}

TEST_F(MMIDIControlTest, SurvivesFloodsAndGarbageInOrderAndWithoutMemory) {
    Controller(0, {.number = 7}, "Level");
    Controller(1, {.number = 7, .isHighResolution = true}, "Width");
    Controller(2, {Source::Kind::PitchBend}, "Width");
    settings.notes[3] = {true, {"Mode", 2}, {}};
    control.SetSettings(settings);
    Send(0xB0, 0, 0);
    std::mt19937 random(1);
    const auto byte = [&] { return static_cast<int>(random() & 0xFF); };
    for (int block = 0; block < 60; ++block) {
        const AllocationCounter counter;
        const int count = static_cast<int>(random() % 600);
        const int messages = block % 5 == 0 ? 60000 : 10000;
        for (int i = 0; i < messages; ++i) {
            const int offset = static_cast<int>(random() % 1200) - 300;
            i % 2 == 0 ? Receive(offset, 0x90, byte() / 2, 100)
                       : Receive(offset, byte(), byte(), byte());
        }
        for (int last = 0; last < 200; ++last) Receive(100000, 0xB0, 7, 0);
        for (int note = 0; note < 128; ++note) Receive(100001, 0x80, note, 0);
        for (int channel = 0; channel < 16; ++channel) Receive(100001, 0xB0 + channel, 123, 0);
        control.BeginBlock(count);
        for (int at = 0; at < count; at = std::max(at + 1, control.NextEvent(at + 1))) {
            control.ApplyUntil(at, &plugin);
        }
        control.ApplyUntil(count, &plugin);
        EXPECT_EQ(counter.Count(), 0);
        EXPECT_EQ(control.NextEvent(0), count);
        EXPECT_EQ(plugin.GetParameter(2), 0) << "a note hangs";
        EXPECT_TRUE(messages > 10000 || plugin.GetParameter(0) == 0) << "not the last message";
    }
    EXPECT_GT(plugin.ons, 100000);
    EXPECT_GT(control.DroppedMessages(), 0);
}

TEST_F(MMIDIControlTest, StoresItsSettingsAndSurvivesBadOnes) {
    const Reports reports;
    Controller(4, {Source::Kind::PolyAftertouch, 61, false, 9}, "Gone").mapping = {
        true, 1, 0.25, MControllerRange::Switch, true};
    settings.notes[31] = {true, {"Mode", 2}, {-1, 3, MNoteMapping::Mode::Toggle, 0.5, 0}};
    settings.presetController = {true, 12, 16};
    settings.presetPrograms = {true, 4};
    settings.areControllersEnabled = false;
    control.SetSettings(settings);
    MXMLTree tree("settings");
    MArchive write(MArchive::Direction::Write), read(MArchive::Direction::Read);
    control.Store(tree.Root(), write);
    Plugin other;
    MMIDIControl loaded(other, nullptr);
    loaded.Store(MXMLTree::Parse(tree.Write()).Root(), read);
    EXPECT_EQ(loaded.Settings(), settings);
    settings.areControllersEnabled = true;
    loaded.SetSettings(settings);
    loaded.SetSettings(settings);
    EXPECT_THAT(reports.texts, SizeIs(1));

    const MXMLTree bad = MXMLTree::Parse(
        "<s><PreviousNextPresetController Controller='500' Channel='-3'/><Controllers><Other/>"
        "<Controller Enabled='1' Kind='9' Number='-1' HighResolution='1' Channel='17' Value='nan'"
        " MaxValue='2' Range='77' Invert='x'/></Controllers></s>");
    loaded.Store(bad.Root(), read);
    EXPECT_EQ(loaded.Settings().presetController, (MPresetController{true, 0, 0}));
    EXPECT_EQ(loaded.Settings().controllers[0],
              (MControllerAssignment{true, {.isHighResolution = true}, {}, {}}));
    EXPECT_EQ(loaded.Settings().controllers[4], MControllerAssignment{});
    EXPECT_EQ(loaded.Settings().notes, settings.notes);
}

TEST_F(MMIDIControlTest, ProgramsChoosePresetsWhereTheUserHasSaidSo) {
    Send(0xC0, 5, 0);
    settings.presetPrograms = {true, 3};
    control.SetSettings(settings);
    Send(0xC2, 127, 0xFF);  // the second byte is none of its own
    Send(0xC3, 6, 0);
    Send(0xC2, 0, 0);
    EXPECT_THAT(plugin.places, ElementsAre(127, 0));
}

}  // namespace
