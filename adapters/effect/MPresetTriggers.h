// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MParameterTable.h"
#include "plugin/parameters/MParameterListener.h"
#include "plugin/parameters/ParameterDefinition.h"
#include "plugin/presets/MPresetStepper.h"

#include <array>
#include <atomic>
#include <cstdint>

class MAudioPlugin;

/// Two switches that step through the presets, by one place a block at most. They work as push
/// buttons: one that is written on is off again at once, and the host is told.
///
/// A press counts when the block before came without one. A host that opens a session writes what
/// it has stored, and one that plays a line of automation writes it again and again: neither asks
/// for another preset. Writes between two blocks count as well, however short.
class MPresetTriggers final : public MParameterListener {
public:
    /// `stepper` is borrowed; null for a plug-in without presets. [setup]
    explicit MPresetTriggers(MPresetStepper* stepper);

    /// [setup]
    void AddParameters(MParameterTable& table);

    /// Lives while a block runs: what presses a button meanwhile is MIDI or a MultiParameter, and
    /// counts as a part of that block. [audio]
    class Block {
    public:
        explicit Block(MPresetTriggers& triggers) noexcept : triggers_(triggers) {
            triggers_.isInBlock_.store(true, std::memory_order_relaxed);
        }
        ~Block() { triggers_.isInBlock_.store(false, std::memory_order_relaxed); }
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;

    private:
        MPresetTriggers& triggers_;
    };

    void ParameterChanged(int index, std::uint32_t offset, double oldValue,
                          double newValue) noexcept override;
    /// Lets presses count after the next block at the earliest: the host has resumed or a state
    /// been loaded. [any]
    void StartOver() noexcept { startsOver_.store(true, std::memory_order_relaxed); }
    /// Passes on what was pressed since the last block; this one has `sampleCount` samples, and
    /// without any is no pause between two presses. [audio]
    void Run(int sampleCount) noexcept;
    /// Tells the host of `plugin` about the buttons that have gone off again since the last call.
    /// [main]
    void ReportReleased(MAudioPlugin& plugin);

private:
    static constexpr int kCount = 2;  // previous, next

    MPresetStepper* const stepper_;
    std::array<ParameterDefinition, kCount> records_;
    std::array<std::uint32_t, kCount> identifiers_{};
    std::atomic<unsigned> pressed_{0};         // a bit each, between two blocks
    std::atomic<unsigned> pressedInBlock_{0};  // the same, in the course of a block
    std::atomic<unsigned> released_{0};        // the same, for the host to be told
    std::atomic<bool> isInBlock_{false};
    std::atomic<bool> startsOver_{true};
    // Of the audio thread: whether a press counts now, and did when the last block began.
    std::array<bool, kCount> mayAct_{};
    std::array<bool, kCount> mightAct_{};
};
