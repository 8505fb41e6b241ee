// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delay/MSaturationCurve.h"

#include "dsp/MDenormals.h"

#include <cassert>
#include <cmath>
#include <numbers>

MSaturationCurve::MSaturationCurve(double threshold) noexcept
    : threshold_(threshold),
      innerScale_(std::numbers::pi / (1 - threshold)),
      outerScale_((1 - threshold) / std::numbers::pi),
      normaliser_(1 / (outerScale_ * std::tanh(innerScale_ * (1 - threshold)) + threshold)) {}

double MSaturationCurve::Curve(double x) const noexcept {
    const double size = std::abs(x);
    double bent = 1;
    if (size < threshold_) {
        bent = size * normaliser_;
    } else if (size < 1) {
        bent =
            (outerScale_ * std::tanh(innerScale_ * (size - threshold_)) + threshold_) * normaliser_;
    }
    return std::copysign(bent, x);
}

double MSaturationCurve::Process(double sample, double amount) const noexcept {
    const double r = Curve(sample);
    const double even = r + kEven * ((r - sample) * (r - sample));
    return (1 - amount) * sample + amount * even;
}

MSaturationSettings MSaturationCurve::Settings(double amount) const noexcept {
    assert(threshold_ == 0);
    return {.innerScale = innerScale_,
            .outerScale = outerScale_ * normaliser_,
            .even = kEven,
            .amount = amount};
}
