// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "tests/hosts/vst2/FakeHost.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Reports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <thread>

using namespace Vst2;
using testing::ElementsAre;
using testing::Pair;

namespace {

class MAudioPluginVSTAdapterTest : public testing::Test {
protected:
    ~MAudioPluginVSTAdapterTest() override { Close(); }

    AEffect& Make(std::unique_ptr<ProbePlugin> plugin = std::make_unique<ProbePlugin>()) {
        Close();
        probe = plugin.get();
        effect =
            (new MAudioPluginVSTAdapter(&FakeHost::Callback, 7, std::move(plugin)))->getAeffect();
        return *effect;
    }
    void Close() {
        if (effect != nullptr) Call(effClose);
        effect = nullptr;
    }
    VstIntPtr Call(int opcode, int index = 0, VstIntPtr value = 0, void* pointer = nullptr,
                   float number = 0) {
        return effect->dispatcher(effect, opcode, index, value, pointer, number);
    }
    std::string Text(int opcode) {
        char text[256] = "old";
        Call(opcode, 0, 0, text);
        return text;
    }
    VstIntPtr CanDo(const char* text) { return Call(effCanDo, 0, 0, const_cast<char*>(text)); }
    MAudioPluginVSTAdapter& Adapter() {
        return *static_cast<MAudioPluginVSTAdapter*>(static_cast<AudioEffectX*>(effect->object));
    }

    Reports reports;
    FakeHost host;
    AEffect* effect = nullptr;
    ProbePlugin* probe = nullptr;
};

TEST_F(MAudioPluginVSTAdapterTest, SaysWhoItIs) {
    const AEffect& made = Make();
    EXPECT_EQ(made.uniqueID, 7);
    EXPECT_EQ(made.version, 1);
    EXPECT_EQ(made.flags, effFlagsCanReplacing | effFlagsProgramChunks);
    EXPECT_EQ(made.initialDelay, 77);
    EXPECT_EQ(made.numPrograms, 0);
    EXPECT_EQ(made.numParams, 1);
    EXPECT_EQ(host.Count(audioMasterIOChanged), 1);
    EXPECT_EQ(host.Count(audioMasterWantMidi), 1);
    EXPECT_EQ(Text(effGetEffectName), "Probe");
    EXPECT_EQ(Text(effGetVendorString), "Tests");
    EXPECT_EQ(Text(effGetProgramName), "");
    EXPECT_EQ(Text(effGetParamName), std::string(ProbePlugin::kLongID).substr(0, 24));

    const std::pair<const char*, int> rows[] = {{"receiveVstMidiEvent", 1},
                                                {"sendVstEvents", -1},
                                                {"receiveVstTimeInfo", 1},
                                                {"plugAsSend", 1},
                                                {"bypass", -1},
                                                {"", 0},
                                                {"Bypass", 0},
                                                {"canMonO", 0}};
    for (const auto& [text, answer] : rows) EXPECT_EQ(CanDo(text), answer) << text;

    const int endless = std::numeric_limits<VstInt32>::max();
    for (const auto& [tail, answer] : {std::pair(0, 1), std::pair(4096, 4096), {-1, endless}}) {
        probe->tail = tail;
        EXPECT_EQ(Call(effGetTailSize), answer);
    }
}

TEST_F(MAudioPluginVSTAdapterTest, GivesOldHostsStereoAndNewOnesWhatThereIs) {
    const struct {
        MBusLayout plugin;
        int version, inputs, outputs, channelsPerBus;
    } rows[] = {{{4, 2}, 2200, 4, 2, 2}, {{8, 8}, 2299, 2, 2, 2}, {{8, 8}, 2400, 8, 8, 8},
                {{1, 1}, 2400, 1, 1, 1}, {{1, 1}, 99, 2, 1, 1},   {{0, 2}, 2400, 0, 2, 2}};
    for (const auto& row : rows) {
        host.version = row.version;
        const AEffect& made = Make(std::make_unique<ProbePlugin>(row.plugin));
        EXPECT_EQ(made.numInputs, row.inputs) << row.version;
        EXPECT_EQ(made.numOutputs, row.outputs) << row.version;
        EXPECT_EQ(probe->ChannelsPerBus(), row.channelsPerBus) << row.version;
        EXPECT_EQ((made.flags & effFlagsIsSynth) != 0, row.inputs == 0);
    }
}

TEST_F(MAudioPluginVSTAdapterTest, TakesUsableRatesOnly) {
    Make();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::pair<float, int> rows[] = {{100.4f, 44100}, {96000, 96000}, {44099.5f, 44100},
                                          {nan, 44100},    {-1, 44100},    {1e30f, 44100},
                                          {100.5f, 101}};
    for (const auto& [rate, expected] : rows) {
        Call(effSetSampleRate, 0, 0, nullptr, rate);
        EXPECT_EQ(probe->SampleRate(), expected) << rate;
    }
    EXPECT_EQ(probe->initialised, 1 + 3);  // once while it was made
    EXPECT_EQ(reports.texts.size(), 1u) << "of 1e30 Hz";
    Call(effSetBlockSize, 0, 333);
    Call(effMainsChanged, 0, 0);
    Call(effMainsChanged, 0, 1);
    EXPECT_EQ(probe->initialised, 1 + 3 + 1);
    EXPECT_EQ(probe->MaximumBlockSize(), 333);
}

TEST_F(MAudioPluginVSTAdapterTest, TakesMonoAndGoesBackToStereo) {
    Make();
    VstSpeakerArrangement mono = {kSpeakerArrMono, 1, {}};
    VstSpeakerArrangement stereo = {kSpeakerArrStereo, 2, {}};
    VstSpeakerArrangement wide = {kSpeakerArr80Music, 8, {}};
    const struct {
        VstSpeakerArrangement* in;
        VstSpeakerArrangement* out;
        bool taken;
        MBusLayout layout;
    } rows[] = {{&mono, &mono, true, {1, 1}},     {&stereo, &wide, false, {1, 1}},
                {&mono, &stereo, true, {1, 2}},   {&wide, &stereo, false, {1, 2}},
                {&stereo, &stereo, true, {2, 2}}, {nullptr, nullptr, true, {2, 1}}};
    for (const auto& row : rows) {
        const auto in = reinterpret_cast<VstIntPtr>(row.in);
        EXPECT_EQ(Call(effSetSpeakerArrangement, 0, in, row.out), row.taken);
        EXPECT_EQ(probe->BusLayout(), row.layout);
    }
    VstPinProperties pin = {};
    EXPECT_EQ(Call(effGetOutputProperties, 1, 0, &pin), 0);
    EXPECT_EQ(Call(effGetInputProperties, 1, 0, &pin), 1);
    EXPECT_EQ(pin.flags, kVstPinIsActive);  // the output is mono
    EXPECT_STREQ(pin.label, "Right");
}

TEST_F(MAudioPluginVSTAdapterTest, FillsEveryOutputThatTheHostCountsAfterAChangeOfChannels) {
    VstSpeakerArrangement mono = {kSpeakerArrMono, 1, {}};
    VstSpeakerArrangement stereo = {kSpeakerArrStereo, 2, {}};
    for (const bool follows : {true, false}) {
        const AEffect& made = Make();
        const int told = host.Count(audioMasterIOChanged);
        host.followsChanges = follows;
        Call(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&mono), &mono);
        EXPECT_EQ(host.Count(audioMasterIOChanged), told + 1);
        EXPECT_EQ(made.numInputs, follows ? 1 : 2);
        EXPECT_EQ(made.numOutputs, follows ? 1 : 2);
        float left[2] = {5, 6}, right[2] = {70, 80};
        float* samples[] = {left, follows ? nullptr : right};  // in place
        made.processReplacing(effect, samples, samples, 2);
        EXPECT_THAT(left, ElementsAre(6, 7));
        EXPECT_EQ(right[1], follows ? 80 : 7);
        made.process(effect, nullptr, samples, 2);
        EXPECT_THAT(left, ElementsAre(7, 8));
        EXPECT_EQ(right[1], follows ? 80 : 8);
        Call(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&stereo), &stereo);
        EXPECT_EQ(made.numOutputs, 2);
        made.processReplacing(effect, nullptr, samples, 2);
        EXPECT_EQ(right[1], follows ? 80 : 1);
    }
}

TEST_F(MAudioPluginVSTAdapterTest, ReplacesOrAddsWithoutTakingMemory) {
    const AEffect& made = Make();
    float in[2][4] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    float out[2][4] = {{10, 10, 10, 10}, {10, 10, 10, 10}};
    float* inputs[] = {in[0], in[1]};
    float* outputs[] = {out[0], out[1]};
    made.process(effect, inputs, outputs, 4);
    EXPECT_THAT(out[1], ElementsAre(16, 17, 18, 19));
    host.asked.reserve(100);
    const AllocationCounter counter;
    made.process(effect, inputs, outputs, 4);
    const float added = out[1][3];
    made.processReplacing(effect, inputs, outputs, 4);
    EXPECT_EQ(counter.Count(), 0);
    EXPECT_EQ(added, 28);
    EXPECT_THAT(out[0], ElementsAre(2, 3, 4, 5));

    const int blocks = probe->blocks;
    const std::size_t asked = host.asked.size();
    made.processReplacing(effect, inputs, outputs, 0);
    made.processReplacing(effect, inputs, nullptr, 4);
    EXPECT_EQ(probe->blocks, blocks);
    EXPECT_EQ(host.asked.size(), asked);
    made.processReplacing(effect, nullptr, outputs, 4);
    EXPECT_THAT(out[0], ElementsAre(1, 1, 1, 1));

    probe->throws = true;
    made.processReplacing(effect, inputs, outputs, 4);
    EXPECT_THAT(reports.texts,
                ElementsAre("SYSTEM EXCEPTION! MAudioPluginVSTAdapter::PerformProcessing"));
}

TEST_F(MAudioPluginVSTAdapterTest, PassesMidiBothWaysInOrder) {
    const AEffect& made = Make();
    for (int i = 0; i < 5; ++i) {
        Adapter().QueueMIDIEvent(i, {0x80, static_cast<std::uint8_t>(i), 0, 0});
    }
    VstMidiEvent note = MakeMidiEvent(9, {0x90, 42, 1, 0});
    VstEvent other = {kVstSysExType, 32, 0, 0, {}};
    struct {
        VstInt32 count;
        VstIntPtr reserved;
        void* events[3];
    } list = {3, 0, {&other, nullptr, &note}};
    host.time.emplace();
    host.time->tempo = 99;
    EXPECT_EQ(Call(effProcessEvents, 0, 0, &list), 1);
    EXPECT_EQ(host.asked.back(), std::pair(int{audioMasterGetTime}, VstIntPtr{11776}));
    EXPECT_EQ(probe->Transport().tempo, 99);

    probe->sends = true;
    float samples[2] = {};
    float* outputs[] = {samples, samples};
    for (int block = 1; block <= 2; ++block) made.processReplacing(effect, outputs, outputs, 2);
    EXPECT_THAT(probe->heard, ElementsAre(Pair(9, 42), Pair(0, 0), Pair(1, 1), Pair(2, 2),
                                          Pair(3, 3), Pair(4, 4)));
    ASSERT_EQ(host.events.size(), 2u);
    EXPECT_EQ(host.events[1].deltaFrames, 1);
    EXPECT_EQ(host.events[1].byteSize, 32);
    EXPECT_EQ(host.events[1].data[8], '\x90');
    EXPECT_EQ(host.Count(audioMasterGetTime), 3);
}

TEST_F(MAudioPluginVSTAdapterTest, TellsTheHostOfChanges) {
    Make();
    probe->SendHostAutomation(5, 0.75);
    EXPECT_EQ(host.asked.back(), std::pair(int{audioMasterAutomate}, VstIntPtr{5}));
    EXPECT_EQ(host.lastNumber, 0.75f);
    probe->Host()->ReportParameterChanges();
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), 1);
    std::thread([&] { probe->Host()->ReportParameterChanges(); }).join();
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), 1) << "not on a thread of our own";
    std::thread([&] {
        for (const int opcode : {effProcessEvents, effStopProcess, effGetTailSize, effSetBypass,
                                 effSetProcessPrecision, effVendorSpecific, effGetParamDisplay}) {
            Call(opcode);
        }
    }).join();
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), 1) << "this may be the audio thread";
    Call(effGetVstVersion);
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), 2);
    std::thread([&] {
        probe->Host()->ReportParameterChanges();
        Call(effEditIdle);
    }).join();
    EXPECT_EQ(host.Count(audioMasterUpdateDisplay), 3) << "the host may never come back";
    // A host that reads everything anew whenever it is told must not be told by that.
    for (int i = 0; i < 20; ++i) Call(effGetVstVersion);
    EXPECT_EQ(probe->askedForMoves, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(120));
    Call(effEditIdle);
    EXPECT_EQ(probe->askedForMoves, 2);
    char typed[] = "0.5";
    char nonsense[] = "nonsense";
    EXPECT_EQ(Call(effString2Parameter, 0, 0, nullptr), 1);
    EXPECT_EQ(Call(effString2Parameter, 1, 0, typed), 0);
    EXPECT_EQ(Call(effString2Parameter, 0, 0, nonsense), 0);
    EXPECT_EQ(effect->getParameter(effect, 0), 0.25f);
    EXPECT_EQ(Call(effString2Parameter, 0, 0, typed), 1);
    EXPECT_EQ(effect->getParameter(effect, 0), 0.5f);
}

TEST_F(MAudioPluginVSTAdapterTest, TellsTheHostNothingInBlocksAndFollowsItToAnotherThread) {
    const auto told = [&] {
        return std::pair(host.Count(audioMasterIOChanged), host.Count(audioMasterUpdateDisplay));
    };
    VstMidiEvent note = MakeMidiEvent(0, {0x90, 42, 1, 0});
    VstEvents events = {1, 0, {reinterpret_cast<VstEvent*>(&note)}};
    float samples[2] = {};
    float* outputs[] = {samples, samples};
    const auto play = [&] {
        probe->reports = true;
        Call(effStartProcess);
        Call(effProcessEvents, 0, 0, &events);
        effect->processReplacing(effect, outputs, outputs, 2);
        Call(effStopProcess);
        probe->reports = false;
    };
    std::thread([&] { Make(); }).join();
    std::thread(play).join();  // the identifier is as good as always that of the thread before
    EXPECT_EQ(told(), std::pair(1, 0));
    Call(effGetVstVersion);
    EXPECT_EQ(told(), std::pair(1, 0)) << "the host may be about to run a block here";
    void* chunk = nullptr;
    Call(effGetChunk, 0, 0, &chunk);
    EXPECT_EQ(told(), std::pair(2, 1));
    play();
    EXPECT_EQ(told(), std::pair(2, 1));
    Call(effGetVstVersion);
    EXPECT_EQ(told(), std::pair(3, 2));
}

TEST_F(MAudioPluginVSTAdapterTest, OffersTheEditorThatThePluginHas) {
    auto plugin = std::make_unique<ProbePlugin>();
    plugin->hasEditor = true;
    EXPECT_NE(Make(std::move(plugin)).flags & effFlagsHasEditor, 0);
    Call(effEditIdle);
    ERect* rectangle = nullptr;
    ASSERT_EQ(Call(effEditGetRect, 0, 0, &rectangle), 1);
    EXPECT_EQ(rectangle->right, 640);
    EXPECT_EQ(rectangle->bottom, 0);
    EXPECT_EQ(Call(effEditOpen), 0);
    EXPECT_EQ(Call(effEditOpen, 0, 0, &rectangle), 1);
    Call(effEditIdle);
    EXPECT_EQ(Call(effEditKeyDown, 'a', 3), 1);
    EXPECT_EQ(Call(effEditKeyUp, 'a', 3, nullptr, std::numeric_limits<float>::infinity()), 0);
    EXPECT_EQ(Call(effEditKeyUp, 'a', 3, nullptr, 2), 1);
    Call(effEditClose);
    EXPECT_EQ(probe->editorCalls, "open open idle close ");
    Adapter().ChangeEditorSize(800, 600);
    EXPECT_EQ(host.asked.back(), std::pair(int{audioMasterSizeWindow}, VstIntPtr{600}));
}

TEST(CreateEffect, GivesNothingToAHostWithoutAVersionOrWithoutAPlugin) {
    const Reports reports;
    FakeHost host;
    const auto make = [] { return std::shared_ptr<MAudioPlugin>(std::make_shared<ProbePlugin>()); };
    EXPECT_EQ(CreateEffect(nullptr, 1, make), nullptr);
    host.version = 0;
    EXPECT_EQ(CreateEffect(&FakeHost::Callback, 1, make), nullptr);
    EXPECT_THAT(reports.texts, ElementsAre());
    host.version = 2400;
    EXPECT_EQ(CreateEffect(&FakeHost::Callback, 1, [] { return std::shared_ptr<MAudioPlugin>(); }),
              nullptr);
    EXPECT_THAT(reports.texts, ElementsAre("Error creating Vst plugin object."));
}

}  // namespace
