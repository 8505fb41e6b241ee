// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"
#include "adapters/modulation/MModulation.h"
#include "core/MException.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/ProbeEffect.h"
#include "tests/support/Reports.h"
#include "tests/support/RunPlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <span>

using testing::Contains;
using testing::ElementsAre;
using testing::ThrowsMessage;

namespace {

using Adapter = MAudioEffectPluginToAudioPluginAdapter;

/// A square of one cycle a second: 1 in its first half, then 0.
MLFOSettings Square() {
    MLFOSettings settings;
    settings.modulator.isEnabled = true;
    settings.modulator.shape.shape = MShape::Square;
    return settings;
}

/// Around the probe, whose level of 0..10 multiplies the input; its knob stands at 0.4.
class MModulationTest : public testing::Test {
protected:
    MModulationTest() {
        adapter_ = std::make_unique<Adapter>(
            MEffectAdapterParts{{}, ProbeEffect::Reset(), {}, nullptr, nullptr});
        adapter_->Initialize();
        adapter_->SetSampleRate(48000);
        adapter_->InitProcessing();
        input_.FillWithNoise(1);
        Level().SetValue(4);
        plays_ = {.isValid = true, .isPlaying = true};
    }

    ParameterDefinition& Level() { return adapter_->Effect(0).Records()[ProbeEffect::Level]; }
    MModulation& Modulation() { return adapter_->Modulation(); }
    std::uint32_t Identifier(const char* id) { return FindParameter(*adapter_, id); }
    void Set(const char* id, double x) { adapter_->SetParameter(Identifier(id), x, false); }
    double Get(const char* id) { return adapter_->GetParameter(Identifier(id)); }

    MModulationTarget Target(const char* id, MTargetMode mode, double depthOrMinimum,
                             double maximum = 1) {
        MModulationTarget target = Modulation().MakeTarget(id);
        target.motion.mode = mode;
        target.motion.depth = target.motion.minimum = depthOrMinimum;
        target.motion.maximum = maximum;
        return target;
    }
    void Modulate(int index, MLFOSettings settings, const MModulationTarget& target) {
        settings.targets = {target};
        Modulation().SetModulator(index, settings);
    }
    void Drive(int index, MMultiParameterMode mode, const std::vector<MModulationTarget>& targets) {
        Modulation().SetMultiParameter(index, {mode, targets});
    }
    /// Writes the settings into `tree`, or puts those that it has into force.
    void Store(const MXMLTree& tree, const MArchive& archive) {
        MModulationSettings settings = Modulation().Settings();
        settings.StoreModulators(tree.Root(), archive);
        int index = 0;
        for (const MXMLNode node : archive.Children(tree.Root(), "MultiParameter", 4)) {
            settings.multiParameters[index++].Store(node, archive);
        }
        if (archive.IsWriting()) return;
        const MModulation::Replacement replacement(Modulation(), settings);
        Modulation().Adopt(replacement.Plan());
    }
    /// Runs `count` samples as one block; the level that its last one has.
    double Run(int count) {
        adapter_->Transport() = plays_;
        adapter_->Process(input_.From(0), output_.From(0), count);
        plays_.songPosition += count * plays_.tempo / (60 * 48000.0);
        return static_cast<double>(output_[0][count - 1] / input_[0][count - 1]);
    }

    std::unique_ptr<Adapter> adapter_;
    Channels input_{2, 24000}, output_{2, 24000};
    MTransport plays_;
};

TEST_F(MModulationTest, LeadsAParameterByEachModeAndGivesItBackToItsKnob) {
    const struct {
        MTargetMode mode;
        double high, low;  // with a depth of 0.5 or a range from 0.5 to 0.9
    } rows[] = {{MTargetMode::CentreAndDepth, 6.5, 1.5},
                {MTargetMode::Up, 9, 4},
                {MTargetMode::Down, 0, 4},  // held within the range
                {MTargetMode::Range, 9, 5}};
    for (const auto& row : rows) {
        for (const bool isInverted : {false, true}) {
            MModulationTarget target = Target("Level", row.mode, 0.5, 0.9);
            target.motion.isInverted = isInverted;
            Modulate(0, Square(), target);
            adapter_->InitProcessing();
            EXPECT_NEAR(Run(12000), isInverted ? row.low : row.high, 1e-5);
            EXPECT_EQ(Level().Value(), 4) << "the knob stays";
            Run(6000), Run(12000);
            EXPECT_NEAR(Run(64), isInverted ? row.high : row.low, 1e-5);
            Modulation().SetModulator(0, {});
            EXPECT_NEAR(Run(64), 4, 1e-5);
            EXPECT_FALSE(Level().IsRedirected());
        }
    }
}

TEST_F(MModulationTest, AddsUpWhatMeetsAtOneParameter) {
    Modulate(0, Square(), Target("Level", MTargetMode::Range, 0.5, 0.9));
    Modulate(1, Square(), Target("Level", MTargetMode::Down, 0.3));
    Modulate(3, Square(), Target("Level", MTargetMode::Up, 0.2));
    EXPECT_NEAR(Run(640), 10 * (0.9 - 0.3 + 0.2), 1e-5);
}

TEST_F(MModulationTest, TakesWhatAHostWritesMeanwhileForTheKnob) {
    Modulate(0, Square(), Target("Level", MTargetMode::Up, 0.1));
    EXPECT_NEAR(Run(64), 5, 1e-5);
    Set("Level", 0.6);
    EXPECT_NEAR(Run(64), 7, 1e-5);
    EXPECT_NEAR(Get("Level"), 0.6, 1e-12);
    Set("Level", 0.2);
    Modulation().SetModulator(0, {});
    EXPECT_NEAR(Run(64), 2, 1e-5) << "even when it ends at once";

    // At the end of the range the modulated value and the one that is written are the same.
    for (const bool isAlone : {true, false}) {
        Set("Level", 0.2);
        Modulate(0, Square(), Target("Level", MTargetMode::Up, 1));
        Modulate(1, Square(), Target("Level", MTargetMode::Up, isAlone ? 0 : 0.1));
        EXPECT_NEAR(Run(64), 10, 1e-5);
        Set("Level", 1);
        EXPECT_EQ(Get("Level"), 1) << "before any block";
        EXPECT_NEAR(Run(64), 10, 1e-5);
        Modulation().SetModulator(0, {});
        Modulation().SetModulator(1, {});
        EXPECT_NEAR(Run(64), 10, 1e-5);
    }
}

TEST_F(MModulationTest, CutsBlocksOnlyWhileItActs) {
    const auto& blocks = ProbeEffect::Noted().blocks;
    MLFOSettings off = Square();
    off.modulator.isEnabled = false;
    Modulate(0, off, Target("Level", MTargetMode::Up, 0.1));
    Run(200);
    Modulation().SetModulator(0, Square());  // on, without targets
    Run(200);
    EXPECT_THAT(blocks, ElementsAre(200, 200));
    Modulate(0, Square(), Target("Level", MTargetMode::Up, 0.1));
    Run(200);
    MStandardSettings standard = adapter_->StandardSettings();
    standard.maxLFOBlockSize = 100;
    adapter_->SetStandardSettings(standard);
    Run(200);
    EXPECT_THAT(blocks, ElementsAre(200, 200, 64, 64, 64, 8, 100, 100));
    const auto& transports = ProbeEffect::Noted().transports;
    EXPECT_NEAR(transports.back().songPosition - transports[6].songPosition, 100 / 24000.0, 1e-12);
}

TEST_F(MModulationTest, SynchronisedOscillatorsStandWhereTheSongDoes) {
    MLFOSettings saw = Square();
    saw.modulator.shape.shape = MShape::SawUp;
    saw.modulator.isSynchronised = true;  // an eighth is half a quarter note
    Modulate(0, saw, Target("Level", MTargetMode::Range, 0));
    for (const double quarters : {0.0, 17.1, -3.35}) {
        plays_.songPosition = quarters;
        const double level = Run(128);
        const double phase = (quarters + 128 / 24000.0) * 2;
        EXPECT_NEAR(level, 10 * (phase - std::floor(phase)), 1e-4) << quarters;
    }
    plays_.isPlaying = false;  // goes on from there
    const double before = Level().Effective();
    EXPECT_NEAR(Run(128) - before, 10 * 128 / 12000.0, 1e-4);
}

TEST_F(MModulationTest, TwoPassesFromTheStartAreTheSameInAnyBlocks) {
    MLFOSettings walk = Square();
    walk.modulator.source = MModulatorSource::RandomWalk;
    walk.modulator.restart = MModulatorRestart::HostStart;
    walk.modulator.walk.rate = 20;
    Modulate(0, walk, Target("Level", MTargetMode::Range, 0));
    std::vector<double> passes;
    for (const int block : {192, 1920, 64}) {
        for (int done = 0; done < 9600; done += block) Run(block);
        passes.push_back(Level().Effective());
        plays_.isPlaying = false;
        Run(6400);
        plays_.isPlaying = true;
    }
    walk.modulator.restart = MModulatorRestart::Never;
    Modulate(0, walk, Target("Level", MTargetMode::Range, 0));
    adapter_->InitProcessing();
    for (int done = 0; done < 9600; done += 64) Run(64);
    EXPECT_EQ(passes[0], Level().Effective()) << "seeded alike";
    EXPECT_EQ(passes[0], passes[1]);
    EXPECT_EQ(passes[0], passes[2]);
}

TEST_F(MModulationTest, FollowsTheLevelOfInputOrSideChain) {
    MLFOSettings follower = Square();
    follower.modulator.source = MModulatorSource::Follower;
    follower.modulator.follower = {.attack = 0, .release = 0, .threshold = -40, .knee = 0};
    follower.modulator.isInverted = true;  // ducks
    Modulate(0, follower, Target("Level", MTargetMode::Range, 0));
    EXPECT_NEAR(Run(6400), 0, 0.3) << "full scale";
    follower.modulator.followerInput = MFollowerInput::SideChain;
    Modulate(0, follower, Target("Level", MTargetMode::Range, 0));
    EXPECT_NEAR(Run(6400), 0, 0.3) << "the input, without a side chain";
    Channels sideChain(2, 6400);
    adapter_->SetSideChain(sideChain.Constants(), 2);
    EXPECT_NEAR(Run(6400), 10, 1e-4) << "silent";
}

TEST_F(MModulationTest, NotesMoveEnvelopesUntilTheLastKeyIsUp) {
    MLFOSettings envelope = Square();
    envelope.modulator.source = MModulatorSource::Envelope;
    envelope.modulator.envelope = {.attack = 0, .decay = 0, .sustain = 0.5, .release = 0};
    Modulate(0, envelope, Target("Level", MTargetMode::Range, 0));
    EXPECT_NEAR(Run(64), 0, 1e-5);
    Modulation().NoteOn(1, 60, 1);
    Modulation().NoteOn(2, 60, 1);
    Modulation().NoteOff(1, 60);
    EXPECT_NEAR(Run(64), 5, 1e-5);
    Modulation().NoteOff(2, 60);
    EXPECT_NEAR(Run(64), 0, 1e-5);
    Modulation().NoteOn(1, 60, 1);
    adapter_->InitProcessing();
    Modulation().NoteOn(1, 64, 1);
    Modulation().NoteOff(1, 64);
    EXPECT_NEAR(Run(64), 0, 1e-5) << "a key that was down before";
}

TEST_F(MModulationTest, MultiParametersMoveKnobsByTheirModes) {
    MModulationTarget level = Target("Level", MTargetMode::Range, 0.2, 0.8);
    MModulationTarget delay = Target("Delay", MTargetMode::Range, 0, 1);
    delay.motion.isInverted = true;
    delay.motion.curve = ParameterCurve::Sqr;
    Drive(0, MMultiParameterMode::Continuous, {level, delay});
    Run(64);
    EXPECT_EQ(Level().Value(), 4) << "nothing jumps for being assigned";
    Set("MultiParameter 1", 0.25);
    Run(64);
    EXPECT_NEAR(Get("Level"), 0.35, 1e-12) << "what the state and the host have";
    EXPECT_NEAR(Get("Delay"), 0.5625, 1e-12);
    EXPECT_TRUE(adapter_->TakeParameterListChanged());

    Set("Delay", 0);
    Drive(0, MMultiParameterMode::Switch, {level});
    const auto after = [&](std::initializer_list<double> writes) {
        Level().SetValue(5);
        for (const double x : writes) Set("MultiParameter 1", x);
        adapter_->Process(nullptr, nullptr, 0);
        return Level().Value();
    };
    EXPECT_EQ(after({0.4999}), 5) << "it was off";
    EXPECT_EQ(after({0.5}), 8);
    EXPECT_EQ(after({1}), 5) << "it was on";
    EXPECT_EQ(after({0.1}), 2);
    Drive(0, MMultiParameterMode::Momentary, {level});
    EXPECT_EQ(after({1}), 8);
    EXPECT_EQ(after({0}), 5);
    EXPECT_EQ(after({1, 0}), 8) << "shorter than a block";
}

TEST_F(MModulationTest, AModulatedMultiParameterLeavesKnobsAlone) {
    Drive(2, MMultiParameterMode::Continuous, {Target("Level", MTargetMode::Range, 0, 0.5)});
    Drive(0, MMultiParameterMode::Continuous, {Target("MultiParameter 3", MTargetMode::Range, 0)});
    Modulate(0, Square(), Target("MultiParameter 1", MTargetMode::Up, 0.6));
    Set("MultiParameter 1", 0.2);
    EXPECT_NEAR(Run(64), 4, 1e-5) << "0.8 of the half range";
    EXPECT_NEAR(Get("Level"), 0.1, 1e-12) << "where its own knob leads";
    Modulation().SetModulator(0, {});
    EXPECT_NEAR(Run(64), 1, 1e-5);

    Drive(2, MMultiParameterMode::Switch, {Target("Level", MTargetMode::Range, 0.3, 0.7)});
    Modulate(0, Square(), Target("MultiParameter 1", MTargetMode::Range, 0.49, 0.51));
    EXPECT_NEAR(Run(64), 7, 1e-5);
}

TEST_F(MModulationTest, RefusesMultiParametersThatMoveThemselves) {
    const auto moves = [&](const char* id) { return Target(id, MTargetMode::Range, 0); };
    Drive(1, MMultiParameterMode::Continuous, {moves("MultiParameter 4")});
    Drive(3, MMultiParameterMode::Continuous, {moves("Level"), moves("MultiParameter 1")});
    EXPECT_THAT([&] { Drive(0, MMultiParameterMode::Continuous, {moves("MultiParameter 2")}); },
                ThrowsMessage<MException>(
                    "MultiParameter 1 would move itself: MultiParameter 1 -> MultiParameter 2 -> "
                    "MultiParameter 4 -> MultiParameter 1."));
    EXPECT_TRUE(Modulation().Settings().multiParameters[0].targets.empty());
    EXPECT_THROW(Drive(2, MMultiParameterMode::Switch, {moves("MultiParameter 3")}), MException);
}

TEST_F(MModulationTest, KeepsWhatItStoresAndReportsLostTargetsOnce) {
    MLFOSettings settings = Square();
    settings.modulator.shape.seed = 4000000000U;
    settings.modulator.shape.steps[15] = 0.25;
    settings.modulator.syncType = MTempoSync::Type::Tuplets;
    settings.modulator.follower.threshold = -33.25;
    settings.targets = {Target("Level", MTargetMode::Range, 0.125, 0.75)};
    settings.targets.front().motion.curve = ParameterCurve::Power4;
    Modulation().SetModulator(2, settings);
    Drive(1, MMultiParameterMode::Momentary, {Target("Delay", MTargetMode::Range, 0.5)});
    MXMLTree tree("settings");
    const MArchive write(MArchive::Direction::Write), read(MArchive::Direction::Read);
    Store(tree, write);

    Modulation().SetSettings({});
    std::string text = tree.Write();
    text.replace(text.find("\"Level\""), 7, "\"Lost\"");
    const MXMLTree lost = MXMLTree::Parse(text);
    const Reports reports;
    Store(lost, read);
    EXPECT_THAT(reports.texts, ElementsAre("There is no parameter \"Lost\" to modulate."));
    EXPECT_NEAR(Run(64), 4, 1e-5);
    MXMLTree again("settings");
    Store(again, write);
    EXPECT_EQ(again.Write(), text) << "kept as it was";
}

TEST_F(MModulationTest, HoldsWhatAStateHasWrong) {
    std::string text =
        "<settings><LFO Source='nan' Rate='nan' Depth='nan' FollowerKnee='nan' Seed='nan' "
        "StepCount='nan' Shape='99' Offset='-7' Steps='0.5 nan 2  x'>";
    for (int i = 0; i < 40; ++i) text += "<Target ID='Level' Mode='9' Depth='inf'/>";
    const MXMLTree tree = MXMLTree::Parse(text + "</LFO></settings>");
    MLFOSettings settings = Square();
    settings.modulator.rate = 7;
    settings.modulator.phase = 0.25;
    Modulation().SetModulator(0, settings);
    MModulationSettings all = Modulation().Settings();
    const Reports reports;
    all.StoreModulators(tree.Root(), MArchive(MArchive::Direction::Read));
    EXPECT_EQ(reports.texts.size(), 33u) << "the shape and every target's mode";
    EXPECT_THAT(reports.texts, Contains("The state has <LFO> with Shape 99, which is unknown."));
    Modulation().SetSettings(all);
    settings = Modulation().Settings().modulators[0];
    EXPECT_EQ(settings.modulator.rate, 1);
    EXPECT_EQ(settings.modulator.depth, 1);
    EXPECT_EQ(settings.modulator.phase, 0.25) << "absent";
    EXPECT_EQ(settings.modulator.offset, -1);
    EXPECT_EQ(settings.modulator.shape.shape, MShape::Sine);
    EXPECT_THAT(std::span(settings.modulator.shape.steps).first<4>(), ElementsAre(0.5, 0, 1, 0));
    ASSERT_EQ(settings.targets.size(), 32u);
    EXPECT_EQ(settings.targets[5].motion.mode, MTargetMode::CentreAndDepth);
    EXPECT_EQ(settings.targets[5].motion.depth, 0.5);
    settings.modulator.smoothing = std::numeric_limits<double>::quiet_NaN();
    Modulation().SetModulator(0, settings);
    EXPECT_EQ(Modulation().Settings().modulators[0].modulator.smoothing, 0);
}

TEST_F(MModulationTest, TakesNoMemoryInABlock) {
    Modulate(0, Square(), Target("Level", MTargetMode::Up, 0.1));
    Modulate(1, Square(), Target("MultiParameter 1", MTargetMode::Up, 0.1));
    Drive(0, MMultiParameterMode::Continuous, {Target("Delay", MTargetMode::Range, 0)});
    Drive(1, MMultiParameterMode::Continuous, {Target("Hold", MTargetMode::Range, 0)});
    Run(512);
    MModulationPiece piece{.transport = &plays_, .count = 64};
    Set("MultiParameter 2", 0.7);
    Modulation().SetModulator(2, Square());
    const AllocationCounter counter;
    Modulation().LookForNewer();
    Modulation().Adopt({});
    Modulation().Advance(piece);
    EXPECT_EQ(counter.Count(), 0);
}

}  // namespace
