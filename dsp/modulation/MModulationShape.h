// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// The shapes of a cyclic modulator. Their numbers are stored in states.
enum class MShape : int {
    Sine,           ///< 0.5 and rising at phase 0
    Triangle,       ///< in step with the sine
    SawUp,          ///< 0 at phase 0
    SawDown,        ///< 1 at phase 0
    Square,         ///< 1 for the first `width` of the cycle, then 0
    SteppedRandom,  ///< a random value per cycle
    SmoothRandom,   ///< on its way, without a kink, from one cycle's random value to the next
    Steps           ///< `stepCount` values of equal length per cycle
};

/// The shapes' names for users, in their order. The builder of the factory presets reads this text.
inline constexpr auto kShapeNames = std::to_array<std::string_view>(
    {"sine", "triangle", "saw", "sawdown", "square", "stepped", "smooth", "steps"});
static_assert(kShapeNames.size() == static_cast<int>(MShape::Steps) + 1);

/// One shape and what it needs. Numbers outside their range count as the nearest in it.
struct MShapeSettings {
    static constexpr int kMaxSteps = 64;

    MShape shape = MShape::Sine;
    double width = 0.5;                     ///< 0..1 of the cycle, Square
    int stepCount = 16;                     ///< 1..64, Steps
    std::array<double, kMaxSteps> steps{};  ///< 0..1, Steps
    double smoothing = 0;    ///< 0..1: share of a step spent gliding there from the one before;
                             ///< Steps, SteppedRandom, Square (share of its shorter half)
    std::uint32_t seed = 0;  ///< of the random shapes
};

/// The shape's value, 0..1, at `phase` cycles: the fraction is the place in the cycle, the whole
/// part picks the random values. It depends on nothing else, so that a place in a song always
/// sounds the same. What is no finite number counts as phase 0. [audio]
double MEvaluateShape(const MShapeSettings& settings, double phase) noexcept;
