// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueNumber.h"

/// Whether a volume's text ends in " dB".
enum class MVolumeUnit { Shown, Hidden };

/// A linear amplitude, shown in decibels: two decimals below 10 dB of either sign, one from there
/// on, "silence" for none.
class MValueVolume : public MValueRule<MValueVolume> {
public:
    static constexpr const char* kTypeName = "MValueVolume";

    /// Describes `amplitude` (linear), which outlives the scale. [setup]
    MValueVolume(double& amplitude, const MValueLimits<double>& limits,
                 MVolumeUnit unit = MVolumeUnit::Shown);

    /// The text of a linear amplitude, of its absolute value when it is negative. [any]
    static std::string Format(double amplitude);
    /// The same without the unit. [any]
    static std::string FormatWithoutUnit(double amplitude);
    /// The linear amplitude of typed decibels, with or without the unit; 0 for "silence" and
    /// "-inf". [any]
    static std::optional<double> Parse(const std::string& text);

    /// The text of a square root of an amplitude: knobs that keep it feel even to the ear. [any]
    static std::string FormatSquareRoot(double root);
    /// The square root of the amplitude that Parse reads. [any]
    static std::optional<double> ParseSquareRoot(const std::string& text);

protected:
    std::string Show(double value) const override;

private:
    const MVolumeUnit unit_;
};
