// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delay/MDelayTape.h"

#include <algorithm>
#include <cmath>
#include <utility>

void MDelayTape::Reserve(int length) {
    const int chunks = MDelayMemory::ChunksFor(length);
    start_.chunks.Reserve(chunks);
    chunks_.Reserve(chunks);
}

void MDelayTape::Free() noexcept {
    start_ = {};
    chunks_ = {};
}

void MDelayTape::Begin(MDelayCircle& circle) noexcept {
    std::swap(start_, circle);
    startDropped_ = 0;
    chunksDropped_ = 0;
    written_ = start_.length;
}

void MDelayTape::End() noexcept {
    DropStartBefore(start_.length);
    start_.chunks.Clear();
    while (chunks_.Size() > 0) memory_.Return(chunks_.Pop());
}

void MDelayTape::EndAs(MDelayCircle& circle, int length) noexcept {
    DropBefore(written_ - length);
    start_.chunks.Clear();
    circle.chunks.Swap(chunks_);
    circle.length = length;
    circle.position = 0;
    circle.isFilled = true;
}

void MDelayTape::Append(const float* in, int count) {
    while (count > 0) {
        const auto place = static_cast<int>((written_ - start_.length) % kChunk);
        if (place == 0) {
            chunks_.Reserve(chunks_.Size() + 1);  // there is room, but where Take had to allocate
            chunks_.Push(memory_.Take());
        }
        const int run = std::min(count, kChunk - place);
        std::copy_n(in, run, chunks_.Back() + place);
        written_ += run;
        in += run;
        count -= run;
    }
}

void MDelayTape::DropBefore(std::int64_t sample) noexcept {
    DropStartBefore(sample);
    const std::int64_t passed = (sample - start_.length) / kChunk;
    for (; chunksDropped_ < passed; ++chunksDropped_) memory_.Return(chunks_.Pop());
}

/// The chunk that holds the oldest and the newest of the first samples, and so goes back last.
int MDelayTape::LastOfStart() const noexcept {
    return std::min(start_.position / kChunk, start_.chunks.Size() - 1);
}

void MDelayTape::DropStartBefore(std::int64_t sample) noexcept {
    const int chunks = start_.chunks.Size(), last = LastOfStart();
    for (; startDropped_ < chunks; ++startDropped_) {
        const int chunk = (last + 1 + startDropped_) % chunks;
        const int end = std::min((chunk + 1) * kChunk, start_.length) - start_.position;
        std::int64_t lastUse = chunk > last ? end : end + start_.length;
        if (chunk == last) lastUse = start_.length;
        if (sample < lastUse) return;
        memory_.Return(start_.chunks[chunk]);
    }
}

MDelayTape::Run MDelayTape::At(std::int64_t sample) const noexcept {
    if (sample < start_.length) return AtStart(static_cast<int>(sample));
    const std::int64_t appended = sample - start_.length;
    const auto place = static_cast<int>(appended % kChunk);
    const float* const chunk = chunks_[static_cast<int>(appended / kChunk - chunksDropped_)];
    return {chunk + place, std::min<std::int64_t>(kChunk - place, written_ - sample), 0};
}

MDelayTape::Run MDelayTape::AtStart(int sample) const noexcept {
    const int untilTurn = start_.length - start_.position;
    if (sample < untilTurn && !start_.isFilled) return {nullptr, untilTurn - sample, start_.fill};
    const int place = sample < untilTurn ? start_.position + sample : sample - untilTurn;
    const int end = sample < untilTurn ? start_.length : start_.position;
    return {start_.At(place), std::min(kChunk - place % kChunk, end - place), 0};
}

bool MDelayTape::IsBelow(float threshold, std::int64_t sample) const noexcept {
    while (sample < written_) {
        const Run run = At(sample);
        if (run.samples == nullptr && std::abs(run.fill) >= threshold) return false;
        const auto count = static_cast<int>(run.count);
        if (run.samples != nullptr && !AreBelow(run.samples, count, threshold)) return false;
        sample += run.count;
    }
    return true;
}

int MDelayTape::LeftOfChunk(std::int64_t sample) const noexcept {
    if (sample < start_.length) return static_cast<int>(start_.length - sample);
    return kChunk - static_cast<int>((sample - start_.length) % kChunk);
}
