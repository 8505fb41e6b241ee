// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/render/RenderFiles.h"
#include "tools/render/MSampleWriter.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

struct Written {
    std::vector<float> samples;  // as a reader sees them
    std::int64_t clipped = 0;
};

Written Write(const std::vector<float>& samples, MSampleFormat format, bool withDither) {
    const TemporaryFolder folder;
    MAudioWriter file(folder / "a.wav", {1, 8000}, format, 1000000);
    MSampleWriter writer(file, format, withDither);
    writer.Write(samples);
    file.Close();
    return {ReadAll(folder / "a.wav"), writer.ClippedSamples()};
}

TEST(MSampleWriter, RoundsAndLimitsAndCountsWhatIsBeyondTheRange) {
    const float highest = 32767.0f / 32768, step = 1.0f / 32768;
    const Written written =
        Write({1.5f, -2, 1, 0.5f, 0.4f * step, 0.6f * step}, MSampleFormat::Pcm16, false);
    EXPECT_EQ(written.samples, (std::vector<float>{highest, -1, highest, 0.5f, 0, step}));
    EXPECT_EQ(written.clipped, 2);
    EXPECT_EQ(Write({1.5f}, MSampleFormat::Float32, true).samples, std::vector<float>{1.5f});
}

TEST(MSampleWriter, DitherCarriesWhatIsBelowOneStep) {
    const float step = 1.0f / 32768;
    const std::vector<float> samples(40000, 0.3f * step);
    const Written written = Write(samples, MSampleFormat::Pcm16, true);
    double sum = 0;
    for (const float sample : written.samples) {
        EXPECT_LE(std::abs(sample), 2 * step);
        sum += static_cast<double>(sample) / static_cast<double>(step);
    }
    // The mean of 40000 values of standard deviation below 1 is within 0.02 (four deviations).
    EXPECT_NEAR(sum / 40000, 0.3, 0.02);
    EXPECT_EQ(Write(samples, MSampleFormat::Pcm16, true).samples, written.samples) << "seeded";
}

}  // namespace
