// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MStateTransfer.h"

#include <cassert>

namespace {

struct Matrix {
    double a, b, c, d;  // rows: a b, c d
};

/// From the charges of the integrators to the memory of the transposed section: both give the same
/// sound when nothing more comes in. V. Zavalishin, The Art of VA Filter Design, derives the filter
/// with trapezoidal integrators, whose response is that of the section.
Matrix MemoryFromCharges(BiquadType type, const MSectionShape& shape) noexcept {
    const double g = shape.warp, k = shape.damping;
    const double a1 = 1 / (1 + g * (g + k)), a2 = g * a1, a3 = g * a2;
    // The step from one sample to the next.
    const Matrix step{2 * a1 - 1, -2 * a2, 2 * a2, 1 - 2 * a3};
    const double trace = 2 * (a1 - a3);
    // The output of this sample.
    double first = a2, second = 1 - a3;  // low-pass
    if (type == BiquadType::HighPass) {
        first = -k * a1 - a2;
        second = k * a2 - 1 + a3;
    } else if (type == BiquadType::AllPass) {
        first = -2 * k * a1;
        second = 2 * k * a2;
    }
    return {first, second, first * step.a + second * step.c - trace * first,
            first * step.b + second * step.d - trace * second};
}

}  // namespace

MStateTransfer::MStateTransfer(BiquadType type, const MSectionShape& from,
                               const MSectionShape& to) noexcept {
    assert(type == BiquadType::LowPass || type == BiquadType::HighPass ||
           type == BiquadType::AllPass);
    const Matrix o = MemoryFromCharges(type, from), n = MemoryFromCharges(type, to);
    const double scale = 1 / (o.a * o.d - o.b * o.c);
    m11_ = (n.a * o.d - n.b * o.c) * scale;
    m12_ = (n.b * o.a - n.a * o.b) * scale;
    m21_ = (n.c * o.d - n.d * o.c) * scale;
    m22_ = (n.d * o.a - n.c * o.b) * scale;
}
