// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MOscillatorClock.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kSecondsPerMinute = 60;

double CyclesPerQuarter(const MModulatorSettings& settings) noexcept {
    return 0.25 / MTempoSync::WholeNotes(settings.syncLength, settings.syncType);
}

/// Whether the song says where the oscillator stands.
bool IsSongs(const MModulatorSettings& settings, const MTransport& transport) noexcept {
    return settings.isSynchronised && transport.isPlaying && !settings.isOneShot &&
           settings.restart != MModulatorRestart::Note && std::isfinite(transport.songPosition);
}

}  // namespace

void MOscillatorClock::Restart() noexcept {
    start_ = 0;
    samples_ = 0;
}

double MOscillatorClock::Advance(const MModulatorSettings& settings,
                                 const MModulationPiece& piece) noexcept {
    const MTransport& transport = *piece.transport;
    const double quartersPerSample =
        transport.tempo > 0 ? transport.tempo / (kSecondsPerMinute * piece.sampleRate) : 0;
    const double perSample = settings.isSynchronised
                                 ? quartersPerSample * CyclesPerQuarter(settings)
                                 : settings.rate / piece.sampleRate;
    if (perSample != perSample_) {
        start_ += static_cast<double>(samples_) * perSample_;
        samples_ = 0;
        perSample_ = perSample;
    }
    samples_ += piece.count;
    if (IsSongs(settings, transport)) {
        // A host that stops lets the oscillator go on from here.
        start_ =
            (transport.songPosition + quartersPerSample * piece.count) * CyclesPerQuarter(settings);
        samples_ = 0;
    }
    const double cycles = start_ + static_cast<double>(samples_) * perSample_;
    constexpr double kEnd = 1 - 1e-9;  // what a whole cycle would be is the start of the next
    return settings.phase + (settings.isOneShot ? std::min(cycles, kEnd) : cycles);
}
