// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MMIDIMessage.h"

#include <cstdint>
#include <memory>

/// The MIDI messages of the coming block, by their offset within it; those of one offset in the
/// order of arrival. The room is fixed, and a message that finds none is dropped and counted; its
/// last part is kept for ends of notes, without which notes would hang. [audio] but for what says
/// otherwise.
class MMIDIQueue {
public:
    static constexpr int kCapacity = 16384;
    static constexpr int kForNoteEnds = 2048;  // every note of every channel

    /// [setup]
    MMIDIQueue();

    /// Takes in a message `offset` samples into the coming block.
    void Add(int offset, const MMIDIMessage& message) noexcept;

    /// Begins a block of `count` samples: offsets outside go to its first or last sample, and what
    /// the last block has left over comes first.
    void BeginBlock(int count) noexcept;

    /// Where the next message is due, but not before `position`; the block's length without one.
    int NextOffset(int position) const noexcept;

    /// The next message that is due at `position` or earlier; null when there is none. Good until
    /// the next call.
    const MMIDIMessage* Take(int position) noexcept;

    /// Forgets every message.
    void Clear() noexcept;

    /// Messages dropped since the queue was made.
    std::int64_t Dropped() const noexcept { return dropped_; }

private:
    struct Event {
        int offset = 0;
        int order = 0;  // of arrival
        MMIDIMessage message;
    };

    const std::unique_ptr<Event[]> events_;
    int size_ = 0;
    int next_ = 0;   // to be taken
    int begun_ = 0;  // events of the present block; the others are of the one to come
    int count_ = 0;  // samples of the present block
    bool isInOrder_ = true;
    std::int64_t dropped_ = 0;
};
