// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MModulationEngine.h"

#include "adapters/effect/MHostedEffect.h"
#include "core/MRelaxed.h"
#include "plugin/parameters/ParameterBase.h"

#include <algorithm>

namespace {

/// What a MultiParameter at `position` passes on.
double Passed(MMultiParameterMode mode, double position) noexcept {
    if (mode == MMultiParameterMode::Continuous) return position;
    return IsHigh(position) ? 1 : 0;
}

void Mark(const MModulationPlan::Slot& slot) noexcept {
    if (slot.effect != nullptr) slot.effect->Mark(slot.index);
}

}  // namespace

void MModulationEngine::Prepare(const MModulationPlan& plan, int sampleRate) noexcept {
    for (int i = 0; i < MModulationPlan::kModulators; ++i) {
        modulators_[i].Prepare(plan.modulators[i], sampleRate);
    }
    wasPlaying_ = false;
}

void MModulationEngine::Begin(const MModulationPlan& plan) noexcept {
    for (int i = 0; i < MModulationPlan::kModulators; ++i) {
        if (plan.runs[i] && !ran_[i]) modulators_[i].Restart(plan.modulators[i]);
    }
    ran_ = plan.runs;
    for (std::size_t i = 0; i < plan.slots.size(); ++i) {
        ParameterDefinition& record = *plan.slots[i].record;
        record.SetRedirect(true);
        const double value = MRelaxed::Load(record.secondary);
        states_[i] = {value, value, record.ToNormalised(value)};
    }
    straight_.Begin(plan.straight);
    for (int i = 0; i < MModulationPlan::kMultiParameters; ++i) {
        isHigh_[i] = multiParameters_.Records()[i].IsOn();
    }
}

void MModulationEngine::Release(const MModulationPlan& plan) noexcept {
    for (std::size_t i = 0; i < plan.slots.size(); ++i) {
        const MModulationPlan::Slot& slot = plan.slots[i];
        TakeKnob(slot, states_[i]);
        slot.record->SetRedirect(false);
        slot.record->TakeKnob();
        Mark(slot);
    }
    straight_.Release(plan.straight);
}

void MModulationEngine::Advance(const MModulationPlan& plan,
                                const MModulationPiece& piece) noexcept {
    const bool isPlaying = piece.transport->isPlaying;
    const bool hasStarted = isPlaying && !wasPlaying_;
    wasPlaying_ = isPlaying;
    for (int i = 0; i < MModulationPlan::kModulators; ++i) {
        if (!plan.runs[i]) continue;
        const MModulatorSettings& settings = plan.modulators[i];
        if (hasStarted) modulators_[i].HostStarted(settings);
        values_[i] = modulators_[i].Advance(settings, piece);
    }
    if (plan.firstPlainSlot > 0 || multiParameters_.IsAnyWritten()) {
        for (const int index : plan.order) DriveMultiParameter(plan, index);
    }
    Drive(plan, plan.firstPlainSlot, static_cast<int>(plan.slots.size()));
    straight_.Drive(plan.straight, values_);
}

void MModulationEngine::FollowMultiParameters(const MModulationPlan& plan) noexcept {
    if (!multiParameters_.IsAnyWritten()) return;
    for (const int index : plan.order) DriveMultiParameter(plan, index);
}

void MModulationEngine::DriveMultiParameter(const MModulationPlan& plan, int index) noexcept {
    const MModulationPlan::MultiParameter& own = plan.multiParameters[index];
    const ParameterDefinition& record = multiParameters_.Records()[index];
    const bool isDriven = own.slot >= 0;
    if (isDriven) Drive(plan, own.slot, own.slot + 1);
    bool acts = multiParameters_.IsAnyWritten() && multiParameters_.TakeEvent(index, own.mode);
    if (isDriven) {
        const double position = record.ToNormalised(record.Effective());
        values_[MModulationPlan::kModulators + index] = Passed(own.mode, position);
        const bool rises = IsHigh(position) && !isHigh_[index];
        isHigh_[index] = IsHigh(position);
        if (own.mode == MMultiParameterMode::Momentary) acts = rises;
    }
    if (!acts) return;
    const bool isMomentary = own.mode == MMultiParameterMode::Momentary;
    Write(own, isMomentary ? 1 : Passed(own.mode, record.ToNormalised(record.Value())));
}

void MModulationEngine::Write(const MModulationPlan::MultiParameter& multiParameter,
                              double value) noexcept {
    for (const MModulationPlan::Write& write : multiParameter.writes) {
        write.parameter->SetNormalised(0, write.line.Position(value, 0), false);
    }
    knobsMoved_.store(true, std::memory_order_relaxed);
}

// As MStraightDriver does.
inline double MModulationEngine::TakeKnob(const MModulationPlan::Slot& slot,
                                          State& state) noexcept {
    const bool isWritten = slot.record->TakeKnob();
    const double found = MRelaxed::Load(slot.record->secondary);
    if (found != state.written) {
        if (!isWritten) MRelaxed::Store(slot.record->value, found);
        state.written = found;
    }
    if (!slot.usesKnob) return 0;
    const double value = MRelaxed::Load(slot.record->value);
    if (value != state.knobValue) {
        state.knobValue = value;
        state.knob = slot.record->ToNormalised(value);
    }
    return state.knob;
}

inline double MModulationEngine::Combine(const MModulationPlan& plan,
                                         const MModulationPlan::Slot& slot,
                                         double knob) const noexcept {
    const MModulationPlan::Link* const links = plan.links.data() + slot.firstLink;
    double position = links[0].line.Position(values_[links[0].source], knob);
    for (int i = 1; i < slot.linkCount; ++i) {
        position += links[i].line.Position(values_[links[i].source], knob) - knob;
    }
    return std::clamp(position, 0.0, 1.0);
}

void MModulationEngine::Drive(const MModulationPlan& plan, int firstSlot, int endSlot) noexcept {
    for (int i = firstSlot; i < endSlot; ++i) {
        const MModulationPlan::Slot& slot = plan.slots[i];
        State& state = states_[i];
        const double knob = TakeKnob(slot, state);
        const double position = Combine(plan, slot, knob);
        const double plain = slot.record->FromNormalised(position);
        if (plain == state.written) continue;
        state.written = plain;
        if (slot.parameter != nullptr) {
            slot.parameter->SetNormalised(0, position, false);
            slot.record->ForgetKnob(plain);
        } else {
            MRelaxed::Store(slot.record->secondary, plain);
            Mark(slot);
        }
    }
}

void MModulationEngine::NoteOn(const MModulationPlan& plan, double velocity) noexcept {
    for (int i = 0; i < MModulationPlan::kModulators; ++i) {
        if (plan.runs[i]) modulators_[i].NoteOn(plan.modulators[i], velocity);
    }
}

void MModulationEngine::NoteOff() noexcept {
    for (MLFO& modulator : modulators_) modulator.NoteOff();
}
