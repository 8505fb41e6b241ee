// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MModulationPlan.h"
#include "dsp/kernels/MKernelSet.h"

#include <array>

/// Moves the straight targets of a plan, all at once. Of the audio thread; it allocates nothing.
class MStraightDriver {
public:
    using Sources = std::array<double, MModulationPlan::kSources>;

    /// Takes the targets over, from where their knobs stand. [audio]
    void Begin(const MStraightTargets& targets) noexcept;
    /// Gives them back to their knobs. [audio]
    void Release(const MStraightTargets& targets) noexcept;
    /// Puts every target where `sources` want it. [audio]
    void Drive(const MStraightTargets& targets, const Sources& sources) noexcept;

private:
    static constexpr std::size_t kRoom = MModulationPlan::kMaxSlots;
    using Numbers = std::array<double, kRoom>;

    bool TakeKnobs(const MStraightTargets& targets) noexcept;
    void TakeKnob(const MStraightTargets::Target& target, std::size_t index) noexcept;

    const MControlKernels& kernels_ = *Kernels().controls;
    alignas(64) Numbers written_{};  // what Drive makes their secondary values
    Numbers knobs_{};                // their own values, as last seen
    Numbers feet_{};
    Sources sources_{};
};
