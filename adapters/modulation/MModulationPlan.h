// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MLFOSettings.h"
#include "adapters/modulation/MMultiParameterSettings.h"
#include "adapters/modulation/MStraightTargets.h"

#include <array>
#include <vector>

class MHostedEffect;
class ParameterMainBase;

/// What the audio thread needs to know to move parameters, all names resolved. Made as a whole on
/// another thread; its memory comes and goes there.
struct MModulationPlan {
    static constexpr int kModulators = 4;
    static constexpr int kMultiParameters = 4;
    static constexpr int kSources = kModulators + kMultiParameters;  ///< the modulators come first
    static constexpr int kMaxSlots = kSources * MModulationTarget::kMaxTargets;

    /// What one source does to one parameter.
    struct Link {
        int source;
        MMotionLine line;
    };

    /// A parameter that something acts on through its secondary value, in whatever way.
    struct Slot {
        ParameterDefinition* record = nullptr;
        ParameterMainBase* parameter = nullptr;  ///< null: nobody listens for its writes
        MHostedEffect* effect = nullptr;         ///< to be marked; null: nobody needs to be
        int index = 0;                           ///< of the record within the effect
        bool usesKnob = false;                   ///< whether the outcome depends on the knob
        int firstLink = 0;
        int linkCount = 0;
    };

    /// A parameter that a MultiParameter writes as a host would.
    struct Write {
        ParameterMainBase* parameter = nullptr;
        MTargetMotion motion;  ///< for where the MultiParameter is a source instead
        MMotionLine line{motion};
    };

    struct MultiParameter {
        MMultiParameterMode mode = MMultiParameterMode::Continuous;
        std::vector<Write> writes;
        int slot = -1;  ///< of its own record; -1 while no modulator acts on it
    };

    /// Whether modulators act on anything at all.
    bool IsActive() const noexcept { return !slots.empty() || !straight.Targets().empty(); }

    std::array<MModulatorSettings, kModulators> modulators;
    std::array<bool, kModulators> runs{};  ///< modulators that are on and have targets
    std::array<MultiParameter, kMultiParameters> multiParameters;
    /// MultiParameters from those that move others to those that are moved.
    std::array<int, kMultiParameters> order{0, 1, 2, 3};
    std::vector<Slot> slots;    ///< those of MultiParameters first
    int firstPlainSlot = 0;     ///< behind those; 0 while modulators move no MultiParameter
    std::vector<Link> links;    ///< by slot
    MStraightTargets straight;  ///< those that need no slot
};
