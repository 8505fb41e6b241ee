// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MModulationReader.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "tools/render/MModulationSource.h"
#include "tools/render/MRenderFailure.h"

#include <algorithm>

namespace {

constexpr const char* kExample =
    "\"sine 0.5 Hz -> Band limit 1: 200 Hz .. 800 Hz; Feedback: +-20%\"";

/// The part of the way that "+-20%" means; empty for anything else.
std::optional<MTargetMotion> ReadSwing(std::string_view text) {
    MTargetMotion motion;
    if (text.starts_with("+-")) {
        text.remove_prefix(2);
    } else if (text.starts_with("+")) {
        motion.mode = MTargetMode::Up;
        text.remove_prefix(1);
    } else if (text.starts_with("-")) {
        motion.mode = MTargetMode::Down;
        text.remove_prefix(1);
    } else {
        return std::nullopt;
    }
    const auto number = MText::ReadLeadingNumber(text);
    if (!number || number->rest != "%") return std::nullopt;
    const bool isBoth = motion.mode == MTargetMode::CentreAndDepth;
    motion.depth = number->value * 0.01 * (isBoth ? 2 : 1);
    if (!(motion.depth >= 0 && motion.depth <= 1)) {
        FailUsage(MFormat("a swing is {0}", isBoth ? "+-0% to +-50%" : "0% to 100%"));
    }
    return motion;
}

}  // namespace

void MModulationReader::Read(std::string_view text, MLFOSettings& settings) const {
    const std::size_t arrow = text.find("->");
    if (arrow == std::string_view::npos) {
        FailUsage(MFormat("\"{0}\" is no modulation; write it as {1}", text, kExample));
    }
    MReadModulationSource(MText::Trim(text.substr(0, arrow)), settings.modulator);
    settings.modulator.isEnabled = true;
    settings.targets.clear();
    std::string_view rest = text.substr(arrow + 2);
    while (!MText::Trim(rest).empty()) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        ReadTarget(MText::Trim(rest.substr(0, end)), settings.targets);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    if (settings.targets.empty()) {
        FailUsage(MFormat("\"{0}\" moves nothing; write it as {1}", text, kExample));
    }
    if (settings.targets.size() > MModulationTarget::kMaxTargets) {
        FailUsage(MFormat("\"{0}\" moves {1} parameters; a modulator moves up to {2}", text,
                          settings.targets.size(), MModulationTarget::kMaxTargets));
    }
}

void MModulationReader::ReadTarget(std::string_view text,
                                   std::vector<MModulationTarget>& targets) const {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        FailUsage(MFormat("\"{0}\" does not say how far; write it as \"Feedback: +-20%\"", text));
    }
    const std::string_view way = MText::Trim(text.substr(colon + 1));
    const std::size_t dots = way.find("..");
    const MParameterList& list = reader_.List();
    for (const int parameter : list.Find(text.substr(0, colon))) {
        MModulationTarget target;
        target.id = list[parameter].key;
        target.name = list[parameter].name;
        if (dots != std::string_view::npos) {
            target.motion = ReadRange(parameter, MText::Trim(way.substr(0, dots)),
                                      MText::Trim(way.substr(dots + 2)));
        } else if (const auto swing = ReadSwing(way)) {
            target.motion = *swing;
        } else {
            FailUsage(
                MFormat("{0} does not move by \"{1}\"; write a range such as \"{2} .. {3}\", or a "
                        "part of it such as \"+-20%\", \"+20%\" or \"-20%\"",
                        list[parameter].name, way,
                        list.Record(parameter).DisplayText(list.Record(parameter).minimum),
                        list.Record(parameter).DisplayText(list.Record(parameter).maximum)));
        }
        targets.push_back(target);
    }
}

MTargetMotion MModulationReader::ReadRange(int parameter, std::string_view from,
                                           std::string_view to) const {
    MTargetMotion motion;
    motion.mode = MTargetMode::Range;
    motion.minimum = ReadPosition(parameter, from);
    motion.maximum = ReadPosition(parameter, to);
    return motion;
}

double MModulationReader::ReadPosition(int parameter, std::string_view text) const {
    const std::vector<int> one = {parameter};
    const std::vector<MRenderWrite> writes = reader_.ReadText(one, std::string(text));
    if (writes.size() != 1 || writes.front().parameter != parameter) {
        FailUsage(MFormat("{0} does not move to \"{1}\"", reader_.List()[parameter].name, text));
    }
    return reader_.List().Record(parameter).ToNormalised(writes.front().value);
}
