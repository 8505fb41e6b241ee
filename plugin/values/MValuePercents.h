// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueNumber.h"

/// A fraction, shown in percent: one decimal, two below 1 %.
class MValuePercents : public MValueRule<MValuePercents> {
public:
    static constexpr const char* kTypeName = "MValuePercents";

    using MValueRule::MValueRule;

    /// The text of a fraction, 1 being 100 %. [any]
    static std::string Format(double fraction);
    /// The fraction of typed percent, with or without the sign. [any]
    static std::optional<double> Parse(const std::string& text);
};
