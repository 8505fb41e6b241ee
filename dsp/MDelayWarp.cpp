// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MDelayWarp.h"

#include "dsp/kernels/MKernelSet.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <utility>

namespace {

constexpr int kSamplesPerPiece = 32;
constexpr int kLeastRoom = 64;  // pieces

double Steps(int length) noexcept { return static_cast<double>(length - 1); }

}  // namespace

void MDelayWarp::Reserve(int capacity) {
    const int needed = std::max(capacity / kSamplesPerPiece, kLeastRoom);
    if (needed <= room_) return;
    const auto room = std::bit_ceil(static_cast<unsigned>(needed));
    auto pieces = std::make_unique_for_overwrite<Piece[]>(room);
    for (int i = 0; i < count_; ++i) pieces[static_cast<std::size_t>(i)] = At(i);
    pieces_ = std::move(pieces);
    room_ = static_cast<int>(room);
    head_ = 0;
}

void MDelayWarp::Begin(int length, int ringSize) noexcept {
    head_ = 0;
    count_ = 1;
    At(0) = {.count = length, .length = length};
    ringSize_ = ringSize;
    length_ = length;
    sinceChange_ = ahead_ = 0;
    written_ = length;
    base_ = 0;
    span_ = steps_ = 0;
    offset_ = 0;
    rate_ = 1;
}

bool MDelayWarp::MayFollow() const noexcept {
    return IsActive() && sinceChange_ < kMovement && count_ < room_;
}

void MDelayWarp::Change(int length) noexcept {
    Anchor();
    if (IsStraight()) span_ = length_ - 1;
    if (Newest().count == 0) {
        Newest().length = length;
    } else {
        ++count_;
        Newest() = {.count = 0, .length = length};
    }
    length_ = length;
    sinceChange_ = 0;
    SetRate();
}

void MDelayWarp::SetRate() noexcept { rate_ = Steps(At(0).length) / Steps(length_); }

void MDelayWarp::Anchor() noexcept {
    EnterPiece();
    const double place = Place(0);
    const int whole = static_cast<int>(place);
    base_ += whole;
    span_ -= whole;
    offset_ = place - whole;
    steps_ = 0;
}

/// The sample at or before the place that is read next; never beyond the piece.
std::int64_t MDelayWarp::Oldest() const noexcept {
    return IsStraight() ? base_ : base_ + std::min(static_cast<int>(Place(0)), span_);
}

int MDelayWarp::Stored() const noexcept {
    return static_cast<int>(std::min<std::int64_t>(written_ - Oldest(), ringSize_));
}

/// Moves on to the piece that the next sample is read from.
void MDelayWarp::EnterPiece() noexcept {
    while (!IsStraight() && Place(0) >= span_) {
        const double beyond = Place(0) - span_;
        const double before = Steps(At(0).length);
        base_ += span_;
        head_ = (head_ + 1) & (room_ - 1);
        --count_;
        span_ = At(0).count;
        steps_ = 0;
        offset_ = beyond * Steps(At(0).length) / before;
        SetRate();
        if (IsStraight()) {
            // A whole number of samples; said exactly, so that roundings end here.
            base_ = written_ - length_ + ahead_;
            offset_ = 0;
        }
    }
}

/// How many of the next `most` samples are read from below `place`.
int MDelayWarp::StepsBelow(int place, int most) const noexcept {
    if (Place(most - 1) < place) return most;
    const double estimate = (place - Place(0)) / rate_;
    int steps = static_cast<int>(std::clamp(estimate, 0.0, static_cast<double>(most)));
    while (steps > 0 && Place(steps - 1) >= place) --steps;
    while (Place(steps) < place) ++steps;
    return steps;
}

void MDelayWarp::Read(const float* ring, float* out, int count) noexcept {
    while (count > 0) {
        EnterPiece();
        const int run = IsStraight() ? Copy(ring, out, count) : Stretch(ring, out, count);
        out += run;
        count -= run;
        ahead_ += run;
    }
}

int MDelayWarp::Copy(const float* ring, float* out, int most) noexcept {
    const int first = InRing(base_);
    const int run = std::min(most, ringSize_ - first);
    std::copy_n(ring + first, run, out);
    base_ += run;
    return run;
}

int MDelayWarp::Stretch(const float* ring, float* out, int most) noexcept {
    const int whole = static_cast<int>(Place(0));
    const int first = InRing(base_ + whole);
    const int lastOfRing = whole + ringSize_ - 1 - first;
    const MStretch stretch = {.offset = offset_, .rate = rate_, .step = steps_, .skipped = whole};
    int run = StepsBelow(std::min(span_, lastOfRing), most);
    if (run > 0) {
        Kernels().delay->stretch(stretch, ring + first, out, run);
    } else {
        const float pair[] = {ring[first], ring[0]};
        Kernels().delay->stretch(stretch, pair, out, run = 1);
    }
    steps_ += run;
    return run;
}

void MDelayWarp::Write(float* ring, const float* in, int count) noexcept {
    const int first = InRing(written_);
    const int run = std::min(count, ringSize_ - first);
    std::copy_n(in, run, ring + first);
    std::copy_n(in + run, count - run, ring);
    written_ += count;
    Newest().count += count;
    sinceChange_ += count;
    ahead_ = 0;
}

void MDelayWarp::MoveTo(int ringSize) noexcept {
    written_ -= base_;
    base_ = 0;
    ringSize_ = ringSize;
}
