// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MStraightDriver.h"

#include "core/MRelaxed.h"

#include <bit>
#include <cstdint>

namespace {

/// Whether two numbers are the same to the last bit: a single comparison, and one that holds for
/// what is no number.
bool IsSame(double a, double b) noexcept {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace

void MStraightDriver::Begin(const MStraightTargets& targets) noexcept {
    for (std::size_t i = 0; i < targets.Targets().size(); ++i) {
        const MStraightTargets::Target& target = targets.Targets()[i];
        target.record->SetRedirect(true);
        const double knob = MRelaxed::Load(target.record->secondary);
        written_[i] = knob;
        knobs_[i] = knob;
        feet_[i] = target.Foot(knob);
    }
}

void MStraightDriver::Release(const MStraightTargets& targets) noexcept {
    for (std::size_t i = 0; i < targets.Targets().size(); ++i) {
        TakeKnob(targets.Targets()[i], i);
        targets.Targets()[i].record->SetRedirect(false);
    }
}

// What others write to a modulated parameter lands in its secondary value, and is the knob's. A
// write that another thread makes between this look and the next store is lost; a fader that moves
// sends the next one. An exchange would close the gap at the price of the whole modulation.
void MStraightDriver::TakeKnob(const MStraightTargets::Target& target, std::size_t index) noexcept {
    const double found = MRelaxed::Load(target.record->secondary);
    if (!IsSame(found, written_[index])) {
        target.record->SetValue(found);
        written_[index] = found;
    }
    knobs_[index] = target.record->Value();
    feet_[index] = target.Foot(knobs_[index]);
}

void MStraightDriver::Drive(const MStraightTargets& targets, const double* sources) noexcept {
    const MStraightTargets::Target* const all = targets.Targets().data();
    const std::size_t count = targets.Targets().size();
    for (std::size_t i = 0; i < count; ++i) {
        const ParameterDefinition& record = *all[i].record;
        const bool isUntouched = IsSame(MRelaxed::Load(record.secondary), written_[i]) &&
                                 IsSame(MRelaxed::Load(record.value), knobs_[i]);
        if (!isUntouched) TakeKnob(all[i], i);
    }
    kernels_.follow(targets.Ways(feet_.data()), sources, values_.data(), targets.PaddedCount());
    for (std::size_t i = 0; i < count; ++i) {
        if (IsSame(values_[i], written_[i])) continue;
        written_[i] = values_[i];
        MRelaxed::Store(all[i].record->secondary, values_[i]);
    }
}
