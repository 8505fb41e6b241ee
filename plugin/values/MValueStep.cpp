// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueStep.h"

#include "plugin/values/MValuePercents.h"

#include <algorithm>
#include <cmath>

std::optional<double> MValueStepDouble::Read(const std::string& text) const {
    const std::optional<double> value = MValueNumber::Read(text);
    return value ? std::optional(Snapped(*value)) : std::nullopt;
}

double MValueStepDouble::ValueAt(double x) const { return Snapped(MValueNumber::ValueAt(x)); }

double MValueStepDouble::Moved(double steps) const { return Snapped(MValueNumber::Moved(steps)); }

double MValueStepDouble::Snapped(double value) const {
    const auto& [minimum, maximum, step, largestStep, defaultValue] = Limits();
    if (!(step > 0)) return value;
    // The upper end stays within reach when the range is no whole number of steps.
    if (value >= maximum) return maximum;
    return std::min(minimum + step * std::floor((value - minimum) / step + 0.5), maximum);
}

std::string MValueStepPercents::Show(double value) const { return MValuePercents::Format(value); }

std::optional<double> MValueStepPercents::Read(const std::string& text) const {
    const std::optional<double> value = MValuePercents::Parse(text);
    return value ? std::optional(Snapped(*value)) : std::nullopt;
}
