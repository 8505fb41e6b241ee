// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MModulationCompiler.h"

#include "adapters/effect/MHostedEffect.h"
#include "core/MException.h"
#include "core/MFormat.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace {

constexpr int kMultiParameters = MModulationPlan::kMultiParameters;

/// Which MultiParameters move which: [mover][moved].
using Moves = std::array<std::array<bool, kMultiParameters>, kMultiParameters>;

/// MultiParameters one after the other, none twice.
struct Way {
    std::array<int, kMultiParameters> stops{};
    int count = 0;

    bool Has(int stop) const {
        return std::find(stops.begin(), stops.begin() + count, stop) != stops.begin() + count;
    }
    /// Goes on over `from` to `to`, both included; whether there is a way.
    bool Reach(const Moves& moves, int from, int to) {
        stops[count++] = from;
        if (from == to) return true;
        for (int next = 0; next < kMultiParameters; ++next) {
            if (moves[from][next] && !Has(next) && Reach(moves, next, to)) return true;
        }
        --count;
        return false;
    }
};

std::string NameOf(int multiParameter) { return MFormat("MultiParameter {0}", multiParameter + 1); }

void RefuseCycles(const Moves& moves) {
    for (int first = 0; first < kMultiParameters; ++first) {
        for (int next = 0; next < kMultiParameters; ++next) {
            Way way;
            if (!moves[first][next] || !way.Reach(moves, next, first)) continue;
            std::string text = NameOf(first);
            for (int i = 0; i < way.count; ++i) text += " -> " + NameOf(way.stops[i]);
            throw MException(MFormat("{0} would move itself: {1}.", NameOf(first), text));
        }
    }
}

}  // namespace

MModulationCompiler::MModulationCompiler(const MParameterDirectory& parameters, Effects effects,
                                         Records multiParameters)
    : effects_(effects), multiParameters_(multiParameters) {
    for (int i = 0; i < parameters.Count(); ++i) {
        if (parameters.At(i).Record() == nullptr) continue;
        byId_.emplace(parameters.At(i).GetID(), &parameters.At(i));
    }
}

ParameterMainBase* MModulationCompiler::Find(const MModulationTarget& target) const {
    const auto found = byId_.find(target.id);
    return found != byId_.end() ? found->second : nullptr;
}

ParameterMainBase* MModulationCompiler::Resolve(const MModulationTarget& target) {
    ParameterMainBase* const parameter = Find(target);
    if (parameter == nullptr) unknown_.insert(target.id);
    return parameter;
}

int MModulationCompiler::MultiParameterOf(ParameterMainBase& parameter) const {
    for (int i = 0; i < kMultiParameters; ++i) {
        if (parameter.Record() == &multiParameters_[i]) return i;
    }
    return -1;
}

MModulationPlan MModulationCompiler::Compile(const MModulationSettings& settings) {
    unknown_.clear();
    links_.clear();
    MModulationPlan plan;
    AddWrites(settings, plan);
    Sort(plan);
    AddLinks(settings, plan);
    // MultiParameters first, movers before moved: each is a source for what comes after it.
    for (const int multiParameter : plan.order) {
        for (const Linked& linked : links_) {
            if (MultiParameterOf(*linked.parameter) != multiParameter) continue;
            plan.multiParameters[multiParameter].slot = static_cast<int>(plan.slots.size());
            AddSlot(linked, plan);
        }
    }
    plan.firstPlainSlot = static_cast<int>(plan.slots.size());
    for (const Linked& linked : links_) {
        if (MultiParameterOf(*linked.parameter) < 0) AddSlot(linked, plan);
    }
    return plan;
}

void MModulationCompiler::AddWrites(const MModulationSettings& settings, MModulationPlan& plan) {
    for (int i = 0; i < kMultiParameters; ++i) {
        plan.multiParameters[i].mode = settings.multiParameters[i].mode;
        for (const MModulationTarget& target : settings.multiParameters[i].targets) {
            ParameterMainBase* const parameter = Resolve(target);
            if (parameter == nullptr) continue;
            plan.multiParameters[i].writes.push_back(
                {parameter, target.motion, MMotionLine(target.motion)});
        }
    }
}

void MModulationCompiler::Sort(MModulationPlan& plan) const {
    Moves moves{};
    for (int i = 0; i < kMultiParameters; ++i) {
        for (const MModulationPlan::Write& write : plan.multiParameters[i].writes) {
            const int moved = MultiParameterOf(*write.parameter);
            if (moved >= 0) moves[i][moved] = true;
        }
    }
    RefuseCycles(moves);
    const auto depth = [&](int moved) {  // how many others stand above it
        int count = 0;
        for (int i = 0; i < kMultiParameters; ++i) count += Way().Reach(moves, i, moved) ? 1 : 0;
        return count;
    };
    std::sort(plan.order.begin(), plan.order.end(),
              [&](int a, int b) { return std::pair(depth(a), a) < std::pair(depth(b), b); });
}

// A MultiParameter is a source only where a modulator acts on it; otherwise it writes knobs.
void MModulationCompiler::AddLinks(const MModulationSettings& settings, MModulationPlan& plan) {
    const auto add = [&](ParameterMainBase* parameter, int source, const MTargetMotion& motion) {
        const auto place = std::find_if(links_.begin(), links_.end(), [&](const auto& entry) {
            return entry.parameter == parameter;
        });
        if (place == links_.end()) {
            links_.push_back({parameter, motion.UsesKnob(), {{source, MMotionLine(motion)}}});
        } else {
            place->usesKnob = true;
            place->links.push_back({source, MMotionLine(motion)});
        }
    };
    for (int i = 0; i < MModulationPlan::kModulators; ++i) {
        plan.modulators[i] = settings.modulators[i].modulator;
        for (const MModulationTarget& target : settings.modulators[i].targets) {
            ParameterMainBase* const parameter = Resolve(target);
            if (parameter == nullptr || !plan.modulators[i].isEnabled) continue;
            plan.runs[i] = true;
            add(parameter, i, target.motion);
        }
    }
    for (const int i : plan.order) {
        const auto isDriven = [&](const auto& entry) {
            return MultiParameterOf(*entry.parameter) == i;
        };
        const bool isSource = plan.multiParameters[i].mode != MMultiParameterMode::Momentary &&
                              std::any_of(links_.begin(), links_.end(), isDriven);
        if (!isSource) continue;
        for (const MModulationPlan::Write& write : plan.multiParameters[i].writes) {
            add(write.parameter, MModulationPlan::kModulators + i, write.motion);
        }
    }
}

void MModulationCompiler::AddSlot(const Linked& linked, MModulationPlan& plan) const {
    MModulationPlan::Slot slot;
    slot.record = linked.parameter->Record();
    if (slot.record == nullptr) return;
    ParameterDefinition& record = *slot.record;
    slot.firstLink = static_cast<int>(plan.links.size());
    slot.linkCount = static_cast<int>(linked.links.size());
    slot.usesKnob = linked.usesKnob;
    bool isOfEffect = false;
    for (const auto& effect : effects_) {
        const std::span<ParameterDefinition> records = effect->Records();
        const std::less<> isBefore;  // holds for pointers into different arrays as well
        if (isBefore(&record, records.data()) ||
            !isBefore(&record, records.data() + records.size())) {
            continue;
        }
        isOfEffect = true;
        slot.index = static_cast<int>(&record - records.data());
        const bool needsUpdate = (record.Flags() & ParameterDefinition::kUpdateRequired) != 0;
        if (needsUpdate) slot.effect = effect.get();
    }
    // Switches of the plug-in's own act when they are written.
    const bool tells = !isOfEffect && record.kind == ParameterKind::Bool;
    if (tells) slot.parameter = linked.parameter;
    const bool isWatched = slot.parameter != nullptr || slot.effect != nullptr ||
                           MultiParameterOf(*linked.parameter) >= 0;
    if (!isWatched && linked.links.size() == 1 && linked.links[0].line.IsStraight() &&
        MStraightTargets::Suits(record)) {
        plan.straight.Add(record, linked.links[0].source, linked.links[0].line);
        return;
    }
    plan.links.insert(plan.links.end(), linked.links.begin(), linked.links.end());
    plan.slots.push_back(slot);
}
