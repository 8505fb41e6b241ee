// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueNumber.h"

/// A fraction of a turn, shown in degrees and percent: "90° (25.0%)".
class MValueDegreesFrom01 : public MValueRule<MValueDegreesFrom01> {
public:
    static constexpr const char* kTypeName = "MValueDegreesFrom01";

    using MValueRule::MValueRule;

    /// The text of a fraction of a turn. [any]
    static std::string Format(double turns);
    /// The fraction of typed degrees, with or without the degree sign and the percents, which count
    /// for nothing. [any]
    static std::optional<double> Parse(const std::string& text);
};
