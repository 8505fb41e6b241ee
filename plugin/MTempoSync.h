// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

/// Note lengths that follow the host's tempo. This is the one place that knows what they last.
namespace MTempoSync {

/// How a note differs from the straight one.
enum class Type {
    Straight = 0,
    Triplets = 1,  ///< three in the time of two: 2/3 of the straight length
    Dotted = 2,    ///< half as long again: 3/2
    Tuplets = 3,   ///< five in the time of four: 4/5
};

inline constexpr int kLengthCount = 15;
inline constexpr int kTypeCount = 4;
inline constexpr int kDefaultLength = 9;  ///< "1 / 8"

/// "64" (that many whole notes) down to "1 / 256"; the order is stored in presets. [main]
std::vector<std::string> LengthNames();

/// "Straight", "Triplets", "Dotted", "Tuplets"; the order is stored in presets. [main]
std::vector<std::string> TypeNames();

/// The length of note number `length` in whole notes: 64 for the first, 1/256 for the last. [any]
double WholeNotes(int length, Type type) noexcept;

/// The same in samples, rounded, at `tempo` quarter notes per minute and `sampleRate` hertz. 0 when
/// either is not a positive number or the period does not fit an int. [audio]
int PeriodSamples(int length, Type type, double tempo, int sampleRate) noexcept;

}  // namespace MTempoSync
