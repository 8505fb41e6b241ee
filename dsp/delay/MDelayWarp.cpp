// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/delay/MDelayWarp.h"

#include "dsp/kernels/MKernelSet.h"

#include <algorithm>

namespace {

constexpr int kLeastRoom = 64;  // pieces

double Steps(int length) noexcept { return static_cast<double>(length - 1); }

}  // namespace

void MDelayWarp::Reserve(int length) {
    tape_.Reserve(length);
    // A piece is a sample at least, so that short lines have room for any changes.
    pieces_.Reserve(std::clamp(length + 2, kLeastRoom, 2 * kFinest));
}

void MDelayWarp::Begin(MDelayCircle& circle) noexcept {
    length_ = circle.length;
    pieces_.Clear();
    pieces_.Push({.count = length_, .length = length_});
    tape_.Begin(circle);
    sinceChange_ = ahead_ = 0;
    base_ = 0;
    span_ = steps_ = 0;
    offset_ = 0;
    rate_ = 1;
}

void MDelayWarp::End() noexcept {
    if (IsActive()) tape_.End();
    pieces_.Clear();
}

void MDelayWarp::Free() noexcept {
    tape_.Free();
    pieces_ = {};
}

bool MDelayWarp::EndAs(MDelayCircle& circle) noexcept {
    if (!IsStraight() || !tape_.BeginsChunk(base_)) return false;
    tape_.EndAs(circle, length_);
    pieces_.Clear();
    return true;
}

bool MDelayWarp::IsTooSoon() const noexcept {
    const int count = pieces_.Back().count;
    return count > 0 && (count < length_ / kFinest || pieces_.Size() == pieces_.Room());
}

void MDelayWarp::Change(int length) noexcept {
    Anchor();
    if (IsStraight()) span_ = length_ - 1;
    if (pieces_.Back().count == 0) {
        pieces_.Back().length = length;
    } else {
        pieces_.Push({.count = 0, .length = length});
    }
    length_ = length;
    sinceChange_ = 0;
    SetRate();
}

void MDelayWarp::SetRate() noexcept { rate_ = Steps(pieces_[0].length) / Steps(length_); }

void MDelayWarp::Anchor() noexcept {
    EnterPiece();
    const double place = Place(0);
    const int whole = static_cast<int>(place);
    base_ += whole;
    span_ -= whole;
    offset_ = place - whole;
    steps_ = 0;
}

float MDelayWarp::Newest() const noexcept {
    const MDelayTape::Run run = tape_.At(tape_.Written() - 1);
    return run.samples != nullptr ? *run.samples : run.fill;
}

/// The first sample on the tape that is still needed; never beyond the piece.
std::int64_t MDelayWarp::Oldest() const noexcept {
    return IsStraight() ? base_ : base_ + std::min(static_cast<int>(Place(0)), span_);
}

/// Moves on to the piece that the next sample is read from.
void MDelayWarp::EnterPiece() noexcept {
    while (!IsStraight() && Place(0) >= span_) {
        const double beyond = Place(0) - span_;
        const double before = Steps(pieces_.Pop().length);
        base_ += span_;
        span_ = pieces_[0].count;
        steps_ = 0;
        offset_ = beyond * Steps(pieces_[0].length) / before;
        SetRate();
        if (IsStraight()) {
            // A whole number of samples; said exactly, so that roundings end here.
            base_ = tape_.Written() - length_ + ahead_;
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

void MDelayWarp::Read(float* out, int count) noexcept {
    while (count > 0) {
        EnterPiece();
        const int run = IsStraight() ? Copy(out, count) : Stretch(out, count);
        out += run;
        count -= run;
        ahead_ += run;
    }
}

int MDelayWarp::Copy(float* out, int most) noexcept {
    const MDelayTape::Run run = tape_.At(base_);
    const auto count = static_cast<int>(std::min<std::int64_t>(most, run.count));
    if (run.samples != nullptr) {
        std::copy_n(run.samples, count, out);
    } else {
        std::fill_n(out, count, run.fill);
    }
    base_ += count;
    return count;
}

int MDelayWarp::Stretch(float* out, int most) noexcept {
    const int whole = static_cast<int>(Place(0));
    const MDelayTape::Run run = tape_.At(base_ + whole);
    const MStretch stretch = {.offset = offset_, .rate = rate_, .step = steps_, .skipped = whole};
    const auto last = static_cast<int>(std::min<std::int64_t>(span_, whole + run.count - 1));
    int count = StepsBelow(last, most);
    if (count == 0) {
        // Between this run and the next. Rounding may lead past the newest sample by next to
        // nothing.
        const MDelayTape::Run next = tape_.At(std::min(base_ + whole + 1, tape_.Written() - 1));
        const float pair[] = {run.samples != nullptr ? *run.samples : run.fill,
                              next.samples != nullptr ? *next.samples : next.fill};
        Kernels().delay->stretch(stretch, pair, out, count = 1);
    } else if (run.samples != nullptr) {
        Kernels().delay->stretch(stretch, run.samples, out, count);
    } else {
        std::fill_n(out, count, run.fill);
    }
    steps_ += count;
    return count;
}

void MDelayWarp::Write(const float* in, int count) {
    // Roundings may lead back across the border between two pieces.
    constexpr int kMargin = 2;
    tape_.DropBefore(Oldest() - kMargin);
    tape_.Append(in, count);
    pieces_.Back().count += count;
    sinceChange_ += count;
    ahead_ = 0;
}
