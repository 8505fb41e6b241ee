// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "core/MMemoryStream.h"
#include "core/MZLibStream.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Deflated(const Bytes& bytes) {
    MMemoryStream result;
    MZLibStream stream(result);
    for (std::size_t i = 0; i < bytes.size(); i += 1000) {
        stream.Write(std::span(bytes).subspan(i, std::min<std::size_t>(1000, bytes.size() - i)));
    }
    stream.Finish();
    return result.Take();
}

/// What inflating gives, or the text of the failure.
std::string Inflated(std::span<const std::uint8_t> bytes, std::size_t ceiling) {
    MMemoryStream source(bytes);
    MZLibStream stream(source, ceiling);
    Bytes result(ceiling + 10000);
    try {
        result.resize(stream.Read(result));
    } catch (const MException& exception) {
        return exception.Text();
    }
    return {result.begin(), result.end()};
}

TEST(MZLibStream, GivesBackWhatItWasGivenWhateverComesBehind) {
    std::minstd_rand random(1);
    for (const int size : {0, 1, 4095, 4096, 100000}) {
        Bytes noise(size);
        for (auto& byte : noise) byte = static_cast<std::uint8_t>(random());
        Bytes deflated = Deflated(noise);
        EXPECT_TRUE(MZLibStream::HasHeader(deflated));
        EXPECT_EQ(deflated[1] >> 6, 3) << "the best level leaves its mark";
        deflated.push_back('x');
        EXPECT_EQ(Inflated(deflated, noise.size()), std::string(noise.begin(), noise.end()));
    }
}

TEST(MZLibStream, RefusesWhatIsCutDamagedOrFarLargerThanItLooks) {
    const Bytes deflated = Deflated(Bytes(1 << 17, 'a'));
    ASSERT_LT(deflated.size(), 500);
    for (std::size_t cut = 0; cut < deflated.size(); ++cut) {
        ASSERT_EQ(Inflated(std::span(deflated).first(cut), 1 << 17),
                  "The compressed data ends too early.");
    }
    EXPECT_EQ(Inflated(deflated, (1 << 17) - 1), "The compressed data is too large.");
    Bytes damaged = deflated;
    damaged.back() ^= 1;  // of the checksum
    EXPECT_EQ(Inflated(damaged, 1 << 17), "The compressed data is damaged.");
}

}  // namespace
