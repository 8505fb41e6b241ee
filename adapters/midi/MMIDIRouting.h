// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/midi/MMIDISettings.h"

#include <array>
#include <cstdint>

class MAudioPlugin;

/// What the audio thread needs of the settings: plain numbers, parameters by identifier, and of the
/// assignments those that act.
struct MMIDIRouting {
    struct Controller {
        std::uint32_t identifier = 0;
        MControllerSource source;
        MControllerMapping mapping;

        bool operator==(const Controller&) const = default;
    };
    struct Note {
        std::uint32_t identifier = 0;
        MNoteMapping mapping;

        bool operator==(const Note&) const = default;
    };
    /// Assignments by their place in the settings, and which places those have that act.
    template <class Route>
    struct Table {
        std::array<Route, MMIDISettings::kAssignments> routes{};
        std::array<int, MMIDISettings::kAssignments> places{};
        int count = 0;

        void Add(int place, const Route& route) noexcept {
            routes[place] = route;
            places[count++] = place;
        }
    };

    Table<Controller> controllers;
    Table<Note> notes;
    MPresetController presetController;
    MPresetPrograms presetPrograms;
};
