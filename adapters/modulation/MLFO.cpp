// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MLFO.h"

#include <algorithm>

namespace {

/// Depth and offset. What swings does so around the middle; what rises from silence keeps its foot
/// at the bottom, so that a lower depth never lifts a parameter that should rest.
double Shape(const MModulatorSettings& settings, double value) noexcept {
    const bool swings = settings.source == MModulatorSource::Oscillator ||
                        settings.source == MModulatorSource::RandomWalk;
    const double foot = swings ? 0.5 : 0;
    const double shaped = foot + (value - foot) * settings.depth + settings.offset;
    const double held = std::clamp(shaped, 0.0, 1.0);
    return settings.isInverted ? 1 - held : held;
}

}  // namespace

void MLFO::Prepare(const MModulatorSettings& settings, int sampleRate) noexcept {
    follower_.Prepare(sampleRate);
    Restart(settings);
}

void MLFO::Restart(const MModulatorSettings& settings) noexcept {
    follower_.Reset();
    envelope_.Reset();
    isSmootherSet_ = false;
    RestartCycles(settings);
}

void MLFO::RestartCycles(const MModulatorSettings& settings) noexcept {
    clock_.Restart();
    walk_.Restart(settings.walk.seed);
}

void MLFO::HostStarted(const MModulatorSettings& settings) noexcept {
    if (settings.restart == MModulatorRestart::HostStart) RestartCycles(settings);
}

void MLFO::NoteOn(const MModulatorSettings& settings, double velocity) noexcept {
    envelope_.NoteOn(velocity);
    if (settings.restart == MModulatorRestart::Note) RestartCycles(settings);
}

double MLFO::Advance(const MModulatorSettings& settings, const MModulationPiece& piece) noexcept {
    const double value = Shape(settings, Source(settings, piece));
    if (!isSmootherSet_) smoother_.Reset(value);
    isSmootherSet_ = true;
    return smoother_.Advance(value, piece.count, piece.sampleRate, settings.smoothing);
}

double MLFO::Source(const MModulatorSettings& settings, const MModulationPiece& piece) noexcept {
    switch (settings.source) {
        case MModulatorSource::Follower:
            return FollowLevel(settings, piece);
        case MModulatorSource::Envelope:
            return envelope_.Advance(piece.count, piece.sampleRate, settings.envelope);
        case MModulatorSource::RandomWalk:
            return walk_.Advance(piece.count, piece.sampleRate, settings.walk);
        case MModulatorSource::Oscillator:
            break;
    }
    return MEvaluateShape(settings.shape, clock_.Advance(settings, piece));
}

double MLFO::FollowLevel(const MModulatorSettings& settings,
                         const MModulationPiece& piece) noexcept {
    const bool hears =
        settings.followerInput == MFollowerInput::SideChain && piece.sideChain != nullptr;
    return hears
               ? follower_.Advance(piece.sideChain, piece.sideChainCount, piece.count,
                                   settings.follower)
               : follower_.Advance(piece.inputs, piece.inputCount, piece.count, settings.follower);
}
