// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Times in seconds; zero or less jumps.
struct MADSRSettings {
    double attack = 0.01;
    double decay = 0.1;
    double sustain = 0.5;  ///< 0..1 of the peak
    double release = 0.2;
    double velocityAmount = 0;  ///< 0..1: how far the velocity lowers the peak, and sustain with it
};

/// An envelope of straight lines, each of which starts at the present level, takes its whole time
/// and may end anywhere within a piece. Changed settings bend the line that is running; nothing but
/// a time of zero makes a jump. [audio]
class MADSR {
public:
    /// A key went down, `velocity` 0..1: attack from the present level on.
    void NoteOn(double velocity) noexcept;
    /// The key went up: release from the present level on. Without effect when none was down.
    void NoteOff() noexcept;
    /// Silent at once.
    void Reset() noexcept { *this = {}; }

    /// Goes `count` samples on; the level at their end, 0..1.
    double Advance(int count, int sampleRate, const MADSRSettings& settings) noexcept;

private:
    enum class Stage { Idle, Attack, Decay, Sustain, Release };

    double RunLine(double seconds, double length, double target, Stage next) noexcept;
    void Hold(double seconds, double decay, double target) noexcept;

    Stage stage_ = Stage::Idle;
    double level_ = 0;
    double velocity_ = 1;
    double done_ = 0;  // 0..1 of the stage's line
};
