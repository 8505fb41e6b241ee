// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "product/MProductFactory.h"
#include "tests/support/RunPlugin.h"
#include "tools/hostcheck/MVst2Host.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace {

using Plugin = MAudioEffectPluginToAudioPluginMultiBandAdapter;

using Message = std::array<std::uint8_t, 4>;
using Messages = std::vector<Message>;

constexpr int kBlock = 512;
constexpr int kLength = 12 * kBlock;
constexpr Message kController{0xB0, 7, 0, 0}, kNote{0x90, 60, 127, 0};

/// The product in a host, and the object behind the binding for settings that hosts cannot reach.
class Session {
public:
    Session() { EXPECT_TRUE(host.Start(2, 48000, kBlock)); }

    void AssignController(const char* parameter) {
        MMIDISettings midi = plugin.MIDI().Settings();
        midi.controllers[3] = {true, {.number = kController[1]}, {parameter, 0}, {}};
        plugin.MIDI().SetSettings(midi);
    }
    /// Lets an envelope that follows notes at once lead the parameter over its whole range.
    void LeadByNotes(const char* parameter) {
        MLFOSettings envelope;
        envelope.modulator.isEnabled = true;
        envelope.modulator.source = MModulatorSource::Envelope;
        envelope.modulator.envelope = {.attack = 0, .decay = 0, .sustain = 1, .release = 0};
        envelope.targets = {plugin.Modulation().MakeTarget(parameter)};
        envelope.targets.front().motion.mode = MTargetMode::Range;
        plugin.Modulation().SetModulator(0, envelope);
    }
    /// What the heard slot makes of noise from a start of the host on, of these messages as well.
    std::vector<float> Play(const Messages& messages) {
        EXPECT_TRUE(host.Start(2, 48000, kBlock));
        Channels input(2, kLength, 1), output(2, kLength);
        for (int start = 0; start < kLength; start += kBlock) {
            if (start == kBlock) {
                for (const Message& message : messages) host.SendMIDI(100, message);
            }
            host.Process(input.From(start), output.From(start), kBlock);
        }
        return output[1];
    }

    MVst2Host host{&Make};
    Plugin& plugin = *made_;

private:
    static Vst2::AEffect* Make(Vst2::AudioMasterCallback callback) {
        return Vst2::CreateEffect(callback, 1, [] {
            auto product = MProductFactory::Create();
            made_ = product.get();
            return std::shared_ptr<MAudioPlugin>(std::move(product));
        });
    }

    static inline Plugin* made_ = nullptr;
};

/// Slots A, B and C with modulators of their own, of which C is heard, and assignments for them
/// all.
void MakeProject(Session& session) {
    const char* const led[] = {"Wet", "B3 T1 Panorama", "B1 T1 Delay"};
    for (int slot = 0; slot < 3; ++slot) {
        session.plugin.ActivePresets().Switch(session.plugin, slot);
        session.LeadByNotes(led[slot]);
    }
    MMIDISettings midi;
    midi.notes[31] = {true, {"Band gain 1", 0}, {}};
    midi.presetPrograms = {true, 4};
    session.plugin.MIDI().SetSettings(midi);
    session.AssignController("B2 T1 Gain");
}

TEST(ProductInHost, AControllerMovesABandsParameterAtItsSample) {
    Session moved, split;  // the host writes between blocks where the other gets its message
    moved.AssignController("B2 T1 Gain");
    const int gain = split.host.FindParameter("B2 T1 Gain").value();
    const int delay = split.host.FindParameter("B2 T1 Delay").value();
    for (Session* session : {&moved, &split}) session->host.SetParameterText(delay, "2 ms");
    Channels input(2, 2 * kBlock, 1), one(2, 2 * kBlock), other(2, 2 * kBlock);
    moved.host.Process(input.From(0), one.From(0), kBlock);
    moved.host.SendMIDI(100, kController);
    moved.host.Process(input.From(kBlock), one.From(kBlock), kBlock);

    split.host.Process(input.From(0), other.From(0), kBlock);
    split.host.Process(input.From(kBlock), other.From(kBlock), 100);
    split.host.SetParameter(gain, 0);
    split.host.Process(input.From(kBlock + 100), other.From(kBlock + 100), kBlock - 100);
    EXPECT_EQ(moved.host.GetParameter(gain), 0);
    EXPECT_EQ(one[0], other[0]);
}

TEST(ProductInHost, ANoteStartsAnEnvelopeAtItsSample) {
    Session session;
    session.plugin.CreateDefaultBands(1);
    for (const char* level : {"Wet", "Dry"}) {
        session.plugin.SetParameter(FindParameter(session.plugin, level), 0, false);
    }
    session.LeadByNotes("Dry");
    const std::vector<float> output = session.Play({kNote});
    const Channels input(2, kLength, 1);
    for (int i = 0; i < kLength; ++i) {
        if (i > kBlock + 100 && i < kBlock + 164) continue;  // it rises over one piece
        ASSERT_EQ(output[i], i > kBlock + 100 ? input[1][i] : 0) << i;
    }
}

TEST(ProductInHost, AssignmentsAndSlotsSurviveSaveAndLoad) {
    Session first, second;
    MakeProject(first);
    second.host.LoadState(first.host.SaveState());
    EXPECT_EQ(second.plugin.MIDI().Settings(), first.plugin.MIDI().Settings());
    const MActivePresets& slots = second.plugin.ActivePresets();
    EXPECT_EQ(slots.Current(), 2);
    for (int slot = 0; slot < 8; ++slot) EXPECT_EQ(slots.IsUsed(slot), slot < 3) << slot;
}

TEST(ProductInHost, AProjectSoundsTheSameInEverySlotOnceItIsLoaded) {
    Session first, second;
    MakeProject(first);
    second.host.LoadState(first.host.SaveState());
    std::set<std::vector<float>> sounds;
    for (const int slot : {2, 0, 1}) {
        for (Session* session : {&first, &second}) {
            session->plugin.ActivePresets().Switch(session->plugin, slot);
        }
        for (const Messages& messages : {Messages(), {kController}, {kNote}}) {
            const std::vector<float> sound = first.Play(messages);
            EXPECT_EQ(second.Play(messages), sound) << slot;
            EXPECT_TRUE(sounds.insert(sound).second) << "slots and messages are all heard";
        }
    }
}

TEST(ProductInHost, ATypedValueMovesWhatASwitchOfItsPositionMoves) {
    for (const auto mode : {MMultiParameterMode::Switch, MMultiParameterMode::Momentary}) {
        Session session;
        Plugin& plugin = session.plugin;
        MModulationTarget wet = plugin.Modulation().MakeTarget("Wet");
        wet.motion = {.mode = MTargetMode::Range, .minimum = 0.2, .maximum = 0.8};
        plugin.Modulation().SetMultiParameter(0, {mode, {wet}});
        const std::uint32_t knob = FindParameter(plugin, "MultiParameter 1");
        const std::function<void()> writes[] = {
            [&] { plugin.SetParameter(knob, 1, false); },
            [&] { plugin.SetParameter(knob, plugin.ParseParameterValueName(knob, "100%"), false); },
            [&] { session.host.SetParameterText(static_cast<int>(knob), "100%"); }};
        for (const auto& write : writes) {
            plugin.SetParameter(knob, 0, false);
            session.Play({});
            plugin.BandParameters().Wet().SetValue(0.5);
            write();
            session.Play({});
            EXPECT_EQ(plugin.BandParameters().Wet().Value(), 0.8);
        }
    }
}

}  // namespace
