// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MStateHandOver.h"

namespace {

constexpr std::chrono::microseconds kPause{100};
// A block that takes longer than this is not going to end.
constexpr std::chrono::milliseconds kLongestBlock{2000};

}  // namespace

MStateHandOver::Block::Block(MStateHandOver& handOver, int count) noexcept
    : handOver_(handOver), hasSamples_(count > 0) {
    handOver_.audioThread_.store(std::this_thread::get_id(), std::memory_order_relaxed);
    handOver_.isInBlock_.store(true, std::memory_order_relaxed);
    // Ordered before the try for the lock: whoever stages values and sees no block running may rely
    // on the next one to find them.
    if (hasSamples_) handOver_.hasRun_.store(true, std::memory_order_seq_cst);
}

MStateHandOver::Block::~Block() {
    if (hasSamples_) handOver_.isFirst_ = false;
    handOver_.isInBlock_.store(false, std::memory_order_release);
}

void MStateHandOver::Stage(MStateRecords::Values& values) noexcept {
    staged_.swap(values);
    hasStagedSinceStart_ = true;
    stagedTicket_.fetch_add(1, std::memory_order_release);
}

MStateRecords::Values MStateHandOver::Current() const {
    const bool isTaken = takenTicket_.load(std::memory_order_acquire) ==
                         stagedTicket_.load(std::memory_order_relaxed);
    return isTaken ? records_.Current() : staged_;
}

bool MStateHandOver::WaitUntilTaken(Ticket ticket, std::chrono::milliseconds patience) const {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    while (takenTicket_.load(std::memory_order_acquire) < ticket) {
        if (!hasRun_.load(std::memory_order_seq_cst)) return false;
        if (audioThread_.load(std::memory_order_relaxed) == std::this_thread::get_id())
            return false;
        const auto waited = Clock::now() - start;
        const bool isInBlock = isInBlock_.load(std::memory_order_acquire);
        if (waited >= (isInBlock ? kLongestBlock : patience)) return false;
        std::this_thread::sleep_for(kPause);
    }
    return true;
}

// Without the lock on purpose: should a block begin in the middle of it, that block gets the lock
// and writes the same values itself before it does anything else.
void MStateHandOver::TakeHere() noexcept { TakeStaged(); }

void MStateHandOver::TakeStaged() noexcept {
    const Ticket ticket = stagedTicket_.load(std::memory_order_acquire);
    if (takenTicket_.load(std::memory_order_relaxed) == ticket) return;
    records_.Apply(staged_);
    takenTicket_.store(ticket, std::memory_order_release);
}

void MStateHandOver::Start() {
    const MLock lock(mutex_);
    TakeStaged();
    hasStagedSinceStart_ = false;
    isFirst_ = true;
    hasRun_.store(false, std::memory_order_seq_cst);
}
