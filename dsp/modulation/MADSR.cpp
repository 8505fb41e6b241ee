// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MADSR.h"

#include "dsp/modulation/MUnitRange.h"

#include <algorithm>
#include <cmath>

void MADSR::NoteOn(double velocity) noexcept {
    velocity_ = ToUnitRange(velocity);
    stage_ = Stage::Attack;
    done_ = 0;
}

void MADSR::NoteOff() noexcept {
    if (stage_ == Stage::Idle || stage_ == Stage::Release) return;
    stage_ = Stage::Release;
    done_ = 0;
}

double MADSR::Advance(int count, int sampleRate, const MADSRSettings& settings) noexcept {
    const double peak = 1 - ToUnitRange(settings.velocityAmount) * (1 - velocity_);
    const double held = peak * ToUnitRange(settings.sustain);
    double seconds = static_cast<double>(std::max(0, count)) / std::max(1, sampleRate);
    if (seconds > 0 && stage_ == Stage::Attack) {
        seconds = RunLine(seconds, settings.attack, peak, Stage::Decay);
    }
    if (seconds > 0 && stage_ == Stage::Decay) {
        seconds = RunLine(seconds, settings.decay, held, Stage::Sustain);
    }
    if (seconds > 0 && stage_ == Stage::Sustain) Hold(seconds, settings.decay, held);
    if (seconds > 0 && stage_ == Stage::Release) {
        RunLine(seconds, settings.release, 0, Stage::Idle);
    }
    return level_;
}

/// Follows the line of the stage, `length` seconds long in all, for `seconds`; what is left of
/// these when the line ends, and then the next stage begins.
double MADSR::RunLine(double seconds, double length, double target, Stage next) noexcept {
    const double left = length > 0 ? length * (1 - done_) : 0;  // NaN jumps as well
    // The last steps' rounding must not leave a stage that never ends.
    if (seconds >= left * (1 - 1e-12)) {
        level_ = target;
        stage_ = next;
        done_ = 0;
        return std::max(0.0, seconds - left);
    }
    level_ += (target - level_) * (seconds / left);
    done_ += seconds / length;
    return 0;
}

/// Stays at the sustain level, and follows it at the pace of the decay when it is moved.
void MADSR::Hold(double seconds, double decay, double target) noexcept {
    const double farthest = decay > 0 ? seconds / decay : 1;
    level_ += std::clamp(target - level_, -farthest, farthest);
}
