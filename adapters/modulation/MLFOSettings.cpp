// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MLFOSettings.h"

#include "adapters/modulation/MStoredField.h"
#include "core/MText.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace {

using MStoredField::kEnd;
using MStoredField::kMiddle;
using MStoredField::kStart;
using MStoredField::Range;

constexpr double kLongest = 60;  // seconds

constexpr Range Seconds(double fallback) { return {0, kLongest, fallback}; }

void StoreSeed(const MArchive& archive, MXMLNode node, std::uint32_t& seed) {
    constexpr double kLargest = std::numeric_limits<std::uint32_t>::max();
    double number = seed;
    MStoredField::Number(archive, node, "Seed", number, {0, kLargest, 0});
    seed = static_cast<std::uint32_t>(number);
}

}  // namespace

void MModulatorSettings::Store(MXMLNode node, const MArchive& archive) {
    MStoredField::Switch(archive, node, "Enabled", isEnabled, false);
    MStoredField::Choice(archive, node, "Source", source, {0, 3, 0});
    MStoredField::Choice(archive, node, "Restart", restart, {0, 2, 0});
    StoreSeed(archive, node, shape.seed);
    walk.seed = shape.seed;
    StoreOscillator(node, archive);
    StoreOthers(node, archive);
    MStoredField::Number(archive, node, "Depth", depth, kEnd);
    MStoredField::Number(archive, node, "Offset", offset, {-1, 1, 0});
    MStoredField::Switch(archive, node, "Invert", isInverted, false);
    MStoredField::Number(archive, node, "OutputSmoothing", smoothing, Seconds(0));
}

void MModulatorSettings::StoreOscillator(MXMLNode node, const MArchive& archive) {
    MStoredField::Choice(archive, node, "Shape", shape.shape, {0, kShapeNames.size() - 1, 0});
    MStoredField::Number(archive, node, "Width", shape.width, kMiddle);
    MStoredField::Integer(archive, node, "StepCount", shape.stepCount,
                          {1, MShapeSettings::kMaxSteps, 16});
    MStoredField::Number(archive, node, "Smoothing", shape.smoothing, kStart);
    StoreSteps(node, archive);
    MStoredField::Number(archive, node, "Rate", rate, {0.01, 50, 1});
    MStoredField::Switch(archive, node, "Synchronized", isSynchronised, false);
    MStoredField::Integer(archive, node, "SyncLength", syncLength,
                          {0, MTempoSync::kLengthCount - 1, MTempoSync::kDefaultLength});
    MStoredField::Choice(archive, node, "SyncType", syncType, {0, MTempoSync::kTypeCount - 1, 0});
    MStoredField::Number(archive, node, "Phase", phase, kStart);
    MStoredField::Switch(archive, node, "OneShot", isOneShot, false);
}

// One attribute, the steps in use with blanks between them.
void MModulatorSettings::StoreSteps(MXMLNode node, const MArchive& archive) {
    constexpr const char* kKey = "Steps";
    if (archive.IsWriting()) {
        std::string text;
        for (int i = 0; i < shape.stepCount; ++i) {
            if (i > 0) text += ' ';
            text += MText::WriteNumber(kStart.Hold(shape.steps[i]));
        }
        node.SetAttribute(kKey, text);
        return;
    }
    const std::optional<std::string> text = node.Attribute(kKey);
    if (!text) return;
    std::string_view rest = *text;
    for (double& step : shape.steps) {
        const std::string_view word = rest.substr(0, rest.find(' '));
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
        step = kStart.Hold(MText::ReadNumber(word).value_or(0));
    }
}

void MModulatorSettings::StoreOthers(MXMLNode node, const MArchive& archive) {
    const auto number = [&](const char* key, double& value, const Range& range) {
        MStoredField::Number(archive, node, key, value, range);
    };
    MStoredField::Choice(archive, node, "FollowerInput", followerInput, {0, 1, 0});
    number("FollowerAttack", follower.attack, Seconds(MFollowerSettings().attack));
    number("FollowerRelease", follower.release, Seconds(MFollowerSettings().release));
    number("FollowerThreshold", follower.threshold, {-120, 24, MFollowerSettings().threshold});
    number("FollowerKnee", follower.knee, {0, 48, MFollowerSettings().knee});
    number("FollowerRange", follower.range, {0, 144, MFollowerSettings().range});
    number("Attack", envelope.attack, Seconds(MADSRSettings().attack));
    number("Decay", envelope.decay, Seconds(MADSRSettings().decay));
    number("Sustain", envelope.sustain, kMiddle);
    number("Release", envelope.release, Seconds(MADSRSettings().release));
    number("VelocityAmount", envelope.velocityAmount, kStart);
    number("WalkRate", walk.rate, {0.01, 50, 1});
    number("WalkSmoothness", walk.smoothness, kEnd);
}

void MLFOSettings::Store(MXMLNode node, const MArchive& archive) {
    modulator.Store(node, archive);
    MModulationTarget::StoreList(node, archive, targets);
}

// Writing holds every number and throws the rest away.
MLFOSettings MLFOSettings::Held() const {
    MLFOSettings held = *this;
    held.modulator.Store(MXMLNode(), MArchive(MArchive::Direction::Write));
    MModulationTarget::Hold(held.targets);
    return held;
}
