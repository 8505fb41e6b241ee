// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MStateRecords.h"
#include "core/MMutex.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

/// Puts changes that consist of many parts into force between two blocks, so that no block ever
/// works with some of the old and some of the new.
///
/// Whoever changes something publishes it under one lock, held for a few microseconds. The audio
/// thread tries that lock once at the start of each block: when it gets it, it takes over all there
/// is; when not, the block runs with what is in force. It neither waits nor falls silent.
///
/// Values of records are staged, and the audio thread writes them into the records. When no blocks
/// come to take them, the thread that staged them does it itself.
class MStateHandOver {
public:
    /// Identifies staged values.
    using Ticket = std::uint64_t;

    /// `records` are borrowed. [setup]
    explicit MStateHandOver(const MStateRecords& records) noexcept : records_(records) {}

    /// Runs `publish`, which makes parts visible for the audio thread to adopt, as one change. It
    /// must not wait or allocate. `values`, where there are any, are those of all records and are
    /// exchanged for older ones; not by two threads at once. Returns what to wait for. [main]
    template <class Job>
    Ticket Publish(MStateRecords::Values* values, Job&& publish) {
        const MLock lock(mutex_);
        publish();
        ++version_;
        if (values != nullptr) Stage(*values);
        return stagedTicket_.load(std::memory_order_relaxed);
    }

    /// The values in force; while some are staged, those, which the next block brings into force.
    /// Whoever publishes values is to be kept out meanwhile. [main]
    MStateRecords::Values Current() const;
    /// Waits until the values of `ticket` are in the records. False at once when no blocks run, or
    /// when it is the calling thread that runs them; false after `patience` without a block: then
    /// TakeHere is due. Call it without any lock. [main]
    bool WaitUntilTaken(Ticket ticket, std::chrono::milliseconds patience) const;
    /// Writes staged values into the records. Whoever publishes values is to be kept out
    /// meanwhile; the audio thread need not be. [main]
    void TakeHere() noexcept;

    /// Starts anew, from staged values if there are any: no block has run. [setup]
    void Start();
    /// Runs `adopt` in the audio thread's place. [setup]
    template <class Job>
    void TakeStanding(Job&& adopt) {
        const MLock lock(mutex_);
        adopt();
        adoptedVersion_ = version_;
    }

    /// The span of one block. [audio]
    class Block {
    public:
        Block(MStateHandOver& handOver, int count) noexcept;
        ~Block();
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;

    private:
        MStateHandOver& handOver_;
        const bool hasSamples_;
    };

    /// Takes over what has been published: the values, by `adopt` the rest, and by `adoptEach` what
    /// may also be published by itself and knows whether it was. Does nothing while a change is
    /// being published. [audio]
    template <class Job, class Each>
    void Take(Job&& adopt, Each&& adoptEach) noexcept {
        const MTryLock lock(mutex_);
        settles_ = false;
        if (!lock) return;
        TakeStaged();
        if (adoptedVersion_ != version_) adopt();
        adoptedVersion_ = version_;
        adoptEach();
        settles_ = isFirst_ && hasStagedSinceStart_;
    }
    /// Whether this block is the first one and a state has been loaded before it: then nothing is
    /// to ramp, as there is nothing to ramp from. [audio]
    bool IsSettling() const noexcept { return settles_; }
    /// Runs `publish` for a change by the audio thread itself and then `adopt`; skips both while
    /// there is something that it has not taken over, which may be about the same. [audio]
    template <class Job>
    void TryPublish(Job&& publishAndAdopt) noexcept {
        const MTryLock lock(mutex_);
        if (lock && adoptedVersion_ == version_) publishAndAdopt();
    }

private:
    void Stage(MStateRecords::Values& values) noexcept;
    void TakeStaged() noexcept;

    const MStateRecords& records_;
    MMutex mutex_;  // over the next four and what is published
    std::uint64_t version_ = 0;
    std::uint64_t adoptedVersion_ = 0;
    MStateRecords::Values staged_;
    bool hasStagedSinceStart_ = false;
    std::atomic<Ticket> stagedTicket_{0};
    std::atomic<Ticket> takenTicket_{0};

    std::atomic<bool> hasRun_{false};     // a block since Start
    std::atomic<bool> isInBlock_{false};  // one runs at present
    std::atomic<std::thread::id> audioThread_{};
    bool isFirst_ = true;   // of the audio thread
    bool settles_ = false;  // of the audio thread
};
