// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/render/ProbeProcessor.h"
#include "tests/tools/render/RenderFiles.h"
#include "tools/render/MPluginProcessor.h"
#include "tools/render/MRenderFailure.h"
#include "tools/render/MRenderJob.h"
#include "tools/render/MSettingReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numeric>
#include <random>
#include <sstream>

namespace {

constexpr int kRate = 8000;

class MRenderJobTest : public testing::Test {
protected:
    MRenderSettings Settings() const {
        MRenderSettings settings;
        settings.input = folder_ / "in.wav";
        settings.output = folder_ / "out.wav";
        settings.overwrite = true;
        return settings;
    }

    void WriteNoise(int channels, int frames) const {
        std::mt19937 generator(7);
        std::uniform_real_distribution<float> level(-0.5f, 0.5f);
        std::vector<float> samples(static_cast<std::size_t>(channels) * frames);
        for (float& sample : samples) sample = level(generator);
        WriteFloats(folder_ / "in.wav", {channels, kRate}, samples);
    }

    std::vector<float> Output() const { return ReadAll(folder_ / "out.wav"); }

    std::string OutputBytes() const {
        std::ostringstream bytes;
        bytes << std::ifstream(folder_ / "out.wav", std::ios::binary).rdbuf();
        return bytes.str();
    }

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
            if (first.empty()) first = OutputBytes();
            EXPECT_TRUE(OutputBytes() == first) << blockSize << " " << setup.count;
        }
    }
}

TEST_F(MRenderJobTest, EndsTheTailAfterTheLastEcho) {
    for (const int channels : {1, 2, 5, 8}) {
        WriteNoise(channels, 1000);
        const std::vector<float> input = ReadAll(folder_ / "in.wav");
        ProbeProcessor probe;
        probe.SetParameter(ProbeEffect::Delay, 0.5);  // 4000 frames: a gap longer than the quiet
        probe.SetParameter(ProbeEffect::Level, 0.5);
        MRenderSettings settings = Settings();
        const MRenderSummary summary = MRenderJob(settings, probe).Run();
        const std::vector<float> output = Output();
        // 3000 frames of gap, 1000 of echo, a quarter of a second of quiet after the last of them.
        ASSERT_EQ(output.size(), static_cast<std::size_t>(channels) * (1000 + 4000 + 2000));
        EXPECT_DOUBLE_EQ(summary.tailSeconds, 6000.0 / kRate);
        for (std::size_t i = 0; i < input.size(); ++i) {
            ASSERT_EQ(output[i], 0);
            ASSERT_EQ(output[static_cast<std::size_t>(4000 * channels) + i], 0.5f * input[i]);
        }
    }
}

TEST_F(MRenderJobTest, TakesTheLatencyOutOfTheOutputAndStillEndsAfterTheLastEcho) {
    constexpr int kLatency = 3072;  // more than the quiet that ends a tail, and than one input
    for (const int inputFrames : {100, 5000}) {
        WriteNoise(2, inputFrames);
        const std::vector<float> input = ReadAll(folder_ / "in.wav");
        for (const auto tail : {MTail::Kind::None, MTail::Kind::Seconds, MTail::Kind::Auto}) {
            for (const bool isCompensated : {true, false}) {
                ProbeProcessor probe({}, kLatency);
                MRenderSettings settings = Settings();
                settings.compensatesLatency = isCompensated;
                settings.tail = {tail, tail == MTail::Kind::Seconds ? 0.5 : 60};
                const MRenderSummary summary = MRenderJob(settings, probe).Run();
                const std::vector<float> output = Output();
                const int quiet = static_cast<int>(MTailWatch::kQuietSeconds * kRate);
                const int late = isCompensated ? 0 : kLatency;
                const int tailFrames = tail == MTail::Kind::None      ? 0
                                       : tail == MTail::Kind::Seconds ? kRate / 2
                                                                      : late + quiet;
                ASSERT_EQ(output.size(), 2 * static_cast<std::size_t>(inputFrames + tailFrames));
                EXPECT_EQ(summary.latencyFrames, kLatency);
                std::vector<float> expected(static_cast<std::size_t>(2 * late));
                expected.insert(expected.end(), input.begin(), input.end());
                expected.resize(output.size());
                EXPECT_TRUE(output == expected) << inputFrames << " " << isCompensated;
            }
        }
    }
}

TEST_F(MRenderJobTest, KeepsToTheTailThatWasAskedFor) {
    WriteNoise(2, 1000);
    const std::tuple<MTail, bool, int, bool> rows[] = {
        {{MTail::Kind::None, 60}, true, 0, false},
        {{MTail::Kind::Seconds, 0.125}, false, 1000, false},
        {{MTail::Kind::Auto, 0.25}, true, 2000, true},
    };
    for (const auto& [tail, isHeld, frames, wasCut] : rows) {
        ProbeProcessor probe;
        probe.SetParameter(ProbeEffect::Hold, isHeld ? 1 : 0);
        MRenderSettings settings = Settings();
        settings.tail = tail;
        const MRenderSummary summary = MRenderJob(settings, probe).Run();
        EXPECT_EQ(Output().size(), static_cast<std::size_t>(2 * (1000 + frames)));
        EXPECT_EQ(summary.tailWasCut, wasCut);
    }
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
    std::ofstream(folder_ / "out.wav") << "older";
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
        EXPECT_EQ(OutputBytes(), "older");
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
