// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/values/MValueNumber.h"

/// A double that moves in fixed steps: positions, increments and typed numbers end on the nearest
/// multiple of the step, counted from the minimum.
class MValueStepDouble : public MValueNumber<double> {
public:
    using MValueNumber::MValueNumber;

    std::string TypeName() const override { return "MValueStepDouble"; }

protected:
    std::optional<double> Read(const std::string& text) const override;
    double ValueAt(double x) const override;
    double Moved(double steps) const override;

    /// `value` moved to the nearest step.
    double Snapped(double value) const;
};

/// The same for a fraction that is shown as MValuePercents shows it.
class MValueStepPercents : public MValueStepDouble {
public:
    using MValueStepDouble::MValueStepDouble;

    std::string TypeName() const override { return "MValueStepPercents"; }

protected:
    std::string Show(double value) const override;
    std::optional<double> Read(const std::string& text) const override;
};
