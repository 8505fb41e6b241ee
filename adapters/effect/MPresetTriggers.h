// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MParameterTable.h"
#include "plugin/parameters/MParameterListener.h"
#include "plugin/parameters/ParameterDefinition.h"
#include "plugin/presets/MPresetStepper.h"

#include <array>
#include <atomic>

/// Two switches that step through the presets: each time one goes from off to on, the list moves by
/// one place. Writes between two blocks count as well, however short.
class MPresetTriggers final : public MParameterListener {
public:
    /// `stepper` is borrowed; null for a plug-in without presets. [setup]
    explicit MPresetTriggers(MPresetStepper* stepper);

    /// [setup]
    void AddParameters(MParameterTable& table);

    void ParameterChanged(int index, std::uint32_t offset, double oldValue,
                          double newValue) noexcept override;
    /// Passes on what was triggered since the last call. [audio]
    void Run() noexcept;

private:
    MPresetStepper* const stepper_;
    std::array<ParameterDefinition, 2> records_;  // previous, next
    std::atomic<int> steps_{0};
};
