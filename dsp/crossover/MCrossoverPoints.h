// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <span>

inline constexpr int kMaxCrossoverBands = 6;
inline constexpr int kMaxCrossoverPoints = kMaxCrossoverBands - 1;

/// The band limits that a crossover is designed for.
struct MCrossoverPoints {
    int bandCount = 1;
    double sampleRate = 0;  ///< hertz
    /// Hertz, bandCount - 1 of them in rising order.
    std::array<double, kMaxCrossoverPoints> frequency{};
};

/// Checks what a crossover is asked for and moves each limit into the range that can be designed:
/// from 1 Hz (a millionth of rates above 1 MHz) to 0.49 of the sample rate. Limits may come in any
/// order: bands between limits that cross each other would add up to twice the signal. Entries of
/// `frequencies` beyond `bandCount` - 1 are ignored. Throws MException for a band count outside 1
/// .. 6 ("Invalid number of bands."), for a limit that is missing or not a number ("Invalid
/// crossover frequency.") and for a sample rate that is not a positive finite number ("Invalid
/// sample rate."). [any]
MCrossoverPoints CheckCrossoverPoints(int bandCount, std::span<const double> frequencies,
                                      double sampleRate);
