// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <bitset>

/// Which keys are down. Channels are 1..16, notes 0..127. [audio]
class MHeldNotes {
public:
    static constexpr int kChannels = 16;
    static constexpr int kNotes = 128;

    void Press(int channel, int note) noexcept { held_[channel - 1][note] = true; }
    void Release(int channel, int note) noexcept { held_[channel - 1][note] = false; }
    bool IsHeld(int channel, int note) const noexcept { return held_[channel - 1][note]; }

    /// Whether a key is down on `channel` (0: any) at `note` (below 0: any).
    bool IsAnyHeld(int channel = 0, int note = -1) const noexcept {
        for (int c = 1; c <= kChannels; ++c) {
            if (channel != 0 && channel != c) continue;
            if (note < 0 ? held_[c - 1].any() : IsHeld(c, note)) return true;
        }
        return false;
    }

private:
    std::array<std::bitset<kNotes>, kChannels> held_;
};
