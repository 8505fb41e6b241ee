// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandRandomiser.h"

#include "core/MException.h"

#include <algorithm>
#include <cstddef>
#include <utility>

std::string_view MBandRandomiser::Title(Kind kind) noexcept {
    switch (kind) {
        case Kind::LimitsOverlapping:
            return "Randomize band limits (overlapping)";
        case Kind::Gains:
            return "Randomize band gains";
        case Kind::Panorama:
            return "Randomize band panorama";
        case Kind::Limits:
            break;
    }
    return "Randomize band limits";
}

std::string_view MBandRandomiser::Description(Kind kind) noexcept {
    switch (kind) {
        case Kind::LimitsOverlapping:
            return "Generates random band limit modulation without constraining their potential "
                   "overlap.";
        case Kind::Gains:
            return "Generates random band gain modulation.";
        case Kind::Panorama:
            return "Generates random band panorama modulation.";
        case Kind::Limits:
            break;
    }
    return "Generates random band limit modulation.";
}

std::vector<double> MBandRandomiser::Positions(int bandCount, MRandom& random) {
    if (bandCount == 2) {
        const double r = random.Next() - 0.5;
        const double first = (r * r + 0.5) * 0.5;
        return {first, 1 - first};
    }
    std::vector<double> positions;
    for (int k = 1; k <= bandCount; ++k) {
        const double r = random.Next() - 0.5;
        positions.push_back((k + r * r) / (bandCount + 1));
    }
    std::sort(positions.begin(), positions.end());
    return positions;
}

std::uint32_t MBandRandomiser::Draw() noexcept {
    random_.Next();
    return random_.Bits();
}

int MBandRandomiser::Draw(int count) noexcept {
    return static_cast<int>(Draw() % static_cast<std::uint32_t>(count));
}

void MBandRandomiser::Deal(std::span<const MModulationTarget> pool, Modulators& modulators) {
    if (pool.empty()) return;
    std::vector<Parameter> remaining;
    for (const MModulationTarget& target : pool) {
        remaining.push_back({target, static_cast<int>(remaining.size()) + 1});
    }
    positions_ = Positions(bandCount_, random_);
    depth_ = (Draw() & 7) * 0.1 + 0.3;
    if (kind_ == Kind::Gains) depth_ *= 0.5;
    for (MLFOSettings& modulator : modulators) {
        if (remaining.empty()) return;
        const int left = static_cast<int>(remaining.size());
        const int taken = &modulator == &modulators.back() ? left : Draw(left) + 1;
        modulator.targets.resize(1);
        for (int i = 0; i < taken; ++i) {
            const std::size_t drawn = static_cast<std::size_t>(Draw(left - i));
            if (drawn >= remaining.size()) throw MException("Index out of range.");
            const Parameter parameter = remaining[drawn];
            remaining.erase(remaining.begin() + static_cast<std::ptrdiff_t>(drawn));
            const bool isInverted = i > 0 && (Draw() & 1) != 0;
            MModulationTarget& target =
                i == 0 ? modulator.targets[0] : modulator.targets.emplace_back();
            target = parameter.target;
            target.motion = Motion(parameter.number, isInverted);
        }
    }
}

MTargetMotion MBandRandomiser::Motion(int number, bool isInverted) {
    MTargetMotion motion;
    motion.isInverted = isInverted;
    if (kind_ == Kind::Gains || kind_ == Kind::Panorama) {
        motion.mode = MTargetMode::CentreAndDepth;
        motion.followsKnob = false;
        motion.centre = 0.5;
        motion.depth = depth_;
        return motion;
    }
    const auto position = [&](int index) {
        const auto i = static_cast<std::size_t>(index);
        if (i >= positions_.size()) throw MException("Index out of range.");
        return positions_[i];
    };
    motion.mode = MTargetMode::Range;
    int lowest = number - 1, highest = number;
    if (kind_ == Kind::LimitsOverlapping) {
        lowest = Draw(number);
        if (bandCount_ > number) highest = number + Draw(bandCount_ - number);
    }
    motion.minimum = position(lowest);
    motion.maximum = position(highest);
    return motion;
}
