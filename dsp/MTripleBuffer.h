// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>

/// Hands whole values from one writing thread to one reading thread. Neither waits for the other
/// and nothing is copied: the writer fills a slot that nobody reads and swaps it in, the reader
/// keeps its slot until it asks for the newest one. Values in between are lost.
template <class Value>
class MTripleBuffer {
public:
    /// The slot that the writer may fill; its content is an older value. [setup] for all but the
    /// one writing thread.
    Value& Back() noexcept { return slots_[back_]; }

    /// Makes the back slot the newest value. Only the writing thread.
    void Publish() noexcept {
        back_ = middle_.exchange(back_ | kFresh, std::memory_order_acq_rel) & kIndex;
    }

    /// Takes over the newest value; false when there was no new one. Only the reading thread.
    /// [audio]
    bool Adopt() noexcept {
        if (!HasNewer()) return false;
        front_ = middle_.exchange(front_, std::memory_order_acq_rel) & kIndex;
        return true;
    }

    /// Whether Adopt would take over a new value. Only the reading thread. [audio]
    bool HasNewer() const noexcept {
        return (middle_.load(std::memory_order_relaxed) & kFresh) != 0;
    }

    /// The value adopted last. Only the reading thread. [audio]
    const Value& Front() const noexcept { return slots_[front_]; }

private:
    static constexpr unsigned kIndex = 3;
    static constexpr unsigned kFresh = 4;  // nobody has read the middle slot yet

    std::array<Value, 3> slots_;
    unsigned back_ = 0;
    std::atomic<unsigned> middle_{1};
    unsigned front_ = 2;
};
