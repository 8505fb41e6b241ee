// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <complex>
#include <numbers>
#include <vector>

/// The frequency response of a system at `frequency` hertz, from its impulse response, `delay`
/// samples of delay taken away.
template <class Sample>
std::complex<double> ResponseAt(const std::vector<Sample>& impulse, double frequency,
                                double sampleRate, double delay = 0) {
    const double omega = 2 * std::numbers::pi * frequency / sampleRate;
    const std::complex<double> step = std::polar(1.0, -omega);
    std::complex<double> sum = 0;
    for (std::size_t i = impulse.size(); i-- > 0;) {  // Horner
        sum = sum * step + static_cast<double>(impulse[i]);
    }
    return sum * std::polar(1.0, omega * delay);
}
