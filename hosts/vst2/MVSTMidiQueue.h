// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MMutex.h"
#include "hosts/vst2/VstTypes.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

namespace Vst2 {

/// A MIDI message as VST 2.4 carries it, `deltaFrames` samples into the block. [any]
VstMidiEvent MakeMidiEvent(int deltaFrames, const std::array<std::uint8_t, 4>& data) noexcept;

/// MIDI messages on their way between threads. Any thread may append; one takes all there are.
class MVSTMidiQueue {
public:
    /// `hasEvents` (borrowed) says whether there is something to take: it stands beside what else
    /// every block reads. [setup]
    explicit MVSTMidiQueue(std::atomic<bool>& hasEvents) noexcept : hasEvents_(hasEvents) {}

    /// Waits for the lock; raises MException when it cannot be had. Memory grows in powers of two
    /// and is never given back. [any]
    void Append(const VstMidiEvent& event);

    /// Everything appended since the last call, in order; valid until the next call. Waits for the
    /// lock, takes no memory. [audio]
    std::vector<VstMidiEvent>& TakeAll();

private:
    std::atomic<bool>& hasEvents_;
    MMutex mutex_;
    std::vector<VstMidiEvent> waiting_;
    std::vector<VstMidiEvent> taken_;  // of the thread that takes
};

}  // namespace Vst2
