// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MDelayLine.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace {

/// A line that shrinks to this many samples or more gives memory back; smaller ones keep theirs, so
/// that moving the delay time does not allocate again and again.
constexpr int kShrinkFrom = 1'250'000;

constexpr int kPiece = 256;  // samples

int PowerOfTwo(int length) noexcept {
    return static_cast<int>(std::bit_ceil(static_cast<unsigned>(length)));
}

bool AreBelow(const float* samples, int count, float threshold) noexcept {
    constexpr int kScan = 1024;
    for (int start = 0; start < count; start += kScan) {
        const int end = std::min(start + kScan, count);
        // Magnitudes of floats order as the integers behind them, and integers vectorise.
        std::int32_t loudest = 0;
        for (int i = start; i < end; ++i) {
            loudest = std::max(loudest, std::bit_cast<std::int32_t>(samples[i]) & 0x7fffffff);
        }
        if (std::bit_cast<float>(loudest) >= threshold) return false;
    }
    return true;
}

}  // namespace

void MDelayLine::Resize(int length, MGrowingBuffer<float>& scratch, MRetime how) {
    length = std::clamp(length, 1, kMaxLength);
    if (length == length_) return;
    if (length_ < 2 || length < 2) {
        Refill(length);
        return;
    }
    const int oldLength = length_;
    if (!warp_.IsStraight() && (how == MRetime::Anew || !warp_.MayFollow())) {
        Settle(scratch);
        warp_.Begin(length_, PowerOfTwo(length_));
    }
    if (length > warp_.RingSize()) WidenRing(PowerOfTwo(length), scratch);
    warp_.Change(length);
    length_ = length;
    highWater_ = std::max(highWater_, length);
    if (length < oldLength && length >= kShrinkFrom && PowerOfTwo(length) < capacity_) {
        Settle(scratch);
        Grow(PowerOfTwo(length));
        highWater_ = length;
        std::copy_n(scratch.Get(length), length, buffer_.get());
    }
}

/// Lines of one sample have nothing to interpolate: the newest sample is all there is.
void MDelayLine::Refill(int length) {
    const float sample = length_ > 0 ? Newest() : 0.0f;
    if (length > capacity_) Grow(PowerOfTwo(length));
    warp_.End();
    position_ = 0;
    length_ = length;
    highWater_ = std::max(highWater_, length);
    std::fill_n(buffer_.get(), length, sample);
}

float MDelayLine::Newest() noexcept {
    float* const line = buffer_.get();
    if (!warp_.IsActive()) return line[(position_ + length_ - 1) % length_];
    return line[(warp_.First() + warp_.Stored() - 1) & (warp_.RingSize() - 1)];
}

/// The memory is new afterwards, and its content undefined.
void MDelayLine::Grow(int capacity) {
    warp_.Reserve(capacity);
    buffer_ = std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(capacity));
    capacity_ = capacity;
}

/// Leaves the samples at the start of the buffer as they would be read, and in `scratch` too.
void MDelayLine::Settle(MGrowingBuffer<float>& scratch) {
    float* const line = buffer_.get();
    float* const history = scratch.Get(length_);
    if (warp_.IsActive()) {
        warp_.Read(line, history, length_);
        warp_.End();
    } else {
        std::copy(line, line + position_, std::copy(line + position_, line + length_, history));
    }
    std::copy_n(history, length_, line);
    position_ = 0;
}

void MDelayLine::WidenRing(int size, MGrowingBuffer<float>& scratch) {
    warp_.Anchor();
    const int stored = warp_.Stored();
    const int run = std::min(stored, warp_.RingSize() - warp_.First());
    float* const history = scratch.Get(stored);
    std::copy_n(buffer_.get() + warp_.First(), run, history);
    std::copy_n(buffer_.get(), stored - run, history + run);
    if (size > capacity_) Grow(size);
    std::copy_n(history, stored, buffer_.get());
    warp_.MoveTo(size);
}

void MDelayLine::Reserve(int length) {
    length = std::clamp(length, 1, kMaxLength);
    if (length <= capacity_) return;
    const int capacity = PowerOfTwo(length);
    warp_.Reserve(capacity);
    auto grown = std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(capacity));
    std::copy_n(buffer_.get(), warp_.IsActive() ? warp_.RingSize() : length_, grown.get());
    buffer_ = std::move(grown);
    capacity_ = capacity;
}

void MDelayLine::Clear() noexcept {
    warp_.End();
    position_ = 0;
    std::fill_n(buffer_.get(), length_, 0.0f);
    highWater_ = length_;
}

void MDelayLine::Free() noexcept {
    buffer_.reset();
    warp_ = {};
    capacity_ = highWater_ = length_ = position_ = 0;
}

float* MDelayLine::Open(int count, float* room) noexcept {
    if (!warp_.IsActive()) return buffer_.get() + position_;
    warp_.Read(buffer_.get(), room, count);
    return room;
}

void MDelayLine::Close(const float* opened, int count) noexcept {
    if (!warp_.IsActive()) {
        position_ += count;
        if (position_ == length_) position_ = 0;
        return;
    }
    warp_.Write(buffer_.get(), opened, count);
    if (warp_.IsStraight() && warp_.First() == 0) {
        warp_.End();
        position_ = 0;
    }
}

int MDelayLine::Contiguous() const noexcept {
    if (!warp_.IsActive()) return length_ - position_;
    // Once the samples lie straight the line waits for them to start where the buffer does.
    return warp_.IsStraight() ? std::min(length_, warp_.RingSize() - warp_.First()) : length_;
}

float MDelayLine::Exchange(float sample) noexcept {
    float room = 0;
    float* const opened = Open(1, &room);
    const float oldest = std::exchange(*opened, sample);
    Close(opened, 1);
    return oldest;
}

void MDelayLine::Exchange(const float* in, float* out, int count) noexcept {
    if (length_ == 1 && count > 0) {
        // The usual predelay: not worth the calls for one sample.
        out[0] = std::exchange(buffer_[0], in[count - 1]);
        std::copy_n(in, count - 1, out + 1);
        return;
    }
    float room[kPiece];  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by Open
    for (int run = 0; count > 0; in += run, out += run, count -= run) {
        run = std::min({count, Contiguous(), kPiece});
        float* const opened = Open(run, room);
        std::copy_n(opened, run, out);
        std::copy_n(in, run, opened);
        Close(opened, run);
    }
}

bool MDelayLine::IsBelow(float threshold) const noexcept {
    if (!warp_.IsActive()) return AreBelow(buffer_.get(), length_, threshold);
    const int first = warp_.First(), stored = warp_.Stored();
    const int run = std::min(stored, warp_.RingSize() - first);
    return AreBelow(buffer_.get() + first, run, threshold) &&
           AreBelow(buffer_.get(), stored - run, threshold);
}
