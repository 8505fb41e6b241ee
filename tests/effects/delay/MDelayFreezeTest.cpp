// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayFreeze.h"
#include "tests/support/EngineRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

constexpr int kRate = 48000;
constexpr int kFade = 480;    // samples of 10 ms
constexpr int kLine = 12000;  // samples: longer than anything that is watched

/// Without feedback and with a line full of ones, what is stored from then on is the position
/// itself; it comes out a line's length later.
MDelaySettings Watching() {
    MDelaySettings settings = DefaultDelaySettings();
    settings.taps[0].delay = static_cast<double>(kLine) / kRate;
    settings.taps[0].feedback = Held(0);
    return settings;
}

class Watch {
public:
    Watch(int channels, int block, const MDelaySettings& settings)
        : channels_(channels), run_(channels, kRate, settings) {
        run_.Run(Constant(channels, kLine + 10, static_cast<float>(3 - channels)));
        run_.Run(Constant(channels, 10, 0));  // so that the predelays are silent, too
        run_.block = block;
    }
    /// Lets `count` samples of silence pass.
    void Pass(int count, bool isFrozen) {
        passed_ += count;
        run_.settings.taps[0].isFrozen = isFrozen;
        run_.Run(Constant(channels_, count, 0));
    }
    /// The positions during everything that passed.
    Sound Positions() {
        const int passed = passed_;
        Pass(kLine - 10 - passed, false);
        run_.settings.taps[0].mode = MDelayMode::Classic;
        Sound positions = run_.Run(Constant(channels_, 10 + passed, 0));
        for (auto& channel : positions) channel.erase(channel.begin(), channel.begin() + 10);
        return positions;
    }

private:
    int channels_;
    EngineRun run_;
    int passed_ = 0;
};

float Place(int steps) { return std::clamp(static_cast<float>(steps) / kFade, 0.0f, 1.0f); }

}  // namespace

TEST(MDelayFreeze, FadesInWithinTenMillisecondsOfChannelAfterChannel) {
    // The channels of a block follow one another; the sides of ping-pong alternate.
    for (const auto& [channels, isPingPong] : {std::pair(1, false), {2, false}, {2, true}}) {
        for (const int block : {1, 60, 1000}) {
            MDelaySettings settings = Watching();
            if (isPingPong) settings.taps[0].mode = MDelayMode::PingPong;
            Watch watch(channels, block, settings);
            watch.Pass(900, true);
            const Sound positions = watch.Positions();
            for (int i = 0; i < 900; ++i) {
                const int start = i / block * block, count = std::min(block, 900 - start);
                for (int c = 0; c < channels; ++c) {
                    const int place =
                        isPingPong ? 2 * i + c : channels * start + c * count + i - start;
                    ASSERT_NEAR(positions[c][i], Place(place), 1e-4f)
                        << i << " of channel " << c << ", block " << block << isPingPong;
                }
            }
        }
    }
}

TEST(MDelayFreeze, RunsItsReleaseOutBeforeItFreezesAgain) {
    Watch watch(1, 100, Watching());
    for (const auto& [isOn, count] :
         {std::pair(true, 600), {false, 200}, {true, 500}, {false, 100}, {true, 600}})
        watch.Pass(count, isOn);
    const Sound positions = watch.Positions();
    for (int i = 0; i < 2000; ++i) {
        // Once released it runs out whatever the switch says, and 100 samples off clear the flag.
        const int place = i < 600 ? i : i < 1300 ? kFade - (i - 600) : i < 1400 ? 0 : i - 1400;
        ASSERT_NEAR(positions[0][i], Place(place), 1e-4f) << i;
    }
}
