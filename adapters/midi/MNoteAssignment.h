// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MMIDITarget.h"

/// Which keys a note assignment listens to, and what they do.
struct MNoteMapping {
    static constexpr int kAnyNote = -1;

    /// What a key does. The numbers are stored.
    enum class Mode {
        Gate = 0,      ///< one position while a key is down, the other when all are up
        Velocity = 1,  ///< the position follows the velocity, and stays
        Toggle = 2     ///< each key moves to the other of the two positions
    };

    int note = kAnyNote;  ///< 0..127, or kAnyNote
    int channel = 0;      ///< 1..16, 0 for all of them
    Mode mode = Mode::Gate;
    double value = 0;     ///< position, 0..1, when released, and for no velocity
    double maxValue = 1;  ///< position, 0..1, while pressed, and for full velocity

    bool operator==(const MNoteMapping&) const = default;
};

/// Notes that move one parameter.
struct MNoteAssignment {
    bool isEnabled = false;
    MMIDITarget target;
    MNoteMapping mapping;

    bool operator==(const MNoteAssignment&) const = default;

    /// With everything out of range, or no number, put to its default. [any]
    MNoteAssignment Corrected() const;

    /// Keys of the node: "Enabled", those of the target, "Note", "Channel", "Mode", "Value",
    /// "MaxValue". [main]
    void Store(MXMLNode node, const MArchive& archive);
};
