// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Noise.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/render/ProbeProcessor.h"
#include "tests/tools/render/RenderFiles.h"
#include "tools/render/MPluginProcessor.h"
#include "tools/render/MRenderFailure.h"
#include "tools/render/MRenderJob.h"
#include "tools/render/MSettingReader.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr int kRate = 8000;

class MRenderJobTest : public testing::Test {
protected:
    MRenderSettings Settings() const { return SettingsIn(folder_); }

    void WriteNoise(int channels, int frames) const {
        std::vector<float> samples = WhiteNoise(channels * frames, 7);
        for (float& sample : samples) sample /= 2;
        WriteFloats(folder_ / "in.wav", {channels, kRate}, samples);
    }

    std::vector<float> Output() const { return ReadAll(folder_ / "out.wav"); }

    TemporaryFolder folder_;
};

TEST_F(MRenderJobTest, OutputDoesNotDependOnTheBlockSize) {
    WriteNoise(2, 3000);
    for (const MBandSetup& setup :
         {MBandSetup{}, MBandSetup{.count = 3},
          MBandSetup{.count = 3, .crossover = MBandSetup::Crossover::LinearPhase}}) {
        std::string first;
        for (const int blockSize : {4096, 64, 1}) {
            MPluginProcessor plugin(setup);
            const MParameterList list(plugin);
            for (const char* text : {"Delay=37 ms", "Feedback=-9 dB", "Mode=PingPong", "Tap 2=on",
                                     "Max frequency=2 kHz", "Saturation=30%"}) {
                for (const MRenderWrite& write : MSettingReader(list).Read(text)) {
                    plugin.SetParameter(write.parameter, write.value);
                }
            }
            MRenderSettings settings = Settings();
            settings.blockSize = blockSize;
            settings.format = MSampleFormat::Pcm24;
            settings.gainGuard = true;
            const MRenderSummary summary = MRenderJob(settings, plugin).Run();
            EXPECT_GT(summary.tailSeconds, MTailWatch::kQuietSeconds);
            if (first.empty()) first = folder_.Read("out.wav");
            EXPECT_TRUE(folder_.Read("out.wav") == first) << blockSize << " " << setup.count;
        }
    }
}

TEST_F(MRenderJobTest, EndsTheTailAfterTheLastEchoOrAsAskedAndTakesTheLatencyOut) {
    constexpr int kLatency = 3072;  // more than the quiet that ends a tail, and than one input
    constexpr int kQuiet = kRate / 4;
    const MTail automatic = {MTail::Kind::Auto, 60}, none = {MTail::Kind::None, 60},
                half = {MTail::Kind::Seconds, 0.5};
    const struct {
        int inputFrames = 0, delay = 0, latency = 0;
        bool isCompensated = false;
        MTail tail;
        int tailFrames = 0;
    } rows[] = {{1000, 4000, 0, true, automatic, 4000 + kQuiet},  // a gap longer than the quiet
                {100, 0, kLatency, true, automatic, kQuiet},
                {5000, 0, kLatency, false, automatic, kLatency + kQuiet},
                {100, 0, kLatency, true, none, 0},
                {5000, 0, kLatency, false, none, 0},
                {100, 0, kLatency, false, half, kRate / 2},
                {5000, 0, kLatency, true, half, kRate / 2}};
    for (const auto& row : rows) {
        for (const int channels : {1, 2, 5, 8}) {
            WriteNoise(channels, row.inputFrames);
            ProbeProcessor probe({}, row.latency);
            probe.SetParameter(ProbeEffect::Delay, static_cast<double>(row.delay) / kRate);
            MRenderSettings settings = Settings();
            settings.compensatesLatency = row.isCompensated;
            settings.tail = row.tail;
            const MRenderSummary summary = MRenderJob(settings, probe).Run();
            EXPECT_EQ(summary.latencyFrames, row.latency);
            EXPECT_DOUBLE_EQ(summary.tailSeconds, static_cast<double>(row.tailFrames) / kRate);
            std::vector<float> expected(static_cast<std::size_t>(channels) *
                                        (row.delay + (row.isCompensated ? 0 : row.latency)));
            const std::vector<float> input = ReadAll(folder_ / "in.wav");
            expected.insert(expected.end(), input.begin(), input.end());
            expected.resize(static_cast<std::size_t>(channels) *
                            (row.inputFrames + row.tailFrames));
            EXPECT_TRUE(Output() == expected) << row.inputFrames << " " << row.tailFrames;
        }
    }
}

TEST_F(MRenderJobTest, CutsATailThatDoesNotEnd) {
    WriteNoise(2, 1000);
    ProbeProcessor probe;
    probe.SetParameter(ProbeEffect::Hold, 1);
    MRenderSettings settings = Settings();
    settings.tail = {MTail::Kind::Auto, 0.25};
    EXPECT_TRUE(MRenderJob(settings, probe).Run().tailWasCut);
    EXPECT_EQ(Output().size(), 2 * (1000u + 2000u));
}

TEST_F(MRenderJobTest, AppliesTimedSettingsAtTheirVeryFrame) {
    WriteFloats(folder_ / "in.wav", {1, kRate}, std::vector<float>(1000, 1));
    ProbeProcessor probe;
    MRenderSettings settings = Settings();
    settings.blockSize = 400;
    settings.tail = {MTail::Kind::None, 0};
    MRenderJob job(settings, probe,
                   {{MTimeUnit::Seconds, false, {{501.0 / kRate, {{ProbeEffect::Level, 3}}}}},
                    {MTimeUnit::Seconds, false, {{0, {{ProbeEffect::Level, 2}}}}},
                    {MTimeUnit::Seconds, false, {{1, {{ProbeEffect::Level, 4}}}}}});
    EXPECT_EQ(job.Run().lateSettings, 1);
    std::vector<float> expected(1000, 3);
    std::fill_n(expected.begin(), 501, 2.0f);
    EXPECT_EQ(Output(), expected);
    EXPECT_EQ(ProbeEffect::Noted().blocks, (std::vector<int>{400, 101, 400, 99}));
}

TEST_F(MRenderJobTest, RunsTheTransportAlongWithTheAudio) {
    WriteNoise(1, 16000);
    ProbeProcessor probe;
    MRenderSettings settings = Settings();
    settings.tempo = 180;
    settings.blockSize = 4000;
    MRenderJob(settings, probe).Run();
    const auto& transports = ProbeEffect::Noted().transports;
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_TRUE(transports[i].isValid && transports[i].isPlaying);
        EXPECT_EQ(transports[i].tempo, 180);
        // Half a second is 1.5 quarter notes; a bar has four.
        EXPECT_DOUBLE_EQ(transports[i].songPosition, 1.5 * static_cast<double>(i));
        EXPECT_DOUBLE_EQ(transports[i].barStart, i < 3 ? 0 : 4);
        EXPECT_EQ(transports[i].playStateChanged, i == 0);
    }
}

TEST_F(MRenderJobTest, GainGuardLowersOnlyWhatWouldClip) {
    const std::vector<float> input = {0.5f, -0.25f, 0.125f};
    WriteFloats(folder_ / "in.wav", {1, kRate}, input);
    for (const auto format : {MSampleFormat::Float32, MSampleFormat::Pcm24}) {
        for (const double level : {1.0, 8.0}) {
            ProbeProcessor probe;
            probe.SetParameter(ProbeEffect::Level, level);
            MRenderSettings settings = Settings();
            settings.format = format;
            settings.gainGuard = true;
            settings.tail.kind = MTail::Kind::None;
            const MRenderSummary summary = MRenderJob(settings, probe).Run();
            const double peak = level > 1 ? 0.98855 : 0.5;
            EXPECT_NEAR(summary.peak, peak, 1e-6);
            EXPECT_EQ(summary.clippedSamples, 0);
            EXPECT_EQ(summary.guardGain<1, level> 1);
            ASSERT_EQ(Output().size(), input.size());
            for (std::size_t i = 0; i < input.size(); ++i) {
                EXPECT_NEAR(Output()[i], 2 * peak * static_cast<double>(input[i]), 2e-7);
            }
        }
    }
    EXPECT_EQ(folder_.Files(), 2);
}

TEST_F(MRenderJobTest, LeavesNothingBehindWhenProcessingFailsOrIsStopped) {
    WriteNoise(2, 5000);
    folder_.Write("out.wav", "older");
    const ProbeEffect::Script scripts[] = {
        {.prepareResult = 1}, {.notFiniteFrom = 3000}, {.notFiniteFrom = 5100}, {}};
    for (const ProbeEffect::Script& script : scripts) {
        ProbeProcessor probe(script);
        probe.SetParameter(ProbeEffect::Delay, 0.5);
        MRenderJob job(Settings(), probe);
        const bool isStopped = script.prepareResult == 0 && script.notFiniteFrom < 0;
        if (isStopped) job.SetProgress([](double, auto) { throw MRenderCancelled(); });
        try {
            job.Run();
            ADD_FAILURE() << "the render went through";
        } catch (const MRenderFailure& failure) {
            EXPECT_EQ(failure.Code(), MExitCode::Processing);
        } catch (const MRenderCancelled&) {
            EXPECT_TRUE(isStopped);
        }
        EXPECT_EQ(folder_.Files(), 2);
        EXPECT_EQ(folder_.Read("out.wav"), "older");
    }
}

TEST_F(MRenderJobTest, RendersAnEmptyInputToAnEmptyOutput) {
    WriteFloats(folder_ / "in.wav", {2, kRate}, {});
    MPluginProcessor plugin{MBandSetup{.count = 3}};
    const MRenderSummary summary = MRenderJob(Settings(), plugin).Run();
    EXPECT_EQ(summary.seconds, 0);
    EXPECT_TRUE(Output().empty());
}

}  // namespace
