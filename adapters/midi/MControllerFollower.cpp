// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MControllerFollower.h"

#include <algorithm>
#include <cmath>
#include <utility>

std::optional<double> MControllerFollower::Follow(const MControllerMapping& mapping, double x,
                                                  double present) noexcept {
    const double way = mapping.maxValue - mapping.value;
    const double place = mapping.isInverted ? 1 - x : x;
    switch (mapping.range) {
        case MControllerRange::Switch:
            return mapping.value + (place < 0.5 ? 0 : way);
        case MControllerRange::Toggle:
            return Toggle(mapping, place, present);
        case MControllerRange::Relative:
            return Step(mapping, x, present);
        case MControllerRange::Continuous:
            break;
    }
    const double target = mapping.value + place * way;
    if (mapping.hasSoftTakeover && !TakesOver(mapping, target, present)) return std::nullopt;
    return target;
}

void MControllerFollower::Wrote(double target, double present) noexcept {
    written_ = target;
    shown_ = present;
}

/// Whether the parameter is still where this controller has put it, or the controller has now come
/// to it or past it.
bool MControllerFollower::TakesOver(const MControllerMapping& mapping, double target,
                                    double present) noexcept {
    // A controller of seven bits may step over the parameter without ever being at it.
    const double step = std::abs(mapping.maxValue - mapping.value) / 127;
    const std::optional<double> before = std::exchange(last_, target);
    if (shown_ == present) return true;
    if (std::abs(target - present) <= step) return true;
    return before && (*before < present) != (target < present);
}

std::optional<double> MControllerFollower::Toggle(const MControllerMapping& mapping, double x,
                                                  double present) noexcept {
    const bool wasHigh = std::exchange(isHigh_, x >= 0.5);
    if (wasHigh || !isHigh_) return std::nullopt;
    const bool isAtEnd = std::abs(present - mapping.maxValue) < std::abs(present - mapping.value);
    return isAtEnd ? mapping.value : mapping.maxValue;
}

double MControllerFollower::Step(const MControllerMapping& mapping, double x,
                                 double present) const noexcept {
    const auto sent = static_cast<int>(std::lround(x * 127));
    const int steps = sent < 64 ? sent : sent - 128;
    const double way = mapping.maxValue - mapping.value;
    // Steps add up even where the parameter rounds each of them away.
    const double start = shown_ == present ? written_ : present;
    const double target = start + (mapping.isInverted ? -steps : steps) * way / 127;
    return std::clamp(target, std::min(mapping.value, mapping.maxValue),
                      std::max(mapping.value, mapping.maxValue));
}
