// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueScale.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace {
constexpr double kStep = 0.001;
constexpr double kLargestStep = 0.1;
}  // namespace

MValueScalePower::MValueScalePower(std::unique_ptr<MValue> scale, int exponent)
    : scale_(std::move(scale)), exponent_(exponent) {
    assert(scale_ != nullptr && exponent_ >= 1);
}

bool MValueScalePower::Assign(const MValue& other) {
    const auto* same = dynamic_cast<const MValueScalePower*>(&other);
    if (same != nullptr) return scale_->Assign(*same->scale_);
    return scale_->Assign(other);
}

std::string MValueScalePower::GetDisplayTextFrom01(double x) const {
    return scale_->GetDisplayTextFrom01(Bent(x));
}

void MValueScalePower::IncrementPower(int power, bool up) {
    const double distance = std::min(std::ldexp(kStep, power), kLargestStep);
    Move(up ? distance : -distance);
}

void MValueScalePower::Increment(int count) { Move(count * kStep); }

double MValueScalePower::GetNormalised() const {
    return std::pow(scale_->GetNormalised(), 1.0 / exponent_);
}

void MValueScalePower::SetNormalised(double x) { scale_->SetNormalised(Bent(x)); }

double MValueScalePower::Bent(double x) const {
    double result = x;
    for (int i = 1; i < exponent_; ++i) result *= x;
    return result;
}

void MValueScalePower::Move(double distance) {
    SetNormalised(std::clamp(GetNormalised() + distance, 0.0, 1.0));
}

MValueScaleSqr::MValueScaleSqr(std::unique_ptr<MValue> scale)
    : MValueScalePower(std::move(scale), 2) {}
