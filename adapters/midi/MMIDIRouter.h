// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MControllerFollower.h"
#include "adapters/midi/MControllerPairs.h"
#include "adapters/midi/MHeldNotes.h"
#include "adapters/midi/MMIDIListener.h"
#include "adapters/midi/MMIDIMessage.h"
#include "adapters/midi/MMIDIRouting.h"

#include <array>
#include <atomic>
#include <cstdint>

class MAudioPlugin;
class MPresetStepper;

/// What MIDI messages do: controllers and notes move parameters, one controller steps through the
/// presets, programs choose them, and notes go on to a listener. [audio] but for what says
/// otherwise.
class MMIDIRouter {
public:
    static constexpr int kFirstNoteBit = MMIDISettings::kAssignments;

    /// Both outlive this; `presets` may be null. [setup]
    MMIDIRouter(MAudioPlugin& plugin, MPresetStepper* presets) noexcept
        : plugin_(plugin), presets_(presets) {}

    /// Follows other settings. An assignment that stays as it was goes on where it is.
    void Adopt(const MMIDIRouting& routing) noexcept;

    bool MovesParameters() const noexcept {
        return routing_.controllers.count + routing_.notes.count > 0;
    }

    /// `listener` may be null.
    void Apply(const MMIDIMessage& message, MMIDIListener* listener) noexcept;

    /// No key is down and no controller has moved any more. Gates close, since what ends the notes
    /// that hold them may never come. [setup]
    void Reset() noexcept;

    /// The assignments that have moved their parameters since the last call: a bit for each
    /// controller assignment, and from kFirstNoteBit on for each note assignment. [any]
    std::uint64_t TakeMoved() noexcept { return moved_.exchange(0, std::memory_order_relaxed); }

private:
    void ProcessMIDIController(const MMIDIMessage& message, MMIDIListener* listener) noexcept;
    void ProcessAftertouch(const MMIDIMessage& message) noexcept;
    void ProcessPitchBend(const MMIDIMessage& message) noexcept;
    void ProcessNote(const MMIDIMessage& message, MMIDIListener* listener) noexcept;
    void ReleaseNote(int channel, int note, MMIDIListener* listener) noexcept;
    void CloseGate(int place) noexcept;
    void StepPresets(const MMIDIMessage& message) noexcept;
    void ChoosePreset(const MMIDIMessage& message) noexcept;
    void MoveController(int place, double x) noexcept;
    void PressNote(int place, double velocity) noexcept;
    double Write(int bit, std::uint32_t identifier, double target) noexcept;

    MAudioPlugin& plugin_;
    MPresetStepper* const presets_;
    MMIDIRouting routing_;
    std::array<MControllerFollower, MMIDISettings::kAssignments> followers_;
    MControllerPairs pairs_;
    MHeldNotes held_;
    int presetStep_ = 0;  // that was asked for last
    std::atomic<std::uint64_t> moved_{0};
};
