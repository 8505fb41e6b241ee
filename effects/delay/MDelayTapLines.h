// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/delay/MDelayLine.h"
#include "effects/delay/MDelaySettings.h"

/// The memory of one tap: a line with feedback per channel and the two lines before them that delay
/// one side against the other.
struct MDelayTapLines {
    MDelayLine lines[kDelayMaxChannels];
    MDelayLine predelays[2];

    /// Makes room at once for all that the Delay record and the offsets can ask for at
    /// `sampleRate` hertz, so that moving them does not allocate. Memory that stays unused costs no
    /// physical page. [any]
    void Reserve(int channels, int sampleRate);
    /// The same for the note of `settings` at any tempo, but for notes of half a minute and more:
    /// those grow when they are heard. [any]
    void ReserveNote(const MDelayTapSettings& settings, int channels, int sampleRate);

    /// Forgets all sound. [audio]
    void Clear() noexcept;
};

/// Half a note of `settings` in samples at `tempo` quarter notes per minute, held within 20 to 999;
/// 0 where `tempo` is no tempo. Halved on purpose: a synchronised tap repeats twice per note. [any]
int DelayNoteSamples(const MDelayTapSettings& settings, int sampleRate, double tempo) noexcept;
