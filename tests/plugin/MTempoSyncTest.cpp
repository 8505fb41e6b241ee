// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MTempoSync.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

TEST(MTempoSync, LastsWhatItsNameSaysInEveryTypeTempoAndRate) {
    constexpr std::pair<std::int64_t, std::int64_t> kTypes[] = {{1, 1}, {2, 3}, {3, 2}, {4, 5}};
    const std::vector<std::string> names = MTempoSync::LengthNames();
    for (int length = 0; length < MTempoSync::kLengthCount; ++length) {
        // "64" or "1 / 256" whole notes.
        const std::string& name = names[length];
        const bool isPart = name.starts_with("1 / ");
        const std::int64_t number = std::stoll(isPart ? name.substr(4) : name);
        for (int type = 0; type < MTempoSync::kTypeCount; ++type) {
            for (const auto& [tempo, rate] : {std::pair(60, 44100), {97, 48000}, {133, 192000}}) {
                // A whole note is four quarters of 60 / tempo seconds; rounded half up.
                const auto& [above, below] = kTypes[type];
                const std::int64_t over = (isPart ? number : 1) * below * tempo;
                const std::int64_t samples = (isPart ? 1 : number) * above * 240 * rate;
                EXPECT_EQ(MTempoSync::PeriodSamples(length, static_cast<MTempoSync::Type>(type),
                                                    tempo, rate),
                          (2 * samples + over) / (2 * over))
                    << name << ", type " << type << " at " << tempo;
            }
        }
    }
}

TEST(MTempoSync, AnswersNoPeriodForNonsense) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr auto kDotted = MTempoSync::Type::Dotted;
    for (const int length : {0, 8, 14}) {
        for (const double tempo :
             {0.0, -0.0, -120.0, std::nan(""), kInfinity, -kInfinity, 1e300, 1e-300, 5e-324}) {
            EXPECT_EQ(MTempoSync::PeriodSamples(length, kDotted, tempo, 48000), 0) << tempo;
        }
        for (const int rate : {0, -48000})
            EXPECT_EQ(MTempoSync::PeriodSamples(length, kDotted, 120, rate), 0) << rate;
    }
}
