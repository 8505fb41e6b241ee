// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MArchive.h"
#include "plugin/parameters/ParameterDefinition.h"

#include <cstdint>
#include <string>
#include <vector>

/// Where the values of a modulator lead. The numbers are stored in states.
enum class MTargetMode : int {
    CentreAndDepth = 1,  ///< to either side of a centre, `depth` wide
    Up = 2,              ///< from the knob upwards by `depth`
    Down = 3,            ///< from the knob downwards by `depth`
    Range = 4,           ///< from `minimum` to `maximum`, whatever the knob says
};

/// How a value of 0..1 becomes a position of a parameter. All numbers are positions of 0..1.
struct MTargetMotion {
    MTargetMode mode = MTargetMode::CentreAndDepth;
    bool followsKnob = true;  ///< the centre is where the parameter's knob stands
    bool isInverted = false;
    double centre = 0.5;
    double depth = 0.5;
    double minimum = 0;
    double maximum = 1;
    ParameterCurve curve = ParameterCurve::None;  ///< bends the value

    /// Whether the position depends on the knob. [any]
    bool UsesKnob() const noexcept {
        return mode != MTargetMode::Range && (mode != MTargetMode::CentreAndDepth || followsKnob);
    }
};

/// A motion made ready for the audio thread: positions lie on a straight line over the value, bent
/// or not.
class MMotionLine {
public:
    explicit MMotionLine(const MTargetMotion& motion) noexcept;

    /// Where `value`, 0..1, leads while the knob stands at `knob`; may lie outside 0..1. [any]
    double Position(double value, double knob) const noexcept {
        const double x = curve_ == ParameterCurve::None ? value : Bend(value);
        return start_ + slope_ * x + knobShare_ * knob;
    }

    // The line of a motion that bends nothing. [any]
    bool IsStraight() const noexcept { return curve_ == ParameterCurve::None; }
    double Start() const noexcept { return start_; }
    double Slope() const noexcept { return slope_; }
    double KnobShare() const noexcept { return knobShare_; }

private:
    double Bend(double value) const noexcept;

    double start_;
    double slope_;
    double knobShare_;
    ParameterCurve curve_;
    bool isInverted_;  // of the bent value; the line itself leads the other way otherwise
};

/// A parameter that a modulator or a MultiParameter moves.
struct MModulationTarget {
    static constexpr int kMaxTargets = 32;

    std::string id;                ///< the parameter's key, by which it is found again
    std::string name;              ///< what the user knows it by
    std::uint32_t identifier = 0;  ///< as it was when the target was chosen
    double value = 0;              ///< where the knob stood then, 0..1
    MTargetMotion motion;

    /// Reads or writes the attributes of `node`; bad ones become defaults. [main]
    void Store(MXMLNode node, const MArchive& archive);
    /// The same for a list, an element "Target" each. Reading takes the list as it is there, at
    /// most kMaxTargets of it. [main]
    static void StoreList(MXMLNode node, const MArchive& archive,
                          std::vector<MModulationTarget>& targets);
    /// Puts what is out of range to its nearest limit and what is no number to its default, and
    /// drops targets beyond the maximum. [any]
    static void Hold(std::vector<MModulationTarget>& targets);
};
