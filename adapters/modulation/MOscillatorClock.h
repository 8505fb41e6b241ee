// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MLFOSettings.h"
#include "adapters/modulation/MModulationPiece.h"

#include <cstdint>

/// Where an oscillator stands in its cycles.
///
/// While the host plays, a synchronised one stands where the song does, so that every pass and
/// every render has the same modulation. Any other counts samples from where it last began, and
/// stands at the same place however they were cut.
class MOscillatorClock {
public:
    /// Begins at phase 0. [audio]
    void Restart() noexcept;
    /// The phase in cycles, that of the settings included, at the end of `piece`. [audio]
    double Advance(const MModulatorSettings& settings, const MModulationPiece& piece) noexcept;

private:
    double FreePerSample(double rate, int sampleRate) noexcept;
    void Count(double perSample, int count) noexcept;
    void FollowSong(const MModulatorSettings& settings, const MModulationPiece& piece) noexcept;

    double start_ = 0;          // cycles, where the counting began
    std::int64_t samples_ = 0;  // counted since
    double perSample_ = 0;      // cycles

    // What a free oscillator's rate comes to, kept: the division is all that it takes time for.
    double rate_ = 0;  // hertz
    int sampleRate_ = 1;
    double freePerSample_ = 0;
};
