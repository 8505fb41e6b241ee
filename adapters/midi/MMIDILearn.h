// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MControllerSource.h"
#include "adapters/midi/MMIDIMessage.h"

#include <atomic>
#include <cstdint>
#include <optional>

/// What a user has moved or pressed for a parameter.
struct MMIDILearned {
    std::uint32_t identifier = 0;  ///< of the parameter
    bool isNote = false;
    MControllerSource source;  ///< unless it is a note
    int note = 0;              ///< 0..127
    int channel = 0;           ///< 1..16
};

/// Waits for the next controller or note, which is then to move a parameter.
class MMIDILearn {
public:
    enum class Wanted : std::uint8_t { Controller = 1, Note = 2, Either = 3 };

    /// Waits for the parameter's sake from now on; what was learned before and not taken is lost.
    /// [main]
    void Arm(std::uint32_t identifier, Wanted wanted) noexcept;
    /// Waits no longer. [main]
    void Cancel() noexcept;
    bool IsArmed() const noexcept { return armed_.load(std::memory_order_relaxed) != 0; }
    /// What was learned since Arm, once. [main]
    std::optional<MMIDILearned> Take() noexcept;

    /// Learns from `message` when it fits what is waited for. What concerns the channel itself,
    /// such as all notes off, is no controller here: hosts send it unasked. [audio]
    void Offer(const MMIDIMessage& message) noexcept;

private:
    std::uint32_t identifier_ = 0;           // main thread only
    std::uint32_t serial_ = 0;               // main thread only: of the last Arm
    std::atomic<std::uint64_t> armed_{0};    // serial and Wanted; 0 when nothing is wanted
    std::atomic<std::uint64_t> learned_{0};  // serial, kind, channel, number; 0 for nothing
};
