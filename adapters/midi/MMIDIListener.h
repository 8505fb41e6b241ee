// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Who wants to know of notes: envelopes, and what starts anew with each note. Channels are 1..16,
/// notes 0..127, velocities 0..1. Every note that goes on goes off again. [audio]
class MMIDIListener {
public:
    virtual void NoteOn(int channel, int note, double velocity) noexcept = 0;
    virtual void NoteOff(int channel, int note) noexcept = 0;

protected:
    ~MMIDIListener() = default;
};
