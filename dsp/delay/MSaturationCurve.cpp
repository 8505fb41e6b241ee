// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delay/MSaturationCurve.h"

#include <cmath>
#include <numbers>

namespace {

constexpr double kInnerScale = std::numbers::pi;
constexpr double kEven = 0.7;  // of the even component

}  // namespace

MSaturationCurve::MSaturationCurve() noexcept : outerScale_(1 / std::tanh(kInnerScale)) {}

MSaturationSettings MSaturationCurve::Settings(double amount) const noexcept {
    return {.innerScale = kInnerScale, .outerScale = outerScale_, .even = kEven, .amount = amount};
}
