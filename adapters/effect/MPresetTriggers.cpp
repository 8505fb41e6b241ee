// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MPresetTriggers.h"

MPresetTriggers::MPresetTriggers(MPresetStepper* stepper) : stepper_(stepper) {
    records_[0].DefineBool("PresetTriggerPrevious", "Preset trigger - previous", false);
    records_[1].DefineBool("PresetTriggerNext", "Preset trigger - next", false);
}

void MPresetTriggers::AddParameters(MParameterTable& table) {
    table.Add(records_[0], "Preset previous", records_[0].name, this, 0);
    table.Add(records_[1], "Preset next", records_[1].name, this, 1);
}

void MPresetTriggers::ParameterChanged(int index, std::uint32_t /*offset*/, double oldValue,
                                       double newValue) noexcept {
    if (oldValue >= 0.5 || newValue < 0.5) return;
    steps_.fetch_add(index == 0 ? -1 : 1, std::memory_order_relaxed);
}

void MPresetTriggers::Run() noexcept {
    if (steps_.load(std::memory_order_relaxed) == 0) return;
    const int steps = steps_.exchange(0, std::memory_order_relaxed);
    if (stepper_ != nullptr && steps != 0) stepper_->PostStep(steps);
}
