// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delay/MDelayLine.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Noise.h"

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

/// Samples and the places, in samples from the oldest, where they lie.
class PlainLine {
public:
    explicit PlainLine(int length) { Fill(std::vector<float>(static_cast<std::size_t>(length))); }

    float Exchange(float sample) {
        const float oldest = At(read_);
        values_.push_back(sample);
        // Places move in blocks; a line of noise is too long to move it for every sample.
        if (++read_ >= std::min(length_, 64)) Flush();
        return oldest;
    }

    void Resize(int length) {
        Flush();
        if (length == length_) return;
        if (sinceChange_ >= MDelayWarp::kMovement) {
            std::vector<float> settled(static_cast<std::size_t>(length_));
            for (int i = 0; i < length_; ++i) settled[i] = At(i);
            Fill(settled);
        }
        for (double& place : places_) place *= (length - 1.0) / (length_ - 1.0);
        length_ = length;
        sinceChange_ = 0;
    }

private:
    float At(double place) const {
        const auto after = std::upper_bound(places_.begin() + 1, places_.end() - 1, place);
        const auto i = static_cast<std::size_t>(after - places_.begin());
        const double f = (place - places_[i - 1]) / (places_[i] - places_[i - 1]);
        return static_cast<float>((1 - f) * static_cast<double>(values_[i - 1]) +
                                  f * static_cast<double>(values_[i]));
    }
    void Fill(const std::vector<float>& values) {
        values_ = values;
        length_ = static_cast<int>(values.size());
        places_.clear();
        places_.reserve(values.size());
        for (int i = 0; i < length_; ++i) places_.push_back(i);
    }
    void Flush() {
        for (double& place : places_) place -= read_;
        for (int i = 0; i < read_; ++i) places_.push_back(length_ - read_ + i);
        sinceChange_ += read_;
        const auto needed = std::upper_bound(places_.begin() + 1, places_.end(), -1e-9) - 1;
        values_.erase(values_.begin(), values_.begin() + (needed - places_.begin()));
        places_.erase(places_.begin(), needed);
        read_ = 0;
    }

    std::vector<double> places_;
    std::vector<float> values_;  // ahead of the places by the block under way
    int length_ = 0, sinceChange_ = 0, read_ = 0;
};

int Between(std::mt19937& generator, int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(generator);
}

}  // namespace

// Places may go through any number of stretches; values only do where a rest has settled them.
TEST(MDelayLine, StretchesPlacesInAMovementAndValuesAfterARest) {
    std::mt19937 generator(2);
    for (int round = 0; round < 200; ++round) {
        const bool isLong = round % 10 == 0;
        const int longest = isLong ? MDelayLine::kLongestSettled : Between(generator, 2, 300);
        int length = Between(generator, 2, longest);
        Line delay(length);
        PlainLine plain(length);
        for (int block = 0; block < 40; ++block) {
            int rest = Between(generator, 1, longest);
            // Long lines now and then rest while they are still being read.
            if (isLong && block % 4 == 0) rest += MDelayWarp::kMovement;
            std::vector<float> out = WhiteNoise(rest, generator());
            const std::vector<float> in = out;
            // By pieces and sample by sample.
            const int pieces = Between(generator, 0, rest);
            delay.line.Exchange(in.data(), out.data(), pieces);
            for (int i = pieces; i < rest; ++i) out[i] = delay.line.Exchange(in[i]);
            for (int i = 0; i < rest; ++i) {
                ASSERT_NEAR(out[i], plain.Exchange(in[i]), 2e-6)
                    << "length " << length << ", round " << round << ", block " << block;
            }
            // Half of the changes are so small that neighbours are read from one distance for long.
            length = block % 2 == 0 ? Between(generator, 2, longest)
                                    : std::max(2, length + Between(generator, -6, 6));
            delay.Resize(length);
            plain.Resize(length);
            if (block % 20 == 0) delay.line.Reserve((2 + block) * longest);
        }
    }
}

TEST(MDelayLine, ReadsOnlyWhatWasWrittenWhateverItsLengths) {
    std::mt19937 generator(3);
    Line delay(100);
    delay.line.Reserve(5000);
    delay.scratch.Get(5000);
    std::vector<float> in(40, 0.75f), out(40);
    const AllocationCounter counter;
    for (int i = 0; i < 100; ++i) delay.line.Exchange(0.75f);
    for (int change = 0; change < 20'000; ++change) {
        delay.Resize(Between(generator, 1, change < 10'000 ? 700 : 5000));
        const int count = Between(generator, 0, 3) * Between(generator, 0, 13);
        delay.line.Exchange(in.data(), out.data(), count);
        for (int i = 0; i < count; ++i) ASSERT_FLOAT_EQ(out[i], 0.75f) << change;
        ASSERT_FALSE(delay.line.IsBelow(0.75f));
        ASSERT_TRUE(delay.line.IsBelow(0.7501f));
    }
    EXPECT_EQ(counter.Count(), 0) << "chunks that have been read are not used again";
}

TEST(MDelayLine, CountsChangesOfALongLineAsOneMovementAndTakesThemAsTheyFit) {
    constexpr int kLong = 8 * MDelayLine::kLongestSettled, kRest = 2 * MDelayWarp::kMovement;
    Line delay(kLong);
    for (int i = 0; i < kLong; ++i) delay.line.Exchange(static_cast<float>(i % 2));
    // Up and down, far apart, and back to where it was: interpolated once, nothing is left of that.
    const int lengths[] = {kLong + 30'000, kLong - 20'000, kLong};
    for (const int length : lengths) {
        delay.Resize(length);
        if (length == kLong) break;
        std::vector<float> in(kRest), out(kRest);
        for (int i = 0; i < kRest; ++i) in[i] = static_cast<float>(i % 2);
        delay.line.Exchange(in.data(), out.data(), kRest);
    }
    float loudest = 0;
    const std::vector<float> content = delay.Drain();
    for (int i = kLong / 2; i < kLong - 2 * kRest; ++i) loudest = std::max(loudest, content[i]);
    EXPECT_GT(loudest, 0.99f);
    // Changes sample by sample are more than a line of a minute remembers.
    delay.Resize(3'000'000);
    for (int i = 0; i < 5000; ++i) {
        delay.line.Exchange(0);
        delay.Resize(3'000'000 + i);
    }
    EXPECT_NEAR(delay.line.Length(), 3'004'999, 3'000'000 / MDelayWarp::kFinest);
}

TEST(MDelayLine, KeepsItsTimesThroughMoreChangesThanItHasRoomFor) {
    std::mt19937 generator(4);
    Line delay(1000);
    PlainLine plain(1000);
    for (int i = 0; i < 12'000; ++i) {
        if (i % 1200 < 500) {
            const int length = Between(generator, 500, 1000);
            delay.Resize(length);
            plain.Resize(length);
        }
        // Of a rising line, interpolating once more only rounds the corners.
        const auto sample = static_cast<float>(i);
        ASSERT_NEAR(delay.line.Exchange(sample), plain.Exchange(sample), 3) << i;
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

TEST(MDelayLine, IsSilentAfterAClearWhateverItsLengthWas) {
    Line delay(100);
    for (int i = 0; i < 100; ++i) delay.line.Exchange(1);
    delay.Resize(10);
    EXPECT_FALSE(delay.line.IsBelow(1e-20f));
    delay.line.Clear();
    EXPECT_TRUE(delay.line.IsBelow(1e-20f));
    delay.Resize(100);
    EXPECT_EQ(delay.Drain(), std::vector<float>(100, 0.0f));
}
