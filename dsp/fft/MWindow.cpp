// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/fft/MWindow.h"

#include "core/MException.h"

#include <cmath>

double BesselI0(double x) noexcept {
    // The power series; every term is positive, so that nothing cancels. std::cyl_bessel_i does the
    // same work ten times slower and is missing from some standard libraries.
    const double quarter = x * x / 4;
    double sum = 1, term = 1;
    for (int k = 1; term > sum * 1e-17; ++k) {
        term *= quarter / (static_cast<double>(k) * k);
        sum += term;
    }
    return sum;
}

MWindow::MWindow(MWindowType type, double attenuation) : type_(type), attenuation_(attenuation) {
    switch (type) {
        case MWindowType::Rectangular:
            return;
        case MWindowType::Kaiser:
            beta_ = attenuation >= 20 ? (attenuation - 8.7) * 0.1102 : 0;
            scale_ = 1 / BesselI0(beta_);
            return;
    }
    throw MException("Unknown signal window type.");
}

double MWindow::Weight(int offset, int length) const noexcept {
    if (beta_ == 0) return 1;
    const double position = 2.0 * offset / length;
    return BesselI0(beta_ * std::sqrt(1 - position * position)) * scale_;
}
