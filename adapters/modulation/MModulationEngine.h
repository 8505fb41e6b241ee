// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MLFO.h"
#include "adapters/modulation/MModulationPlan.h"
#include "adapters/modulation/MMultiParameters.h"
#include "adapters/modulation/MStraightDriver.h"

#include <array>
#include <atomic>

/// Runs a plan: modulators forward, their values combined into the secondary values of parameters,
/// MultiParameters into knobs. Of the audio thread; it allocates nothing.
///
/// Several sources on one parameter add up: each one's distance from the knob, and the sum, held
/// within the range, is in force. So one alone has the position that it asks for, and the order
/// does not matter. What others write to a parameter meanwhile lands in its secondary value too;
/// it is found there and becomes the knob's.
class MModulationEngine {
public:
    /// `multiParameters` is borrowed. [setup]
    explicit MModulationEngine(MMultiParameters& multiParameters) noexcept
        : multiParameters_(multiParameters) {}

    /// Lets everything begin anew at `sampleRate` hertz. [setup]
    void Prepare(const MModulationPlan& plan, int sampleRate) noexcept;

    /// Gives the plan's parameters back to their knobs. [audio]
    void Release(const MModulationPlan& plan) noexcept;
    /// Takes the plan's parameters over, from where their knobs stand. [audio]
    void Begin(const MModulationPlan& plan) noexcept;
    /// Goes on by `piece`: every parameter has what it is to have at its end. [audio]
    void Advance(const MModulationPlan& plan, const MModulationPiece& piece) noexcept;
    /// Lets MultiParameters that were written move their targets, which Advance does as well.
    /// [audio]
    void FollowMultiParameters(const MModulationPlan& plan) noexcept;

    /// [audio]
    void NoteOn(const MModulationPlan& plan, double velocity) noexcept;
    void NoteOff() noexcept;

    /// Whether MultiParameters have moved knobs since the last call. [any]
    bool TakeKnobsMoved() noexcept { return knobsMoved_.exchange(false); }

private:
    /// What was last done to a slot's parameter.
    struct State {
        double written = 0;  // its secondary value
        double knobValue = 0;
        double knob = 0;  // position of knobValue
    };

    double TakeKnob(const MModulationPlan::Slot& slot, State& state) noexcept;
    void Drive(const MModulationPlan& plan, int firstSlot, int endSlot) noexcept;
    void DriveMultiParameter(const MModulationPlan& plan, int index) noexcept;
    void Write(const MModulationPlan::MultiParameter& multiParameter, double value) noexcept;
    double Combine(const MModulationPlan& plan, const MModulationPlan::Slot& slot,
                   double knob) const noexcept;

    MMultiParameters& multiParameters_;
    std::array<MLFO, MModulationPlan::kModulators> modulators_;
    std::array<bool, MModulationPlan::kModulators> ran_{};
    MStraightDriver::Sources values_{};  // 0..1
    std::array<bool, MModulationPlan::kMultiParameters> isHigh_{};
    std::array<State, MModulationPlan::kMaxSlots> states_{};
    MStraightDriver straight_;
    bool wasPlaying_ = false;
    std::atomic<bool> knobsMoved_{false};
};
