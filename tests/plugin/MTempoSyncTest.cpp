// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MTempoSync.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

struct Fraction {
    std::int64_t numerator, denominator;
};

/// What the name of a length says: "64" or "1 / 256" whole notes.
Fraction WholeNotesOf(const std::string& name) {
    const std::size_t slash = name.find('/');
    if (slash == std::string::npos) return {std::stoll(name), 1};
    return {std::stoll(name.substr(0, slash)), std::stoll(name.substr(slash + 1))};
}

constexpr Fraction kTypes[] = {{1, 1}, {2, 3}, {3, 2}, {4, 5}};

}  // namespace

TEST(MTempoSync, LastsWhatItsNameSaysInEveryTypeTempoAndRate) {
    const std::vector<std::string> names = MTempoSync::LengthNames();
    for (int length = 0; length < MTempoSync::kLengthCount; ++length) {
        const Fraction notes = WholeNotesOf(names[length]);
        for (int type = 0; type < MTempoSync::kTypeCount; ++type) {
            for (const int tempo : {60, 97, 120, 133}) {
                for (const int rate : {44100, 48000, 192000}) {
                    // A whole note is four quarters of 60 / tempo seconds; rounded half up.
                    const std::int64_t over = notes.denominator * kTypes[type].denominator * tempo;
                    const std::int64_t samples =
                        notes.numerator * kTypes[type].numerator * 240 * rate;
                    const std::int64_t expected = (2 * samples + over) / (2 * over);
                    EXPECT_EQ(MTempoSync::PeriodSamples(length, static_cast<MTempoSync::Type>(type),
                                                        tempo, rate),
                              expected)
                        << names[length] << ", type " << type << " at " << tempo << " and " << rate;
                }
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
