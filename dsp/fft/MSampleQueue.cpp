// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/fft/MSampleQueue.h"

#include "core/MException.h"

#include <algorithm>
#include <bit>

namespace {

int Size(const std::vector<float>& ring) noexcept { return static_cast<int>(ring.size()); }

}  // namespace

void MSampleQueue::Reserve(int count) {
    if (count <= Size(ring_)) return;
    std::vector<float> larger(std::bit_ceil(static_cast<std::size_t>(count)));
    for (int i = 0; i < count_; ++i) larger[i] = ring_[(first_ + i) & (Size(ring_) - 1)];
    ring_.swap(larger);
    first_ = 0;
}

void MSampleQueue::Append(std::span<const float> samples) {
    const int added = static_cast<int>(samples.size());
    Reserve(count_ + added);
    if (added == 0) return;
    const int end = (first_ + count_) & (Size(ring_) - 1);
    const int beforeWrap = std::min(added, Size(ring_) - end);
    std::copy_n(samples.begin(), beforeWrap, ring_.begin() + end);
    std::copy_n(samples.begin() + beforeWrap, added - beforeWrap, ring_.begin());
    count_ += added;
}

void MSampleQueue::AppendSilence(int count) {
    Reserve(count_ + count);
    for (int i = 0; i < count; ++i) ring_[(first_ + count_ + i) & (Size(ring_) - 1)] = 0;
    count_ += count;
}

void MSampleQueue::Take(std::span<float> samples) {
    const int taken = static_cast<int>(samples.size());
    if (taken > count_) throw MException("Not enough data in the queue.");
    if (taken == 0) return;
    const int beforeWrap = std::min(taken, Size(ring_) - first_);
    std::copy_n(ring_.begin() + first_, beforeWrap, samples.begin());
    std::copy_n(ring_.begin(), taken - beforeWrap, samples.begin() + beforeWrap);
    first_ = (first_ + taken) & (Size(ring_) - 1);
    count_ -= taken;
}

void MSampleQueue::Clear() noexcept {
    first_ = 0;
    count_ = 0;
}
