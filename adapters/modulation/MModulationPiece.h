// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MTransport.h"

/// A stretch of sound that modulators are advanced over. Pointers are borrowed for the call.
struct MModulationPiece {
    const MTransport* transport = nullptr;    ///< at the start of the piece; never null
    int count = 0;                            ///< samples
    int sampleRate = 44100;                   ///< hertz
    const float* const* inputs = nullptr;     ///< [inputCount][count]
    int inputCount = 0;                       ///< channels
    const float* const* sideChain = nullptr;  ///< [sideChainCount][count]; null without one
    int sideChainCount = 0;                   ///< channels
};
