// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/effect/MStandardSettings.h"
#include "adapters/effect/MStateRecords.h"
#include "adapters/modulation/MModulation.h"
#include "dsp/MTripleBuffer.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

/// Puts changes that consist of many parts into force between two blocks, so that no block ever
/// works with some of the old and some of the new.
///
/// Whoever changes something publishes everything that a block has to know, in one exchange; the
/// audio thread takes the newest at the start of each block. Neither waits for the other. Those who
/// publish keep each other out; every [main] operation but WaitForBlock is theirs.
///
/// The values of records are the exception, since they have to be in the records before a load
/// returns, whether or not blocks run. The loading thread writes them itself when no block runs,
/// and leaves it to the next block when one does. A block that begins while the loading thread is
/// writing writes the same values first, all of them, before it does anything else.
class MStateHandOver {
public:
    /// Counts the states that were published.
    using Ticket = std::uint64_t;

    /// What a plug-in that is built on the adapter adds.
    struct Part {
        Part() = default;
        virtual ~Part() = default;
        Part(const Part&) = delete;
        Part& operator=(const Part&) = delete;
    };

    /// What is handed over. Made and destroyed by those who publish.
    struct Publication {
        Ticket ticket = 0;                              ///< of the values
        std::shared_ptr<MStateRecords::Values> values;  ///< of the state loaded last; null for none
        MModulation::Loaded modulation;                 ///< of the same
        MStandardSettings standard;
        std::shared_ptr<Part> part;
    };

    /// `records` are borrowed. [setup]
    explicit MStateHandOver(const MStateRecords& records) noexcept : records_(records) {}

    /// Lets `change` alter what was published last, and publishes it. Returns what nobody needs any
    /// more, to be destroyed without any lock. [main]
    template <class Job>
    [[nodiscard]] Publication Publish(Job&& change) {
        change(newest_);
        return PublishNewest();
    }
    /// The same with the values of all records, `change` being about the rest. [main]
    template <class Job>
    [[nodiscard]] Publication Publish(MStateRecords::Values values, Job&& change) {
        // The state before may still be under way: records that this one leaves alone get its
        // values.
        if (!IsTaken()) MStateRecords::Complete(values, *newest_.values);
        auto shared = std::make_shared<MStateRecords::Values>(std::move(values));
        return Publish([&](Publication& newest) {
            newest.values.swap(shared);
            ++newest.ticket;
            hasStagedSinceStart_.store(true, std::memory_order_relaxed);
            change(newest);
        });
    }

    /// The values in force; those that were published and are not in the records yet, if there are
    /// any. [main]
    MStateRecords::Values Current() const;
    /// Sees to it that published values are in the records, where nobody writes them later. False
    /// when a block runs that has to end first, unless that `isHung`. [main]
    bool Settle(bool isHung = false) noexcept;
    /// Waits until Settle has a chance. False for a block that is not going to end. Call it without
    /// any lock. [main]
    bool WaitForBlock() const;

    /// Starts anew, from the newest values: no block has run. [setup]
    void Start() noexcept;
    /// Runs `adopt` in the audio thread's place. [setup]
    template <class Job>
    void TakeStanding(Job&& adopt) {
        slots_.Adopt();
        adopt(slots_.Front());
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

    /// Takes over what has been published, once at the start of a block: the values, and by `adopt`
    /// the rest. [audio]
    template <class Job>
    void Take(Job&& adopt) noexcept {
        // Whoever publishes values and then sees no block relies on this one to find them.
        (void)ticket_.load(std::memory_order_seq_cst);
        if (slots_.Adopt()) {
            TakeValues();
            adopt(slots_.Front());
        }
        settles_ = isFirst_ && hasStagedSinceStart_.load(std::memory_order_relaxed);
        phase_.store(Phase::Runs, std::memory_order_release);
    }
    /// What was taken over last. [audio]
    const Publication& Taken() const noexcept { return slots_.Front(); }
    /// Whether this block is the first one and a state has been loaded before it: then nothing is
    /// to ramp, as there is nothing to ramp from. [audio]
    bool IsSettling() const noexcept { return settles_; }

private:
    enum class Phase { Outside, Takes, Runs };

    Publication PublishNewest();
    void TakeValues() noexcept;
    bool IsTaken() const noexcept;
    bool IsOwnBlock() const noexcept;

    const MStateRecords& records_;
    Publication newest_;  // of those who publish, as the writing side of the slots
    MTripleBuffer<Publication> slots_;
    std::atomic<Ticket> ticket_{0};  // of the newest values
    std::atomic<Ticket> taken_{0};   // of those in the records
    std::atomic<bool> hasStagedSinceStart_{false};

    std::atomic<Phase> phase_{Phase::Outside};  // of the audio thread
    std::atomic<std::thread::id> audioThread_{};
    bool isFirst_ = true;   // of the audio thread
    bool settles_ = false;  // of the audio thread
};
