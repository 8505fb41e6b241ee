// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MControllerAssignment.h"

#include <optional>

/// What one controller has done to its parameter so far, and so does next. Positions are 0..1.
/// [audio]
class MControllerFollower {
public:
    /// Where the parameter goes from its `present` position when the controller comes to `x`, 0..1
    /// of its travel; nothing when it is to stay.
    std::optional<double> Follow(const MControllerMapping& mapping, double x,
                                 double present) noexcept;

    /// The parameter was put to `target`, and says that it is at `present`: a switch, for one,
    /// knows two positions only.
    void Wrote(double target, double present) noexcept;

private:
    bool TakesOver(const MControllerMapping& mapping, double target, double present) noexcept;
    std::optional<double> Toggle(const MControllerMapping& mapping, double x,
                                 double present) noexcept;
    double Step(const MControllerMapping& mapping, double x, double present) const noexcept;

    std::optional<double> last_;   // where the controller's travel last pointed
    bool isHigh_ = false;          // in the upper half
    std::optional<double> shown_;  // the parameter's position after the last write
    double written_ = 0;           // what was written then
};
