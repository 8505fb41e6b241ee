// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MPresetTriggers.h"

#include "plugin/MAudioPlugin.h"

namespace {

constexpr unsigned Bit(int index) { return 1U << index; }

/// Takes all bits. Any thread may set some, but seldom, so most blocks only look.
unsigned Take(std::atomic<unsigned>& bits) noexcept {
    return bits.load(std::memory_order_relaxed) != 0 ? bits.exchange(0) : 0;
}

}  // namespace

MPresetTriggers::MPresetTriggers(MPresetStepper* stepper) : stepper_(stepper) {
    records_[0].DefineBool("PresetTriggerPrevious", "Preset trigger - previous", false);
    records_[1].DefineBool("PresetTriggerNext", "Preset trigger - next", false);
}

void MPresetTriggers::AddParameters(MParameterTable& table) {
    constexpr const char* kIds[kCount] = {"Preset previous", "Preset next"};
    for (int i = 0; i < kCount; ++i) {
        identifiers_[i] =
            table.Add(records_[i], kIds[i], records_[i].name, this, i).FirstIdentifier();
    }
}

void MPresetTriggers::ParameterChanged(int index, std::uint32_t /*offset*/, double oldValue,
                                       double newValue) noexcept {
    if (newValue < 0.5) return;
    const bool isInBlock = isInBlock_.load(std::memory_order_relaxed);
    if (oldValue < 0.5) (isInBlock ? pressedInBlock_ : pressed_).fetch_or(Bit(index));
    // A modulator takes its target back by itself.
    if (records_[index].IsRedirected()) return;
    records_[index].SetValue(0);
    released_.fetch_or(Bit(index));
}

void MPresetTriggers::Run(int sampleCount) noexcept {
    const bool startsOver = startsOver_.load(std::memory_order_relaxed) &&
                            startsOver_.exchange(false, std::memory_order_relaxed);
    if (startsOver) mayAct_ = mightAct_ = {};
    const unsigned pressed = Take(pressed_), pressedInBlock = Take(pressedInBlock_);
    int steps = 0;
    for (int i = 0; i < kCount; ++i) {
        const bool isPressed = (pressed & Bit(i)) != 0;
        const bool isPressedInBlock = (pressedInBlock & Bit(i)) != 0;
        if ((isPressed && mayAct_[i]) || (isPressedInBlock && mightAct_[i])) {
            steps += i == 0 ? -1 : 1;
        }
        mightAct_[i] = mayAct_[i] && !isPressed && !isPressedInBlock;
        mayAct_[i] = mightAct_[i];
        const bool isPause = !isPressed && !isPressedInBlock && sampleCount > 0;
        if (isPause && !mayAct_[i]) mayAct_[i] = !records_[i].IsOn();  // until the next press
    }
    if (stepper_ != nullptr && steps != 0) stepper_->PostStep(steps);
}

void MPresetTriggers::ReportReleased(MAudioPlugin& plugin) {
    const unsigned released = Take(released_);
    for (int i = 0; i < kCount; ++i) {
        if ((released & Bit(i)) != 0) plugin.SendHostAutomation(identifiers_[i], 0);
    }
}
