// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MMIDIMessage.h"

#include <array>
#include <cstdint>

/// The controllers 0..31 in 14 bits: the coarse part comes as 0..31, the fine part as 32..63.
/// [audio]
class MControllerPairs {
public:
    /// Takes in a controller message.
    void Note(const MMIDIMessage& message) noexcept {
        const int number = message.number;
        if (number >= 2 * kPairs) return;
        Pair& pair = pairs_[message.channel - 1][number % kPairs];
        if (number < kPairs) {
            pair.coarse = static_cast<std::uint8_t>(message.value);
            pair.fine = 0;  // a fine part belongs to the coarse one before it
        } else {
            pair.fine = static_cast<std::uint8_t>(message.value);
            pair.hasFine = true;
        }
    }

    /// Where controller `number`, 0..31, stands, 0..1. One that never sent a fine part reaches both
    /// ends with its coarse part alone.
    double Place(int channel, int number) const noexcept {
        const Pair& pair = pairs_[channel - 1][number];
        return pair.hasFine ? (pair.coarse * 128 + pair.fine) / 16383.0 : pair.coarse / 127.0;
    }

private:
    static constexpr int kPairs = 32;

    struct Pair {
        std::uint8_t coarse = 0;
        std::uint8_t fine = 0;
        bool hasFine = false;
    };

    std::array<std::array<Pair, kPairs>, 16> pairs_{};  // [channel][number]
};
