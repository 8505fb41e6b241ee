// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MControllerSource.h"
#include "adapters/midi/MMIDITarget.h"

/// How the travel of a controller meets the range of its parameter. The numbers are stored.
enum class MControllerRange {
    Continuous = 0,  ///< in proportion
    Switch = 1,      ///< one end below the middle, the other from there on
    Toggle = 2,      ///< to the other end each time it rises through the middle
    /// An endless knob, whose values are steps: 1..63 up, 127..65 down. Only controllers of 7 bits;
    /// the others are continuous.
    Relative = 3
};

/// The way of a controller's travel to positions of a parameter.
struct MControllerMapping {
    bool isInverted = false;
    double value = 0;     ///< position, 0..1, for the controller at rest
    double maxValue = 1;  ///< position, 0..1, for the controller at its end; may lie below `value`
    MControllerRange range = MControllerRange::Continuous;
    /// Whether a continuous controller moves nothing before it has come past the parameter.
    bool hasSoftTakeover = false;

    bool operator==(const MControllerMapping&) const = default;
};

/// One controller that moves one parameter.
struct MControllerAssignment {
    bool isEnabled = false;
    MControllerSource source;
    MMIDITarget target;
    MControllerMapping mapping;

    bool operator==(const MControllerAssignment&) const = default;

    /// With everything out of range, or no number, put to its default. [any]
    MControllerAssignment Corrected() const;

    /// Keys of the node: "Enabled", those of the source and of the target, "Invert", "Value",
    /// "MaxValue", "Range", "SoftTakeover". [main]
    void Store(MXMLNode node, const MArchive& archive);
};
