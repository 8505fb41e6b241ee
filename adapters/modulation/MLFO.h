// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MLFOSettings.h"
#include "adapters/modulation/MModulationPiece.h"
#include "adapters/modulation/MOscillatorClock.h"
#include "dsp/modulation/MADSR.h"
#include "dsp/modulation/MControlSmoother.h"
#include "dsp/modulation/MLevelFollower.h"
#include "dsp/modulation/MRandomWalk.h"

/// One modulator as it runs: settings and sound in, a value of 0..1 per piece out. Of the audio
/// thread; it allocates nothing.
class MLFO {
public:
    /// Begins anew at `sampleRate` hertz. [setup]
    void Prepare(const MModulatorSettings& settings, int sampleRate) noexcept;
    /// Lets everything begin anew, smoothing included. [audio]
    void Restart(const MModulatorSettings& settings) noexcept;

    /// The host has started to play. [audio]
    void HostStarted(const MModulatorSettings& settings) noexcept;
    /// A note begins, `velocity` 0..1, or ends. [audio]
    void NoteOn(const MModulatorSettings& settings, double velocity) noexcept;
    void NoteOff() noexcept { envelope_.NoteOff(); }

    /// Goes on by `piece`; the value, 0..1, at its end. [audio]
    double Advance(const MModulatorSettings& settings, const MModulationPiece& piece) noexcept;

private:
    void RestartCycles(const MModulatorSettings& settings) noexcept;
    double Source(const MModulatorSettings& settings, const MModulationPiece& piece) noexcept;
    double FollowLevel(const MModulatorSettings& settings, const MModulationPiece& piece) noexcept;

    MOscillatorClock clock_;
    MLevelFollower follower_;
    MADSR envelope_;
    MRandomWalk walk_;
    MControlSmoother smoother_;
    bool isSmootherSet_ = false;  // it starts where the modulator does
};
