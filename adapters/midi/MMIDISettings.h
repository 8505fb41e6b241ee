// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MControllerAssignment.h"
#include "adapters/midi/MNoteAssignment.h"

#include <array>

/// The controller that steps through the presets: 64 and above asks for the next one, 1..63 for the
/// previous one. It asks once, until it comes to 0 or into the other half: a pedal or button that
/// goes back to 0 steps once per press.
struct MPresetController {
    bool isEnabled = false;
    int controller = 0;  ///< 0..127
    int channel = 0;     ///< 1..16, 0 for all of them

    bool operator==(const MPresetController&) const = default;
};

/// Program changes that choose presets: program n the n-th one, from 0, in the order in which a
/// preset controller steps through them. Off at first, since sequencers send them at the start of a
/// song whether anybody wants them or not.
struct MPresetPrograms {
    bool isEnabled = false;
    int channel = 0;  ///< 1..16, 0 for all of them

    bool operator==(const MPresetPrograms&) const = default;
};

/// All that a user sets about MIDI.
struct MMIDISettings {
    static constexpr int kAssignments = 32;

    bool areControllersEnabled = true;
    bool areNoteControllersEnabled = true;
    MPresetController presetController;
    MPresetPrograms presetPrograms;
    std::array<MControllerAssignment, kAssignments> controllers;
    std::array<MNoteAssignment, kAssignments> notes;

    bool operator==(const MMIDISettings&) const = default;

    /// With everything out of range put to its default. [main]
    void Correct();

    /// Keys of the node: "ControllersEnabled", "NoteControllersEnabled"; its children
    /// "PreviousNextPresetController" ("Enabled", "Controller", "Channel"), "PresetPrograms"
    /// ("Enabled", "Channel"), "Controllers" with "Controller" elements and "NoteControllers" with
    /// "NoteController" elements, as many as are in use. Reading such a list replaces all
    /// assignments; elements after the 32nd are ignored.
    /// [main]
    void Store(MXMLNode node, const MArchive& archive);
};
