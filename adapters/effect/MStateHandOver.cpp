// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MStateHandOver.h"

#include <chrono>
#include <utility>

namespace {

constexpr std::chrono::microseconds kPause{50};
// A block that takes longer than this is not going to end.
constexpr std::chrono::milliseconds kHangsAfter{2000};

}  // namespace

MStateHandOver::Block::Block(MStateHandOver& handOver, int count) noexcept
    : handOver_(handOver), hasSamples_(count > 0) {
    handOver_.audioThread_.store(std::this_thread::get_id(), std::memory_order_relaxed);
    handOver_.phase_.store(Phase::Takes, std::memory_order_seq_cst);
}

MStateHandOver::Block::~Block() {
    if (hasSamples_) handOver_.isFirst_ = false;
    handOver_.phase_.store(Phase::Outside, std::memory_order_release);
}

MStateHandOver::Publication MStateHandOver::PublishNewest() {
    Publication old = std::exchange(slots_.Back(), newest_);
    slots_.Publish();
    ticket_.store(newest_.ticket, std::memory_order_seq_cst);
    return old;
}

MStateRecords::Values MStateHandOver::Current() const {
    if (IsTaken()) return records_.Current();
    MStateRecords::Values values = *newest_.values;
    MStateRecords::Complete(values, records_.Current());
    return values;
}

bool MStateHandOver::IsTaken() const noexcept {
    return taken_.load(std::memory_order_acquire) == newest_.ticket;
}

bool MStateHandOver::IsOwnBlock() const noexcept {
    return audioThread_.load(std::memory_order_relaxed) == std::this_thread::get_id();
}

// A block that begins after the look at the phase finds the values, and writes them before anything
// else; from then on they are not written here any more. It may still be at it when this is done.
bool MStateHandOver::Settle(bool isHung) noexcept {
    const bool waits = !isHung && !IsOwnBlock();
    const Ticket ticket = newest_.ticket;
    const auto isTaken = [&] { return taken_.load(std::memory_order_acquire) == ticket; };
    if (!isTaken()) {
        if (waits && phase_.load(std::memory_order_seq_cst) != Phase::Outside) return false;
        records_.Apply(*newest_.values, isTaken);
        taken_.store(ticket, std::memory_order_release);
    }
    while (waits && phase_.load(std::memory_order_acquire) == Phase::Takes) {
        std::this_thread::yield();
    }
    return true;
}

bool MStateHandOver::WaitForBlock() const {
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const Ticket ticket = ticket_.load(std::memory_order_relaxed);
    while (phase_.load(std::memory_order_acquire) != Phase::Outside &&
           taken_.load(std::memory_order_acquire) < ticket) {
        if (Clock::now() - start >= kHangsAfter) return false;
        std::this_thread::sleep_for(kPause);
    }
    return true;
}

void MStateHandOver::TakeValues() noexcept {
    const Publication& newest = slots_.Front();
    if (taken_.load(std::memory_order_acquire) >= newest.ticket) return;
    records_.Apply(*newest.values);
    taken_.store(newest.ticket, std::memory_order_release);
}

void MStateHandOver::Start() noexcept {
    Settle(true);
    hasStagedSinceStart_.store(false, std::memory_order_relaxed);
    isFirst_ = true;
}
