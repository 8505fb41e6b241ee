// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/render/Refusals.h"
#include "tools/render/MModulationReader.h"
#include "tools/render/MPluginProcessor.h"

#include <gtest/gtest.h>

namespace {

class MModulationReaderTest : public testing::Test {
protected:
    MLFOSettings Read(std::string_view text) const {
        MLFOSettings settings;
        MModulationReader(reader_).Read(text, settings);
        return settings;
    }

    MPluginProcessor processor_{{.count = 3}};
    MParameterList list_{processor_};
    MSettingReader reader_{list_};
};

TEST_F(MModulationReaderTest, ReadsSourcesAndWays) {
    MLFOSettings read = Read("sine 0.5Hz phase 25% lag 20 ms -> Band limit 1: 200 Hz .. 2 kHz");
    EXPECT_TRUE(read.modulator.isEnabled);
    EXPECT_EQ(read.modulator.rate, 0.5);
    EXPECT_EQ(read.modulator.phase, 0.25);
    EXPECT_EQ(read.modulator.smoothing, 0.02);
    ASSERT_EQ(read.targets.size(), 1u);
    EXPECT_EQ(read.targets[0].id, "Band limit 1");
    EXPECT_NEAR(read.targets[0].motion.minimum, 1.0 / 3, 1e-9);
    EXPECT_NEAR(read.targets[0].motion.maximum, 2.0 / 3, 1e-9);

    read = Read("SteppED 1/8d seed 7 once -> Feedback: +-20%; B2 T1 Gain: -30%; Dry: +50%");
    EXPECT_EQ(read.modulator.shape.shape, MShape::SteppedRandom);
    EXPECT_EQ(read.modulator.shape.seed, 7u);
    EXPECT_TRUE(read.modulator.isOneShot && read.modulator.isSynchronised);
    EXPECT_EQ(MTempoSync::WholeNotes(read.modulator.syncLength, read.modulator.syncType), 3.0 / 16);
    ASSERT_EQ(read.targets.size(), 5u) << "feedback is that of every band";
    EXPECT_EQ(read.targets[2].motion.mode, MTargetMode::CentreAndDepth);
    EXPECT_EQ(read.targets[2].motion.depth, 0.4);
    EXPECT_EQ(read.targets[3].motion.mode, MTargetMode::Down);
    EXPECT_EQ(read.targets[4].motion.mode, MTargetMode::Up);

    read = Read("steps 2 Hz values 0 50% 1 glide 10% invert -> Mode: PingPong .. Default");
    EXPECT_EQ(read.modulator.shape.stepCount, 3);
    EXPECT_EQ(read.modulator.shape.steps[1], 0.5);
    EXPECT_TRUE(read.modulator.isInverted);
    EXPECT_EQ(read.targets[0].motion.minimum, 1);

    read = Read("envelope attack 5 ms decay 0.2 sustain 30% release 1 s velocity 1 -> Wet: +50%");
    EXPECT_EQ(read.modulator.source, MModulatorSource::Envelope);
    EXPECT_EQ(read.modulator.envelope.attack, 0.005);
    EXPECT_EQ(read.modulator.envelope.velocityAmount, 1);
}

TEST_F(MModulationReaderTest, SaysWhatWouldBeUnderstood) {
    const std::pair<const char*, const char*> rows[] = {
        {"sine 1 Hz", "no modulation; write it as"},
        {"sine 1 Hz ->", "moves nothing"},
        {"-> Wet: +20%", "begins with its source: sine, triangle"},
        {"sinus 1 Hz -> Wet: +20%", "\"sinus\" is no source of modulation; there are sine"},
        {"sine 90 Hz -> Wet: +20%", "the rate takes 0.01 to 50"},
        {"sine 1/5 -> Wet: +20%", "\"1/5\" is no note"},
        {"sine 1 Hz attack 5 ms -> Wet: +20%", "\"attack\" means nothing here"},
        {"envelope 2 Hz -> Wet: +20%", "\"2\" means nothing here"},
        {"walk width 3 -> Wet: +20%", "\"width\" means nothing here"},
        {"follower attack 5 -> Wet", "does not say how far"},
        {"follower attack 5 dB -> Wet: +20%", "attack takes 0 to 60 s, or ms"},
        {"sine 1 Hz -> Wet: +-60%", "+-0% to +-50%"},
        {"sine 1 Hz -> Wet: 20%", "does not move by \"20%\"; write a range such as"},
        {"sine 1 Hz -> Wett: +20%", "Wet"},
        {"sine 1 Hz -> Band limit 1: 10 Hz .. 1 kHz", "does not take \"10 Hz\""},
        {"sine 1 Hz -> Delay: 1/8 .. 1/4", "does not move to \"1/8\""},
    };
    ExpectRefusals(rows, [&](const char* text) { Read(text); });
}

}  // namespace
