// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

/// How long to go on after the input has ended.
struct MTail {
    enum class Kind { None, Seconds, Auto };

    Kind kind = Kind::Auto;
    double seconds = 60;  ///< the length itself, or the ceiling of an automatic one
};

/// Decides when a tail has ended and how much of it is worth keeping.
///
/// An automatic tail ends when the processor has nothing left and the output has been inaudible for
/// a while. Both matter: there may be long gaps between echoes, and what is left in the processor
/// may be far too soft to hear long before it is gone.
class MTailWatch {
public:
    /// Output below this peak counts as inaudible (-120 dBFS).
    static constexpr float kAudiblePeak = 1e-6f;
    /// Quiet that an automatic tail needs at its end, and keeps, in seconds.
    static constexpr double kQuietSeconds = 0.25;

    MTailWatch(const MTail& tail, int sampleRate);

    /// Frames that the tail may have at most. [main]
    std::int64_t MaxFrames() const { return maxFrames_; }

    /// Notes `frames` more frames of output, before or after the input's end, of which the first
    /// `audibleFrames` reach up to the last audible one. [main]
    void Note(int audibleFrames, int frames, bool isTail);
    /// Whether the tail ends here, given whether the processor has fallen silent. [main]
    bool IsOver(bool processorIsSilent) const;

    /// Frames of the tail so far. [main]
    std::int64_t TailFrames() const { return tailFrames_; }
    /// Frames of the tail that are worth keeping. [main]
    std::int64_t KeptFrames() const;
    /// Whether an automatic tail was still sounding at its ceiling. [main]
    bool WasCut() const;

private:
    MTail tail_;
    std::int64_t maxFrames_;
    std::int64_t quietFramesNeeded_;
    std::int64_t quietFrames_;  // inaudible frames up to here; it was quiet before the start
    std::int64_t tailFrames_ = 0;
};
