// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string_view>

/// What belongs together when random settings are made: the user may keep any of these.
enum class MRandomGroup : unsigned { Taps, Sync, Filters, Character, Bands, Mix };

/// Which random values of a parameter make music.
struct MRandomRule {
    /// The record's key in the state; one without its number stands for all that have one.
    std::string_view key;
    MRandomGroup group;
    /// Limits in the record's own units; indices of a choice, 0 and 1 of a switch.
    double low;
    double high;
    /// How often it is drawn, 0..1; otherwise the parameter gets its default.
    double chance = 1;
};
