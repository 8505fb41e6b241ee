// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MBandSetup.h"

#include <optional>
#include <string>
#include <vector>

/// The command line's words about bands, as typed.
struct MBandArguments {
    std::optional<int> bands = {};
    std::optional<std::string> crossover = {};
    std::optional<int> slope = {};         ///< dB per octave
    std::vector<std::string> limits = {};  ///< frequencies
    std::vector<int> mute = {};            ///< bands, from 1
    std::vector<int> solo = {};
    std::vector<int> bypassBands = {};

    /// Whether nothing was said.
    bool IsEmpty() const;
    /// What they come to. Throws MRenderFailure (Usage) when they do not go together. [main]
    MBandSetup Read() const;
};
