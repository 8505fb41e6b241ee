// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delay/MDelayLine.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

namespace {

constexpr int kPiece = 256;                         // samples
constexpr int kLongRun = 8 * MDelayMemory::kChunk;  // samples

int PowerOfTwo(int length) noexcept {
    return static_cast<int>(std::bit_ceil(static_cast<unsigned>(length)));
}

}  // namespace

void MDelayLine::Reserve(int length) {
    length = std::clamp(length, 1, kMaxLength);
    const int chunks = MDelayMemory::ChunksFor(length);
    circle_.chunks.Reserve(chunks);
    warp_.Reserve(length);
    memory_.Reserve(chunks);
}

void MDelayLine::Resize(int length, MGrowingBuffer<float>& scratch) {
    length = std::clamp(length, 1, kMaxLength);
    if (length == length_) return;
    if (MDelayMemory::ChunksFor(length) > memory_.Chunks()) Reserve(PowerOfTwo(length));
    if (length_ < 2 || length < 2) {
        Refill(length, length_ > 0 ? Newest() : 0.0f);
        return;
    }
    if (!warp_.IsActive()) {
        warp_.Begin(circle_);
    } else if (warp_.HasRested() && IsSettledSoon()) {
        Settle(scratch);
        warp_.Begin(circle_);
    } else if (warp_.IsTooSoon()) {
        return;
    }
    warp_.Change(length);
    length_ = length;
}

/// Whether it takes no more than a few microseconds to settle.
bool MDelayLine::IsSettledSoon() const noexcept {
    constexpr int kMostPieces = 256;
    return length_ <= kLongestSettled && warp_.Stored() <= kLongestSettled &&
           warp_.Pieces() <= kMostPieces;
}

/// Writes the samples anew as they would be read.
void MDelayLine::Settle(MGrowingBuffer<float>& scratch) {
    float* const history = scratch.Get(length_);
    warp_.Read(history, length_);
    Refill(length_, 0);
    for (int done = 0; done < length_;) {
        const int run = std::min(length_ - done, Contiguous());
        std::copy_n(history + done, run, run_);
        Close(run_, run);
        done += run;
    }
}

/// Makes the line one of `length` samples that are all like `sample`, without writing more than a
/// few of them.
void MDelayLine::Refill(int length, float sample) {
    warp_.End();
    while (circle_.chunks.Size() * MDelayMemory::kChunk >= length + MDelayMemory::kChunk) {
        memory_.Return(circle_.chunks.PopBack());
    }
    circle_.length = length_ = length;
    circle_.position = 0;
    circle_.fill = sample;
    circle_.isFilled = false;
    EnterRun();
    if (length > MDelayMemory::kChunk) return;
    std::fill_n(run_, length, sample);
    circle_.isFilled = true;
}

/// Begins the run at the circle's position. Chunks that follow each other in memory are one run.
void MDelayLine::EnterRun() {
    const int place = circle_.position;
    MRingQueue<float*>& chunks = circle_.chunks;
    int chunk = place / MDelayMemory::kChunk;
    if (chunk == chunks.Size()) {
        float* const next = memory_.Take();
        chunks.Reserve(chunk + 1);  // there is room, but where Take had to allocate
        chunks.Push(next);
    }
    run_ = circle_.At(place);
    int end = (chunk + 1) * MDelayMemory::kChunk;
    while (end < std::min(length_, place + kLongRun) && chunk + 1 < chunks.Size() &&
           chunks[chunk + 1] == chunks[chunk] + MDelayMemory::kChunk) {
        ++chunk;
        end += MDelayMemory::kChunk;
    }
    runLeft_ = std::min(end, length_) - place;
}

float MDelayLine::Newest() const noexcept {
    if (warp_.IsActive()) return warp_.Newest();
    if (circle_.position > 0) return *circle_.At(circle_.position - 1);
    return circle_.isFilled ? *circle_.At(length_ - 1) : circle_.fill;
}

void MDelayLine::Clear() noexcept {
    warp_.End();
    length_ = 0;
}

void MDelayLine::Free() noexcept {
    warp_.Free();
    circle_ = {};
    memory_.Free();
    length_ = runLeft_ = 0;
    run_ = nullptr;
}

float* MDelayLine::Open(int count, float* room) noexcept {
    if (warp_.IsActive()) {
        warp_.Read(room, count);
        return room;
    }
    if (!circle_.isFilled) std::fill_n(run_, count, circle_.fill);
    return run_;
}

void MDelayLine::Close(const float* opened, int count) {
    if (warp_.IsActive()) {
        warp_.Write(opened, count);
        if (warp_.EndAs(circle_)) EnterRun();
        return;
    }
    run_ += count;
    runLeft_ -= count;
    circle_.position += count;
    if (runLeft_ > 0) return;
    if (circle_.position == length_) {
        circle_.position = 0;
        circle_.isFilled = true;
    }
    EnterRun();
}

int MDelayLine::Contiguous() const noexcept {
    if (!warp_.IsActive()) return runLeft_;
    // Once the samples lie straight the line waits for them to begin where a chunk does.
    return warp_.IsStraight() ? std::min(length_, warp_.LeftOfChunk()) : length_;
}

float MDelayLine::Exchange(float sample) {
    float room = 0;
    float* const opened = Open(1, &room);
    const float oldest = std::exchange(*opened, sample);
    Close(opened, 1);
    return oldest;
}

void MDelayLine::Exchange(const float* in, float* out, int count) {
    if (length_ == 1 && count > 0) {
        // The usual predelay: not worth the calls for one sample.
        out[0] = std::exchange(*run_, in[count - 1]);
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
    if (warp_.IsActive()) return warp_.IsBelow(threshold);
    return length_ == 0 || circle_.IsBelow(threshold);
}
