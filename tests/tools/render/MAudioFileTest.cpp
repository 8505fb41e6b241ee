// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/render/RenderFiles.h"
#include "tools/render/MAudioFile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>

namespace {

TEST(MAudioFile, KeepsFloatSamplesAndShapeOfOneToEightChannels) {
    const TemporaryFolder folder;
    for (const int channels : {1, 2, 3, 8}) {
        std::vector<float> samples;
        for (int i = 0; i < channels * 10; ++i) samples.push_back(0.3f * static_cast<float>(i) - 7);
        WriteFloats(folder / "a.wav", {channels, 48000}, samples);
        EXPECT_EQ(ReadAll(folder / "a.wav"), samples);
        const MAudioReader reader(folder / "a.wav");
        EXPECT_EQ(reader.Shape().channels, channels);
        EXPECT_EQ(reader.Shape().sampleRate, 48000);
        EXPECT_EQ(reader.Frames(), 10);
    }
}

TEST(MAudioFile, ReadsWhatIsNotFiniteAsSilence) {
    const TemporaryFolder folder;
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    WriteFloats(folder / "a.wav", {1, 8000}, {0.5f, nan, infinity, -infinity, 0.25f});
    EXPECT_EQ(ReadAll(folder / "a.wav"), (std::vector<float>{0.5f, 0, 0, 0, 0.25f}));
}

TEST(MAudioFile, IsAPlainWavFileUnlessItOutgrowsOne) {
    const TemporaryFolder folder;
    constexpr std::int64_t kTooMany = std::int64_t{1} << 40;
    for (const std::optional<std::int64_t> maxFrames :
         {std::optional<std::int64_t>(10), {kTooMany}, {}}) {
        MAudioWriter writer(folder / "a.wav", {1, 8000}, MSampleFormat::Float32, maxFrames);
        const std::vector<float> samples = {1, 2, 3};
        writer.Write(std::span<const float>(samples));
        writer.Close();
        std::string start(4, ' ');
        std::ifstream(folder / "a.wav", std::ios::binary).read(start.data(), 4);
        EXPECT_EQ(start, "RIFF");
        EXPECT_EQ(ReadAll(folder / "a.wav"), samples);
    }
}

}  // namespace
