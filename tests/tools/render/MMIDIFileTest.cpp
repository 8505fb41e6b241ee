// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/render/ProbeProcessor.h"
#include "tests/tools/render/Refusals.h"
#include "tests/tools/render/RenderFiles.h"
#include "tools/render/MRenderJob.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>

using testing::ElementsAre;
using testing::Pair;

namespace {

using namespace std::string_literals;

std::string Chunk(const std::string& kind, const std::string& bytes) {
    return kind + "\0\0\0"s + static_cast<char>(bytes.size()) + bytes;
}

// 96 ticks a quarter. The tempo is 120, from tick 192 on 60 and from tick 288 on 240; the notes
// leave their status out where they may.
const std::string kTempos = Chunk(
    "MTrk", "\x81\x40\xFF\x51\x03\x0F\x42\x40"s + "\x60\xFF\x51\x03\x03\xD0\x90\0\xFF\x2F\0"s);
const std::string kNotes = Chunk("MTrk", "\0\x90\x3C\x64\x60\x3C\0"s + "\x81\x40\xF0\x02\x01\xF7"s +
                                             "\x60\xB2\x07\x7F\0\xD0\x05\0\xFF\x2F\0\0\x90\1\1"s);
const std::string kSong = Chunk("MThd", "\0\1\0\2\0\x60"s) + kTempos + Chunk("XFUT", "??") + kNotes;

TEST(MMIDIFile, FollowsTempoChangesAndRunningStatus) {
    std::vector<std::pair<double, int>> read;
    for (const MMIDIFileEvent& event : MReadMIDI(kSong)) {
        read.emplace_back(event.seconds, event.data[0] << 16 | event.data[1] << 8 | event.data[2]);
    }
    EXPECT_THAT(read, ElementsAre(Pair(0, 0x903C64), Pair(0.5, 0x903C00), Pair(2.25, 0xB2077F),
                                  Pair(2.25, 0xD00500)));
    const std::string frames = Chunk("MThd", "\0\0\0\1\xE7\x28"s) + kNotes;  // 25 by 40
    EXPECT_DOUBLE_EQ(MReadMIDI(frames).at(1).seconds, 0.096);
}

TEST(MMIDIFile, RefusesGarbageWithAReason) {
    const auto withTrack = [](const std::string& bytes) {
        return Chunk("MThd", "\0\0\0\1\0\x60"s) + Chunk("MTrk", bytes);
    };
    const std::pair<std::string, const char*> rows[] = {
        {"", "no MIDI file"},
        {"RIFF", "no MIDI file"},
        {Chunk("MThd", "\0\2\0\1\0\x60"s), "format 2"},
        {Chunk("MThd", "\0\0\0\1\0\0"s), "no length"},
        {Chunk("MThd", "\0\0\0\1\x01"s), "ends too early"},
        {kSong.substr(0, kSong.size() - 1), "ends too early"},
        {withTrack("\0\x3C\x64"s), "without an event"},
        {withTrack("\0\x90\x3C\x80"s), "without its values"},
        {withTrack("\0\xF4"s), "no file may have"},
        {withTrack("\0\xFF\x51\x03\0\0\0"s), "infinitely fast"},
        {withTrack("\xFF\xFF\xFF\xFF\x7F"), "four bytes"}};
    ExpectRefusals(
        rows, [](const std::string& bytes) { MReadMIDI(bytes); }, MExitCode::File);
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        std::string bytes = kSong;
        for (int n = 0; n < 3; ++n) bytes[random() % bytes.size()] = static_cast<char>(random());
        try {
            MReadMIDI(bytes);
        } catch (const MRenderFailure&) {
        }
    }
}

class Listener : public ProbeProcessor {
public:
    void SendMIDI(int frame, const std::array<std::uint8_t, 4>& data) override {
        events.emplace_back(done + frame, data[1]);
    }
    void Process(const MTransport& transport, const float* const* inputs, float* const* outputs,
                 int frames) override {
        ProbeProcessor::Process(transport, inputs, outputs, frames);
        done += frames;
        EXPECT_TRUE(events.empty() || events.back().first < done) << "beyond its block";
    }

    std::vector<std::pair<int, int>> events;
    int done = 0;
};

TEST(MMIDIFile, IsPlayedAtTheSampleWhateverTheBlocks) {
    const TemporaryFolder folder;
    WriteFloats(folder / "in.wav", {1, 1000}, std::vector<float>(1000));
    for (const int blockSize : {1, 64, 4096}) {
        MRenderSettings settings = SettingsIn(folder);
        settings.blockSize = blockSize;
        settings.tail = {MTail::Kind::Seconds, 0.5};
        Listener listener;
        MRenderJob job(settings, listener);
        job.SetMIDI({{0, {0x90, 1}}, {0.0636, {0x90, 2}}, {1.25, {0x90, 3}}, {9, {0x90, 4}}});
        job.Run();
        EXPECT_THAT(listener.events, ElementsAre(Pair(0, 1), Pair(64, 2), Pair(1250, 3)));
    }
}

}  // namespace
