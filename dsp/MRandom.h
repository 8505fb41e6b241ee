// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Random numbers of which one seed always gives the same row: a linear congruential generator.
/// Neighbouring seeds start with neighbouring numbers. [any]
class MRandom {
public:
    explicit MRandom(std::uint32_t seed) noexcept : state_(seed) {}

    /// Steps on; one of 32768 evenly spaced numbers from 0 to 1, both included.
    double Next() noexcept {
        state_ = state_ * 214013U + 2531011U;
        return (Bits() & 0x7FFFU) * 3.051850947599719e-5;
    }

    /// The upper half of the present state, 16 bits, without stepping.
    std::uint32_t Bits() const noexcept { return state_ >> 16; }

    std::uint32_t State() const noexcept { return state_; }

private:
    std::uint32_t state_;
};
