// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/presets/MRandomRule.h"

/// Random delays that one would keep: mostly in time, and with loops that die away. At the most
/// feedback (-5.2 dB), saturation (a gain of 1.43 for quiet sounds) and resonance (0.5 dB for each
/// filter) a loop still loses a little in every round.
inline constexpr MRandomRule kDelayRandomRules[] = {
    {"DelayMode", MRandomGroup::Character, 0, 1, 0.5},
    {"FilterMode", MRandomGroup::Filters, 0, 1},
    {"MinFrequency", MRandomGroup::Filters, 1.7, 2.8, 0.7},  // 50 to 630 Hz
    {"MaxFrequency", MRandomGroup::Filters, 3.2, 4.2, 0.8},  // 1.6 to 16 kHz
    {"Resonance", MRandomGroup::Filters, 0.25, 0.8},
    {"Saturation", MRandomGroup::Character, 0.02, 0.2, 0.35},
    {"tap", MRandomGroup::Taps, 1, 1},
    {"tap1", MRandomGroup::Taps, 1, 1, 0.4},
    {"feedback", MRandomGroup::Taps, 0.3, 0.74},  // -21 to -5.2 dB
    {"gain", MRandomGroup::Taps, 0.5, 0.7},       // -12 to -6.2 dB
    {"panorama", MRandomGroup::Taps, -0.7, 0.7, 0.8},
    {"delay", MRandomGroup::Taps, 0.03, 0.48},
    {"LeftOffset", MRandomGroup::Taps, 0, 0.015, 0.25},
    {"RightOffset", MRandomGroup::Taps, 0, 0.015, 0.25},
    {"mode", MRandomGroup::Taps, 1, 2},
    {"Freeze", MRandomGroup::Taps, 0, 0},
    {"sync", MRandomGroup::Sync, 1, 1, 0.75},
    {"synclength__", MRandomGroup::Sync, 7, 9},    // 1/2 to 1/8
    {"synctype", MRandomGroup::Sync, 1, 2, 0.45},  // triplets or dotted
};
