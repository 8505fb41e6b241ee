// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

/// The fade of the loops into endless repeat and back.
///
/// One flag, position and step for the whole effect, on purpose: every channel of every tap reads
/// the position on and moves it, so two channels fade twice as fast as one, and a frozen tap beside
/// one that is not starts a fade that the other turns round. Presets are tuned to that timing.
class MDelayFreeze {
public:
    /// At the start of a tap's block: begins the fade, turns it round, or ends it. [audio]
    void Begin(bool isOn, int sampleRate) noexcept {
        constexpr double kFadeSeconds = 0.01;
        const auto step = static_cast<float>(1.0 / (sampleRate * kFadeSeconds));
        if (isOn && !isFrozen_) {
            isFrozen_ = true;
            position_ = 0;
            step_ = step;
        } else if (!isOn && isFrozen_) {
            if (position_ - kAlmostNothing > 0) {
                step_ = -step;
            } else {
                isFrozen_ = false;
            }
        }
        // Switching it on again during the way back changes nothing: the way back runs out first.
    }

    /// The position for the next sample, which moves it on. [audio]
    float Next() noexcept {
        const float position = position_;
        position_ = std::clamp(position_ + step_, 0.0f, 1.0f);
        return position;
    }

    void Reset() noexcept { isFrozen_ = false; }
    /// Whether samples are mixed with the echoes at all. [audio]
    bool IsFrozen() const noexcept { return isFrozen_; }
    float Position() const noexcept { return position_; }  // 0 free to 1 endless

private:
    static constexpr float kAlmostNothing = 1e-20f;

    bool isFrozen_ = false;
    float position_ = 0;
    float step_ = 0;  // per sample
};
