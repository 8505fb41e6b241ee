// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Noise.h"
#include "tools/hostcheck/MHostRules.h"
#include "tools/hostcheck/MVst2Host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <fstream>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <utility>

#if defined(_WIN32)
#include <windows.h>
#endif

using namespace Vst2;

namespace {

constexpr int kRate = 48000;

/// The plug-in library in a host.
class Library : public testing::Test {
protected:
    std::vector<float> Play(MVst2Host& host, int frames, int block) {
        Channels in(2, frames, 3, 0.25f), out(2, frames);
        for (int at = 0; at < frames; at += block) {
            host.Process(in.From(at), out.From(at), std::min(block, frames - at));
        }
        return out[1];
    }

    MPluginLibrary library{KESTRUNE_LIBRARY};
    MPluginLibrary::Vst2Entry entry = library.FindVst2Entry();
};

bool IsLoaded() {
#if defined(_WIN32)
    return GetModuleHandleA("Kestrune.dll") != nullptr;
#else
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find("Kestrune") != std::string::npos) return true;
    }
    return false;
#endif
}

TEST_F(Library, ShowsEveryParameterWholeAndReadsItsTextsBack) {
    MVst2Host host(entry);
    EXPECT_EQ(host.Effect().uniqueID, FourCharacters("gx75"));
    EXPECT_EQ(host.Text(effGetEffectName), "Kestrune");
    EXPECT_EQ(host.Text(effGetVendorString), "Vornhal");
    for (int i = 0; i < host.ParameterCount(); ++i) {
        const std::string name = host.Text(effGetParamName, i);
        EXPECT_EQ(host.FindParameter(name), i) << name;
        for (int step = 0; step <= 32; ++step) {
            host.SetParameter(i, static_cast<float>(step) / 32);
            const std::string shown = host.Text(effGetParamDisplay, i);
            ASSERT_FALSE(shown.empty()) << name;
            ASSERT_LT(shown.size(), 24u) << name << " is cut: " << shown;
            ASSERT_LT(host.Text(effGetParamLabel, i).size(), 24u) << name;
            const float position = host.GetParameter(i);
            ASSERT_TRUE(host.SetParameterText(i, shown)) << name << ": " << shown;
            ASSERT_NEAR(host.GetParameter(i), position, 1e-2f) << name << ": " << shown;
        }
    }
}

TEST_F(Library, TellsTheStepsOfParametersThatHaveSome) {
    MVst2Host host(entry);
    for (int i = 0; i < host.ParameterCount(); ++i) {
        const auto countTexts = [&](int steps) {
            std::set<std::string> texts;
            for (int step = 0; step <= steps; ++step) {
                host.SetParameter(i, static_cast<float>(step) / static_cast<float>(steps));
                texts.insert(host.Text(effGetParamDisplay, i));
            }
            return static_cast<int>(texts.size());
        };
        VstParameterProperties properties = {};
        properties.displayIndex = 99;
        const bool hasSteps = host.Call(effGetParameterProperties, i, 0, &properties) != 0;
        const std::string name = host.Text(effGetParamName, i);
        const int texts = countTexts(300);
        ASSERT_EQ(hasSteps, texts < 50) << name;
        if (!hasSteps) continue;
        EXPECT_EQ(properties.label, name);
        EXPECT_EQ(properties.displayIndex, 99) << "not every host's record has that";
        const int steps = static_cast<int>(std::lround(1 / properties.stepFloat));
        if (properties.flags == kVstParameterIsSwitch) {
            EXPECT_EQ(steps, 1) << name;
            EXPECT_LE(texts, 2) << name;  // one that goes off by itself has a single text
            continue;
        }
        EXPECT_EQ(properties.flags, kVstParameterUsesFloatStep) << name;
        EXPECT_EQ(texts, steps + 1) << name;
        EXPECT_EQ(countTexts(steps), texts) << name;
    }
}

TEST_F(Library, SurvivesHostsThatAskNonsense) {
    MVst2Host host(entry);
    for (int opcode = -5; opcode < 200; ++opcode) {
        if (opcode == effClose) continue;
        for (const int index : {-1, 0, 1 << 30, std::numeric_limits<int>::min()}) {
            host.Call(static_cast<VstEffectOpcode>(opcode), index);
        }
    }
}

TEST_F(Library, KeepsTheRulesThatHostsRelyOn) {
    EXPECT_THAT(MHostRules::Faults(entry), testing::ElementsAre());
}

TEST_F(Library, LoadsNothingFromWhatIsNoState) {
    MVst2Host host(entry);
    const auto before = host.SaveState();
    char bytesOfNothing[8] = {};
    std::minstd_rand generator(7);
    testing::internal::CaptureStderr();  // every failure is reported there
    for (std::size_t size : {0, 1, 2, 17, 4096}) {
        std::vector<std::uint8_t> bytes(size);
        for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(generator());
        EXPECT_EQ(host.Call(effSetChunk, 0, static_cast<VstIntPtr>(size), bytes.data()), 1);
        auto damaged = before;
        damaged[generator() % damaged.size()] ^= 0x55;
        host.LoadState(damaged);
        host.LoadState(std::span(before).first(generator() % before.size()));
    }
    EXPECT_EQ(host.Call(effSetChunk, 0, 99, nullptr), 1);
    EXPECT_EQ(host.Call(effSetChunk, 0, -1, bytesOfNothing), 1);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(host.SaveState(), before);
}

TEST_F(Library, RunsBlocksOfAnyLengthWheneverTheHostLikes) {
    MVst2Host early(entry);  // never told of a rate, a block size or to resume
    const std::vector<float> expected = Play(early, 4096, 4096);
    constexpr int kMost = std::numeric_limits<int>::max();
    for (const auto& [block, announced] :
         {std::pair(1, 64), {7, 64}, {100, kMost}, {3000, 64}, {4096, 1 << 30}}) {
        MVst2Host host(entry);
        for (const int channels : {1, 2}) ASSERT_TRUE(host.Start(channels, 44100, announced));
        const std::vector<float> played = Play(host, 4096, block);
        for (std::size_t i = 0; i < played.size(); ++i) {
            ASSERT_NEAR(played[i], expected[i], 1e-6f) << block << " " << i;
        }
    }
}

TEST(LibraryUnloading, LeavesNothingAfterTwoHundredInstancesThatEndInEitherOrder) {
    for (int i = 0; i < 20; ++i) {
        const MPluginLibrary library(KESTRUNE_LIBRARY);
        std::deque<std::unique_ptr<MVst2Host>> hosts;
        for (int k = 0; k < 10; ++k) {
            hosts.push_back(std::make_unique<MVst2Host>(library.FindVst2Entry()));
        }
        while (!hosts.empty()) {
            EXPECT_TRUE(hosts.back()->Start(2, kRate, 64));
            i % 2 == 0 ? hosts.pop_front() : hosts.pop_back();
        }
        EXPECT_TRUE(IsLoaded());
    }
    EXPECT_FALSE(IsLoaded());
}

}  // namespace
