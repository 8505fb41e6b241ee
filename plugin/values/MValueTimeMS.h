// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueNumber.h"

/// A time in seconds, shown in milliseconds with as many decimals as its size asks for.
class MValueTimeMS : public MValueRule<MValueTimeMS> {
public:
    static constexpr const char* kTypeName = "MValueTimeMS";

    using MValueRule::MValueRule;

    /// The text of a time in seconds. [any]
    static std::string Format(double seconds);
    /// The seconds of a typed time: milliseconds, unless the text names seconds ("0.35 s"). [any]
    static std::optional<double> Parse(const std::string& text);
};
