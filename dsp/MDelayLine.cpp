// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MDelayLine.h"

#include "dsp/kernels/MKernelSet.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace {

/// A line that shrinks to this many samples or more gives memory back; smaller ones keep theirs, so
/// that moving the delay time does not allocate again and again.
constexpr int kShrinkFrom = 1'250'000;

int PowerOfTwo(int length) noexcept {
    return static_cast<int>(std::bit_ceil(static_cast<unsigned>(length)));
}

}  // namespace

void MDelayLine::Resize(int length, MGrowingBuffer<float>& scratch) {
    length = std::clamp(length, 1, kMaxLength);
    if (length == length_) return;

    const int oldLength = length_;
    float* const history = scratch.Get(std::max(oldLength, 1));
    if (oldLength > 0) {
        const float* const old = buffer_.get();
        float* const wrapped = std::copy(old + position_, old + oldLength, history);
        std::copy(old, old + position_, wrapped);
    }
    const bool givesBack =
        length < oldLength && length >= kShrinkFrom && PowerOfTwo(length) < capacity_;
    if (length > capacity_ || givesBack) Grow(length);
    length_ = length;
    position_ = 0;
    highWater_ = std::max(highWater_, length);
    StretchFrom(history, oldLength);
}

void MDelayLine::Grow(int length) {
    const int capacity = PowerOfTwo(length);
    buffer_ = std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(capacity));
    capacity_ = capacity;
    highWater_ = 0;
}

void MDelayLine::StretchFrom(const float* history, int oldLength) {
    float* const line = buffer_.get();
    if (oldLength == 0) {
        std::fill_n(line, length_, 0.0f);
    } else if (length_ == 1) {
        line[0] = history[oldLength - 1];
    } else if (oldLength == 1) {
        std::fill_n(line, length_, history[0]);
    } else {
        Kernels().delay->resample(history, oldLength, line, length_);
    }
}

void MDelayLine::Reserve(int length) {
    length = std::clamp(length, 1, kMaxLength);
    if (length <= capacity_) return;
    const int capacity = PowerOfTwo(length);
    auto grown = std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(capacity));
    std::copy_n(buffer_.get(), highWater_, grown.get());
    buffer_ = std::move(grown);
    capacity_ = capacity;
}

void MDelayLine::Clear() noexcept {
    std::fill_n(buffer_.get(), highWater_, 0.0f);
    highWater_ = length_;
}

void MDelayLine::Free() noexcept {
    buffer_.reset();
    capacity_ = highWater_ = length_ = position_ = 0;
}

float MDelayLine::Exchange(float sample) noexcept {
    const float oldest = std::exchange(buffer_[static_cast<std::size_t>(position_)], sample);
    Advance(1);
    return oldest;
}

void MDelayLine::Exchange(const float* in, float* out, int count) noexcept {
    if (length_ == 1 && count > 0) {
        // The usual predelay: not worth five calls for one sample.
        out[0] = std::exchange(buffer_[0], in[count - 1]);
        std::copy_n(in, count - 1, out + 1);
        return;
    }
    float* const line = buffer_.get();
    const int stored = std::min(count, length_);
    const int run = std::min(stored, Contiguous());
    // What was stored comes out first, then what came in meanwhile; the newest samples stay.
    std::copy_n(Oldest(), run, out);
    std::copy_n(line, stored - run, out + run);
    std::copy_n(in, count - stored, out + stored);
    const float* const newest = in + (count - stored);
    std::copy_n(newest, run, Oldest());
    std::copy_n(newest + run, stored - run, line);
    position_ = (position_ + stored) % length_;
}

bool MDelayLine::IsBelow(float threshold) const noexcept {
    constexpr int kPiece = 1024;
    for (int start = 0; start < length_; start += kPiece) {
        const float* const piece = buffer_.get() + start;
        const int count = std::min(kPiece, length_ - start);
        // Magnitudes of floats order as the integers behind them, and integers vectorise.
        std::int32_t loudest = 0;
        for (int i = 0; i < count; ++i) {
            loudest = std::max(loudest, std::bit_cast<std::int32_t>(piece[i]) & 0x7fffffff);
        }
        if (std::bit_cast<float>(loudest) >= threshold) return false;
    }
    return true;
}
