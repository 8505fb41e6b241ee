// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// Shapes of a signal window.
enum class MWindowType : std::int32_t {
    Rectangular = 0,
    Kaiser = 1,
};

/// A window that a kernel of finite length is faded out with.
class MWindow {
public:
    /// `attenuation`: what a Kaiser window promises for the stop band, in decibels; below 20 it is
    /// a rectangle. Throws MException "Unknown signal window type." for a number outside
    /// MWindowType. [any]
    explicit MWindow(MWindowType type, double attenuation = 0);

    /// The weight `offset` taps from the centre of a window of `length` taps, which is odd; 1 at
    /// the centre, the same on both sides. -length / 2 <= offset <= length / 2. [any]
    double Weight(int offset, int length) const noexcept;

    MWindowType Type() const noexcept { return type_; }
    double Attenuation() const noexcept { return attenuation_; }  // decibels

private:
    MWindowType type_;
    double attenuation_;
    double beta_ = 0;  // shape of the Kaiser window
    double scale_ = 1;
};

/// The modified Bessel function of the first kind of order 0, for `x` >= 0. [any]
double BesselI0(double x) noexcept;
