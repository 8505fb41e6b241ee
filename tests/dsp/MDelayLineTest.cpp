// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MDelayLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

/// A line with the working memory that it needs.
struct Line {
    MDelayLine line;
    MGrowingBuffer<float> scratch;

    explicit Line(int length) { Resize(length); }
    void Resize(int length) { line.Resize(length, scratch); }

    /// What comes out while silence goes in: the content, oldest first.
    std::vector<float> Drain() {
        std::vector<float> content(static_cast<std::size_t>(line.Length()));
        for (float& sample : content) sample = line.Exchange(0);
        return content;
    }
};

std::vector<float> Noise(int count, std::mt19937::result_type seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> uniform(-1, 1);
    std::vector<float> samples(static_cast<std::size_t>(count));
    for (float& sample : samples) sample = uniform(generator);
    return samples;
}

int Between(std::mt19937& generator, int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(generator);
}

}  // namespace

TEST(MDelayLine, ExchangesBlocksAsIfOneByOne) {
    std::mt19937 generator(1);
    for (int round = 0; round < 300; ++round) {
        const int length = Between(generator, 1, 40);
        Line blockwise(length), single(length);
        for (int block = 0; block < 12; ++block) {
            const int count = Between(generator, 0, 100);
            const std::vector<float> in = Noise(count, generator());
            std::vector<float> out(in.size());
            blockwise.line.Exchange(in.data(), out.data(), count);
            for (int i = 0; i < count; ++i) {
                const float expected = single.line.Exchange(in[i]);
                ASSERT_EQ(out[i], expected) << length << ", block of " << count << ", at " << i;
            }
        }
    }
}

TEST(MDelayLine, InterpolatesBetweenTheTwoNearestOldSamples) {
    std::mt19937 generator(2);
    for (int round = 0; round < 400; ++round) {
        const int from = Between(generator, 2, 300);
        // Half of the changes are so small that neighbours are read from one distance for long.
        const int to = round % 2 == 0 ? Between(generator, 2, 300)
                                      : std::max(2, from + Between(generator, -6, 6));
        Line delay(from);
        const std::vector<float> old = Noise(from, generator());
        for (const float sample : old) delay.line.Exchange(sample);
        delay.Resize(to);
        const std::vector<float> content = delay.Drain();
        for (int i = 0; i < to; ++i) {
            // In whole numbers, so that no rounding decides which neighbours are meant.
            const int j = std::min(i * (from - 1) / (to - 1), from - 2);
            const double f = static_cast<double>(i * (from - 1) - j * (to - 1)) / (to - 1);
            const double expected =
                (1 - f) * static_cast<double>(old[j]) + f * static_cast<double>(old[j + 1]);
            ASSERT_NEAR(static_cast<double>(content[i]), expected, 1e-6)
                << from << " to " << to << " at " << i;
        }
    }
}

TEST(MDelayLine, KeepsTheNewestSampleAtLengthOneAndRepeatsItWhenGrowingAgain) {
    for (const int length : {1, 0, -5}) {
        Line delay(8);
        for (int i = 1; i <= 11; ++i) delay.line.Exchange(static_cast<float>(i));
        delay.Resize(length);
        EXPECT_EQ(delay.line.Length(), 1) << length;
        delay.Resize(3);
        EXPECT_EQ(delay.Drain(), (std::vector<float>{11, 11, 11})) << length;
    }
}

TEST(MDelayLine, GrowsInPowersOfTwoAndGivesBackOnlyWhatIsLarge) {
    Line delay(1000);
    const struct {
        int length, capacity;
    } rows[] = {{1000, 1024},           {1024, 1024},
                {1025, 2048},           {1, 2048},
                {3'000'000, 4'194'304}, {1'249'999, 4'194'304},
                {3'000'000, 4'194'304}, {1'250'000, 2'097'152},
                {1'000'000, 2'097'152}, {5, 2'097'152}};
    for (const auto& row : rows) {
        delay.Resize(row.length);
        EXPECT_EQ(delay.line.Capacity(), row.capacity) << row.length;
        EXPECT_EQ(delay.line.Length(), row.length);
    }
    delay.line.Free();
    EXPECT_EQ(delay.line.Capacity(), 0);
    EXPECT_EQ(delay.line.Length(), 0);
    EXPECT_EQ(delay.line.HighWater(), 0);
}

TEST(MDelayLine, KeepsItsContentWhenRoomIsReserved) {
    Line delay(4);
    for (const float sample : {1.f, 2.f, 3.f, 4.f, 5.f}) delay.line.Exchange(sample);
    delay.line.Reserve(1000);
    EXPECT_EQ(delay.line.Capacity(), 1024);
    EXPECT_EQ(delay.Drain(), (std::vector<float>{2, 3, 4, 5}));
}

TEST(MDelayLine, IsSilentAfterAClearWhateverItsLengthWas) {
    Line delay(100);
    for (int i = 0; i < 100; ++i) delay.line.Exchange(1);
    delay.Resize(10);
    EXPECT_FALSE(delay.line.IsBelow(1e-20f));
    delay.line.Clear();
    EXPECT_TRUE(delay.line.IsBelow(1e-20f));
    EXPECT_EQ(delay.line.HighWater(), 10);
    delay.Resize(100);
    EXPECT_EQ(delay.Drain(), std::vector<float>(100, 0.0f));
}
