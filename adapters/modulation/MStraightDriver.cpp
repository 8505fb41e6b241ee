// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MStraightDriver.h"

#include "core/MRelaxed.h"

#include <bit>
#include <cstdint>

namespace {

/// The bits in which two numbers differ; for what is no number as well.
std::uint64_t Difference(double a, double b) noexcept {
    return std::bit_cast<std::uint64_t>(a) ^ std::bit_cast<std::uint64_t>(b);
}

}  // namespace

void MStraightDriver::Begin(const MStraightTargets& targets) noexcept {
    for (std::size_t i = 0; i < targets.Targets().size(); ++i) {
        const MStraightTargets::Target& target = targets.Targets()[i];
        target.record->SetRedirect(true);
        const double knob = MRelaxed::Load(target.record->secondary);
        knobs_[i] = knob;
        feet_[i] = target.Foot(knob);
    }
    sources_.fill(-1);  // which no source ever is
}

void MStraightDriver::Release(const MStraightTargets& targets) noexcept {
    for (std::size_t i = 0; i < targets.Targets().size(); ++i) {
        TakeKnob(targets.Targets()[i], i);
        targets.Targets()[i].record->SetRedirect(false);
        targets.Targets()[i].record->TakeKnob();
    }
}

// What others write to a modulated parameter is the knob's.
void MStraightDriver::TakeKnob(const MStraightTargets::Target& target, std::size_t index) noexcept {
    target.record->TakeKnob();
    knobs_[index] = target.record->Value();
    feet_[index] = target.Foot(knobs_[index]);
}

bool MStraightDriver::TakeKnobs(const MStraightTargets& targets) noexcept {
    std::uint64_t differences = 0;
    for (std::size_t i = 0; i < targets.Targets().size(); ++i) {
        const ParameterDefinition& record = *targets.Targets()[i].record;
        differences |= Difference(MRelaxed::Load(record.value), knobs_[i]);
        differences |= Difference(MRelaxed::Load(record.written), ParameterDefinition::kNothing);
    }
    if (differences == 0) return false;
    for (std::size_t i = 0; i < targets.Targets().size(); ++i) TakeKnob(targets.Targets()[i], i);
    return true;
}

void MStraightDriver::Drive(const MStraightTargets& targets, const Sources& sources) noexcept {
    const bool isTouched = TakeKnobs(targets);
    // Nothing is written while nothing moves: others find their writes undisturbed.
    if (!isTouched && sources == sources_) return;
    sources_ = sources;
    kernels_.follow(targets.Ways(feet_.data()), sources.data(), written_.data(),
                    targets.PaddedCount());
    for (std::size_t i = 0; i < targets.Targets().size(); ++i) {
        MRelaxed::Store(targets.Targets()[i].record->secondary, written_[i]);
    }
}
