// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MParameterTable.h"
#include "adapters/modulation/MModulationPlan.h"
#include "plugin/parameters/MParameterListener.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <span>

/// The parameters of the MultiParameters and what has been written to them since the last block,
/// however short it stood.
class MMultiParameters final : public MParameterListener {
public:
    static constexpr int kCount = MModulationPlan::kMultiParameters;

    MMultiParameters();

    /// [setup]
    void AddParameters(MParameterTable& table);
    std::span<ParameterDefinition, kCount> Records() noexcept { return records_; }

    void ParameterChanged(int index, std::uint32_t offset, double oldValue,
                          double newValue) noexcept override;

    /// Whether any was written since it was last taken. [audio]
    bool IsAnyWritten() const noexcept { return events_.load(std::memory_order_relaxed) != 0; }
    /// Whether that which MultiParameter `index` waits for in `mode` has happened since the last
    /// call. [audio]
    bool TakeEvent(int index, MMultiParameterMode mode) noexcept;

private:
    std::array<ParameterDefinition, kCount> records_;
    std::atomic<std::uint32_t> events_{0};
};
