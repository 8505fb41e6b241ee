// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MModulationTarget.h"

#include "adapters/modulation/MStoredField.h"

#include <limits>

namespace {

using MStoredField::kEnd;
using MStoredField::kMiddle;
using MStoredField::kStart;

}  // namespace

MMotionLine::MMotionLine(const MTargetMotion& motion) noexcept
    : start_(0),
      slope_(motion.depth),
      knobShare_(motion.UsesKnob() ? 1 : 0),
      curve_(motion.curve),
      isInverted_(motion.isInverted && motion.curve != ParameterCurve::None) {
    switch (motion.mode) {
        case MTargetMode::CentreAndDepth:
            start_ = (motion.followsKnob ? 0 : motion.centre) - 0.5 * motion.depth;
            break;
        case MTargetMode::Up:
            break;
        case MTargetMode::Down:
            slope_ = -motion.depth;
            break;
        case MTargetMode::Range:
            start_ = motion.minimum;
            slope_ = motion.maximum - motion.minimum;
            break;
    }
    if (!motion.isInverted || isInverted_) return;
    start_ += slope_;
    slope_ = -slope_;
}

double MMotionLine::Bend(double value) const noexcept {
    const double x = isInverted_ ? 1 - value : value;
    return curve_ == ParameterCurve::Sqr ? x * x : (x * x) * (x * x);
}

void MModulationTarget::Store(MXMLNode node, const MArchive& archive) {
    archive.Text(node, "ID", id);
    archive.Text(node, "Name", name);
    int number = static_cast<int>(identifier);
    MStoredField::Integer(archive, node, "Identifier", number,
                          {0, std::numeric_limits<int>::max(), 0});
    identifier = static_cast<std::uint32_t>(number);
    MStoredField::Number(archive, node, "Value", value, kStart);
    MStoredField::Choice(archive, node, "Mode", motion.mode, {1, 4, 1});
    MStoredField::Switch(archive, node, "FollowsKnob", motion.followsKnob, true);
    MStoredField::Switch(archive, node, "Invert", motion.isInverted, false);
    MStoredField::Number(archive, node, "Centre", motion.centre, kMiddle);
    MStoredField::Number(archive, node, "Depth", motion.depth, kMiddle);
    MStoredField::Number(archive, node, "Min", motion.minimum, kStart);
    MStoredField::Number(archive, node, "Max", motion.maximum, kEnd);
    MStoredField::Choice(archive, node, "Curve", motion.curve, {0, 2, 0});
}

void MModulationTarget::StoreList(MXMLNode node, const MArchive& archive,
                                  std::vector<MModulationTarget>& targets) {
    constexpr const char* kElement = "Target";
    if (archive.IsWriting()) {
        for (MModulationTarget& target : targets) target.Store(node.AddChild(kElement), archive);
        return;
    }
    if (!node) return;
    targets.clear();
    for (const MXMLNode& child : node.Children()) {
        if (child.Name() != kElement || targets.size() == kMaxTargets) continue;
        targets.emplace_back().Store(child, archive);
    }
}

void MModulationTarget::Hold(std::vector<MModulationTarget>& targets) {
    if (targets.size() > kMaxTargets) targets.resize(kMaxTargets);
    for (MModulationTarget& target : targets) {
        MTargetMotion& motion = target.motion;
        target.value = kStart.Hold(target.value);
        motion.centre = kMiddle.Hold(motion.centre);
        motion.depth = kMiddle.Hold(motion.depth);
        motion.minimum = kStart.Hold(motion.minimum);
        motion.maximum = kEnd.Hold(motion.maximum);
    }
}
