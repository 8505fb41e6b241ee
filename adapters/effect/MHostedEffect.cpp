// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MHostedEffect.h"

#include "core/MException.h"

#include <bit>
#include <utility>

namespace {

constexpr int kAllRecords = 63;
constexpr std::uint64_t Bit(int index) {
    return std::uint64_t{1} << (index >= 0 && index < kAllRecords ? index : kAllRecords);
}

}  // namespace

MHostedEffect::MHostedEffect(MEffectEntry entry, std::string name)
    : name_(std::move(name)), handle_(entry) {
    handle_.SetHostCallback(this, &MHostedEffect::Notify);
    records_ = handle_.Table();
    for (int index = 0; index < static_cast<int>(records_.size()); ++index) {
        const std::uint8_t flags = records_[static_cast<std::size_t>(index)].flags;
        if ((flags & ParameterDefinition::kUpdateRequired) != 0) needsUpdate_ |= Bit(index);
    }
    needsUpdate_ |= Bit(kAllRecords);
}

void MHostedEffect::Prepare(int channels, int sampleRate, int longestBlock) {
    marks_.store(0, std::memory_order_relaxed);  // preparing follows every record
    restart_.store(false, std::memory_order_relaxed);
    channels_.store(0, std::memory_order_relaxed);
    if (handle_.Prepare(channels, sampleRate, longestBlock) != 0) {
        throw MException("The effect could not be prepared.");
    }
    hasRun_ = false;
    sampleRate_.store(sampleRate, std::memory_order_relaxed);
    longestBlock_.store(longestBlock, std::memory_order_relaxed);
    channels_.store(channels, std::memory_order_release);
}

void MHostedEffect::SetDefaults() noexcept {
    for (ParameterDefinition& record : records_) record.Overrule(record.defaultValue);
    Mark(-1);
}

void MHostedEffect::Mark(int index) noexcept {
    marks_.fetch_or(Bit(index), std::memory_order_release);
}

void MHostedEffect::ParameterChanged(int index, std::uint32_t /*offset*/, double /*oldValue*/,
                                     double /*newValue*/) noexcept {
    Mark(index);
}

void MHostedEffect::SettleRamps() noexcept {
    for (ParameterDefinition& record : records_) {
        if (record.kind == ParameterKind::Float) record.previous = record.Effective();
    }
}

void MHostedEffect::Update() {
    // Most blocks come without writes; reading alone keeps the line shared between the cores.
    if (marks_.load(std::memory_order_relaxed) == 0) return;
    std::uint64_t marks = marks_.exchange(0, std::memory_order_acquire);
    if (std::popcount(marks & needsUpdate_) > 1 || (marks & Bit(kAllRecords)) != 0) {
        handle_.ParameterChanged(-1);  // one update serves them all
        return;
    }
    for (; marks != 0; marks &= marks - 1) handle_.ParameterChanged(std::countr_zero(marks));
}

void MHostedEffect::Process(const MTransport* transport, const float* const* inputs,
                            float* const* outputs, int count) {
    const bool restarts = restart_.load(std::memory_order_relaxed) &&
                          restart_.exchange(false, std::memory_order_acquire);
    if (restarts && hasRun_) Restart();
    hasRun_ = true;
    handle_.Process(transport, inputs, outputs, count);
}

void MHostedEffect::Restart() {
    if (handle_.Prepare(channels_, sampleRate_, longestBlock_) == 0) return;
    RequestRestart();  // the next block tries again
    throw MException("The effect could not start anew.");
}

std::int64_t MHostedEffect::Notify(void* context, std::int64_t notification,
                                   const MEffectArguments* /*arguments*/) {
    auto* const effect = static_cast<MHostedEffect*>(context);
    if (static_cast<MEffectNotification>(notification) !=
        MEffectNotification::ParameterListChanged) {
        return -1;
    }
    effect->listChanged_.store(true);
    return 0;
}
