// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueNumber.h"

#include <string>
#include <string_view>

/// A positive number whose positions are spread evenly over its logarithm. Increments move the
/// position by a thousandth per step.
class MValueLogarithmic : public MValueNumber<double> {
public:
    using MValueNumber::MValueNumber;

    /// The text of minimum + (maximum - minimum) * x: this one text counts positions evenly over
    /// the value itself, as on every other scale. [any]
    std::string GetDisplayTextFrom01(double x) const override;

protected:
    double PositionOf(double value) const override;
    double ValueAt(double x) const override;
    double Moved(double steps) const override { return MovedByPosition(steps); }
};

/// A frequency in hertz on a logarithmic scale.
class MValueFrequency : public MValueRule<MValueFrequency, MValueLogarithmic> {
public:
    static constexpr const char* kTypeName = "MValueFrequency";

    using MValueRule::MValueRule;

    /// The text of a frequency in hertz: "0.5000 Hz", "44.0 Hz", "9999 Hz", "10.0 kHz". [any]
    static std::string Format(double hertz);
    /// The same with `separator` between number and unit. [any]
    static std::string FormatWithSeparator(double hertz, std::string_view separator);
    /// The hertz of a typed frequency: hertz, unless the text names kilohertz ("1.2 kHz", "1.2k").
    /// [any]
    static std::optional<double> Parse(const std::string& text);
};

/// A frequency kept as log10 of its hertz.
class MValueFrequencyLog : public MValueRule<MValueFrequencyLog> {
public:
    static constexpr const char* kTypeName = "MValueFrequencyLog";

    using MValueRule::MValueRule;

    static std::string Format(double log10Hertz);
    /// log10 of what MValueFrequency::Parse reads; empty for zero and negative frequencies. [any]
    static std::optional<double> Parse(const std::string& text);

protected:
    double Moved(double steps) const override { return MovedByPosition(steps); }
};

/// A frequency in hertz on a linear scale.
class MValueFrequencyLinear : public MValueRule<MValueFrequencyLinear> {
public:
    static constexpr const char* kTypeName = "MValueFrequencyLinear";

    using MValueRule::MValueRule;

    static std::string Format(double hertz) { return MValueFrequency::Format(hertz); }
    static std::optional<double> Parse(const std::string& text) {
        return MValueFrequency::Parse(text);
    }
};
