// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MOscillatorClock.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kSecondsPerMinute = 60;

double CyclesPerQuarter(const MModulatorSettings& settings) noexcept {
    return 0.25 / MTempoSync::WholeNotes(settings.syncLength, settings.syncType);
}

/// Whether the song says where a synchronised oscillator stands.
bool IsSongs(const MModulatorSettings& settings, const MTransport& transport) noexcept {
    return transport.isPlaying && !settings.isOneShot &&
           settings.restart != MModulatorRestart::Note && std::isfinite(transport.songPosition);
}

}  // namespace

void MOscillatorClock::Restart() noexcept {
    start_ = 0;
    samples_ = 0;
}

void MOscillatorClock::Count(double perSample, int count) noexcept {
    if (perSample != perSample_) {
        start_ += static_cast<double>(samples_) * perSample_;
        samples_ = 0;
        perSample_ = perSample;
    }
    samples_ += count;
}

double MOscillatorClock::FreePerSample(double rate, int sampleRate) noexcept {
    if (rate != rate_ || sampleRate != sampleRate_) {
        rate_ = rate;
        sampleRate_ = sampleRate;
        freePerSample_ = rate / sampleRate;
    }
    return freePerSample_;
}

void MOscillatorClock::FollowSong(const MModulatorSettings& settings,
                                  const MModulationPiece& piece) noexcept {
    const MTransport& transport = *piece.transport;
    const double quartersPerSample =
        transport.tempo > 0 ? transport.tempo / (kSecondsPerMinute * piece.sampleRate) : 0;
    const double cyclesPerQuarter = CyclesPerQuarter(settings);
    Count(quartersPerSample * cyclesPerQuarter, piece.count);
    if (!IsSongs(settings, transport)) return;
    // A host that stops lets the oscillator go on from here.
    start_ = (transport.songPosition + quartersPerSample * piece.count) * cyclesPerQuarter;
    samples_ = 0;
}

double MOscillatorClock::Advance(const MModulatorSettings& settings,
                                 const MModulationPiece& piece) noexcept {
    if (settings.isSynchronised) {
        FollowSong(settings, piece);
    } else {
        Count(FreePerSample(settings.rate, piece.sampleRate), piece.count);
    }
    const double cycles = start_ + static_cast<double>(samples_) * perSample_;
    constexpr double kEnd = 1 - 1e-9;  // what a whole cycle would be is the start of the next
    return settings.phase + (settings.isOneShot ? std::min(cycles, kEnd) : cycles);
}
