// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// What the host says about its transport at the start of a block.
struct MTransport {
    double tempo = 120;            ///< beats (quarter notes) per minute
    double songPosition = 0;       ///< quarter notes from the start of the song
    double barStart = 0;           ///< quarter notes from the start of the song
    double cycleStart = -1;        ///< quarter notes; -1 without a cycle
    double cycleEnd = -1;          ///< quarter notes; -1 without a cycle
    int signatureNumerator = 4;    ///< beats of a bar
    int signatureDenominator = 4;  ///< note value of a beat
    bool isValid = false;          ///< whether the host has answered at all
    bool isPlaying = false;
    bool hasJumped = false;         ///< the position is not where the last block ended
    bool playStateChanged = false;  ///< playing or stopped since the last block
};
