// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MLFOSettings.h"

#include <string>
#include <string_view>

/// Reads the words for a modulator's source, such as "sine 1/4d phase 25%" or "follower attack 5 ms
/// threshold -30 dB". Throws MRenderFailure (Usage) for words that mean nothing, with those that
/// would. [main]
void MReadModulationSource(std::string_view text, MModulatorSettings& settings);

/// The names of the shapes as a text, with commas between them. [any]
std::string MListShapes();
