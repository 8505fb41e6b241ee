// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MModulationTarget.h"

#include <vector>

/// How a MultiParameter acts. The numbers are stored in states.
enum class MMultiParameterMode : int {
    Continuous = 0,  ///< its targets go with it
    Switch = 1,      ///< they jump between the ends of their ranges as it crosses the middle
    Momentary = 2,   ///< they jump to the far ends of their ranges each time it rises to the middle
};

/// Whether a MultiParameter at `position`, 0 to 1, is a switch that is on. [any]
constexpr bool IsHigh(double position) noexcept { return position >= 0.5; }

/// What one MultiParameter does. Of a target's motion only range, curve and inversion count.
struct MMultiParameterSettings {
    MMultiParameterMode mode = MMultiParameterMode::Continuous;
    std::vector<MModulationTarget> targets;  ///< up to MModulationTarget::kMaxTargets

    /// Reads or writes the attributes of `node`; bad ones become defaults. [main]
    void Store(MXMLNode node, const MArchive& archive);
    /// The same settings with every number within its range, the targets moved over ranges. [main]
    MMultiParameterSettings Held() const;
};
