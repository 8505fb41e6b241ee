// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MTailWatch.h"

#include <algorithm>
#include <cmath>

MTailWatch::MTailWatch(const MTail& tail, int sampleRate)
    : tail_(tail),
      maxFrames_(tail.kind == MTail::Kind::None ? 0 : std::llround(tail.seconds * sampleRate)),
      quietFramesNeeded_(std::llround(kQuietSeconds * sampleRate)),
      quietFrames_(quietFramesNeeded_) {}

void MTailWatch::Note(int audibleFrames, int frames, bool isTail) {
    quietFrames_ = audibleFrames == 0 ? quietFrames_ + frames : frames - audibleFrames;
    if (isTail) tailFrames_ += frames;
}

bool MTailWatch::IsOver(bool processorIsSilent) const {
    if (tailFrames_ >= maxFrames_) return true;
    return tail_.kind == MTail::Kind::Auto && processorIsSilent &&
           quietFrames_ >= quietFramesNeeded_;
}

std::int64_t MTailWatch::KeptFrames() const {
    if (tail_.kind != MTail::Kind::Auto) return tailFrames_;
    const std::int64_t surplus = std::max<std::int64_t>(quietFrames_ - quietFramesNeeded_, 0);
    return std::max<std::int64_t>(tailFrames_ - surplus, 0);
}

bool MTailWatch::WasCut() const {
    return tail_.kind == MTail::Kind::Auto && tailFrames_ >= maxFrames_ &&
           quietFrames_ < quietFramesNeeded_;
}
