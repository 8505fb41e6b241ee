// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MModulationShape.h"

#include "dsp/modulation/MUnitRange.h"

#include <algorithm>
#include <cmath>

namespace {

/// A phase taken apart.
struct Place {
    std::int64_t cycle = 0;
    double fraction = 0;  // 0 and up, below 1
};

Place PlaceOf(double phase) noexcept {
    // From here on a phase has no fraction left, and a cycle still fits its type.
    constexpr double kFarthest = 4.5e15;
    if (!std::isfinite(phase)) return {};
    const double held = std::clamp(phase, -kFarthest, kFarthest);
    const double whole = std::floor(held);
    const double fraction = held - whole;
    const auto cycle = static_cast<std::int64_t>(whole);
    // Just below a whole number the difference rounds up.
    return fraction < 1 ? Place{cycle, fraction} : Place{cycle + 1, 0};
}

/// A random value, 0..1, that belongs to one cycle: its number and the seed, well stirred. A row of
/// a generator would have to be counted off from its start.
double RandomOf(std::uint32_t seed, std::int64_t cycle) noexcept {
    std::uint64_t x = static_cast<std::uint64_t>(cycle) + seed * 0xD1342543DE82EF95U;
    x = (x ^ (x >> 32)) * 0xDABA0B6EB09322E3U;
    x = (x ^ (x >> 32)) * 0xDABA0B6EB09322E3U;
    x ^= x >> 32;
    constexpr double kLargest = 9007199254740991.0;  // 53 bits
    return static_cast<double>(x >> 11) / kLargest;
}

/// The value `x`, 0..1, into a step that glides to `to` during its first `share`.
double Glide(double from, double to, double x, double share) noexcept {
    return x < share ? from + (to - from) * SmoothStep(x / share) : to;
}

/// What is left of `phase` above the whole number below it: 0 and up, below 1.
double FractionOf(double phase) noexcept {
    const double fraction = phase - std::floor(phase);
    return fraction < 1 ? fraction : 0;  // just below a whole number; nothing but a finite number
}

double Triangle(double x) noexcept {
    if (x < 0.25) return 0.5 + 2 * x;
    return x < 0.75 ? 1.5 - 2 * x : 2 * x - 1.5;
}

/// sin(pi u) for -0.5 <= u <= 0.5, wrong by less than 1e-13: the odd polynomial through it at the
/// places where one of this degree is wrong by least.
double SineOfHalfTurn(double u) noexcept {
    const double s = u * u, s2 = s * s;
    const double low = 3.141592653589635 - 5.167712779987959 * s;
    const double middle = 2.550164035906744 - 0.5992644339357194 * s;
    const double high =
        (0.08214479467059345 - 0.007364005471959143 * s) + s2 * 0.00044749208473896434;
    return u * (low + s2 * (middle + s2 * high));
}

double Sine(double phase) noexcept {
    return ToUnitRange(0.5 + 0.5 * SineOfHalfTurn(Triangle(FractionOf(phase)) - 0.5));
}

double Square(const MShapeSettings& settings, double x) noexcept {
    const double width = ToUnitRange(settings.width);
    const double glide = ToUnitRange(settings.smoothing) * std::min(width, 1 - width);
    return x < width ? Glide(0, 1, x, glide) : Glide(1, 0, x - width, glide);
}

double Steps(const MShapeSettings& settings, double x) noexcept {
    const int count = std::clamp(settings.stepCount, 1, MShapeSettings::kMaxSteps);
    const double place = x * count;
    const int index = std::min(static_cast<int>(place), count - 1);
    const double from = ToUnitRange(settings.steps[(index + count - 1) % count]);
    const double to = ToUnitRange(settings.steps[index]);
    return Glide(from, to, place - index, ToUnitRange(settings.smoothing));
}

}  // namespace

double MEvaluateShape(const MShapeSettings& settings, double phase) noexcept {
    if (settings.shape == MShape::Sine) return Sine(phase);
    const auto [cycle, x] = PlaceOf(phase);
    switch (settings.shape) {
        case MShape::Sine:
            break;  // has no cycles that differ
        case MShape::Triangle:
            return Triangle(x);
        case MShape::SawUp:
            return x;
        case MShape::SawDown:
            return 1 - x;
        case MShape::Square:
            return Square(settings, x);
        case MShape::SteppedRandom:
            return Glide(RandomOf(settings.seed, cycle - 1), RandomOf(settings.seed, cycle), x,
                         ToUnitRange(settings.smoothing));
        case MShape::SmoothRandom:
            return Glide(RandomOf(settings.seed, cycle), RandomOf(settings.seed, cycle + 1), x, 1);
        case MShape::Steps:
            return Steps(settings, x);
    }
    return 0;
}
