// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/delay/MDelaySettings.h"

#include <random>

/// The records' defaults: one tap of 100 ms in the middle, Classic, no filters, no saturation.
MDelaySettings DefaultDelaySettings();

/// Settings anywhere in their ranges, biased towards the corners where things break: lines of a few
/// samples, both taps, feedback up to `highestFeedback` (square root of the amplitude), filters in
/// either place. Ramps start where `previous` ended.
MDelaySettings RandomDelaySettings(std::mt19937& generator, const MDelaySettings& previous,
                                   double highestFeedback);

/// The same settings with every ramp arrived.
MDelaySettings Arrived(const MDelaySettings& settings);
