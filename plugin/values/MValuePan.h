// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueNumber.h"

/// A panorama from -1 (left) to 1 (right), shown in whole percent of either side.
class MValuePan : public MValueRule<MValuePan> {
public:
    static constexpr const char* kTypeName = "MValuePan";

    using MValueRule::MValueRule;

    /// "center", "50% left", "33% right"; percents are cut, not rounded. [any]
    static std::string Format(double pan);
    /// The panorama of typed percent: "-50", "50% left", "left 50", "L50", "center". A side alone
    /// is all the way. [any]
    static std::optional<double> Parse(const std::string& text);
};
