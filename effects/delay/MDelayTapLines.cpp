// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayTapLines.h"

#include <algorithm>

namespace {

constexpr double kLongestPredelay = 0.2;         // seconds: both offsets at their ends
constexpr double kSlowest = 20, kFastest = 999;  // quarter notes per minute

constexpr int kMostReserved = 1'500'000;  // samples: half a minute at 48 kHz

/// Room for `seconds` with every rounding on the safe side.
int RoomFor(double seconds, int sampleRate) { return static_cast<int>(seconds * sampleRate) + 2; }

}  // namespace

void MDelayTapLines::Reserve(int channels, int sampleRate) {
    const int room = RoomFor(kDelayLongest, sampleRate);
    for (int channel = 0; channel < channels; ++channel) lines[channel].Reserve(room);
    if (channels != 2) return;
    for (MDelayLine& predelay : predelays) predelay.Reserve(RoomFor(kLongestPredelay, sampleRate));
}

void MDelayTapLines::ReserveNote(const MDelayTapSettings& settings, int channels, int sampleRate) {
    const int longest = DelayNoteSamples(settings, sampleRate, kSlowest);
    for (int channel = 0; channel < channels; ++channel) {
        lines[channel].Reserve(std::min(longest, kMostReserved));
    }
}

void MDelayTapLines::Clear() noexcept {
    for (MDelayLine& line : lines) line.Clear();
    for (MDelayLine& predelay : predelays) predelay.Clear();
}

int DelayNoteSamples(const MDelayTapSettings& settings, int sampleRate, double tempo) noexcept {
    if (!(tempo > 0)) return 0;
    const double held = std::clamp(tempo, kSlowest, kFastest);
    return MTempoSync::PeriodSamples(settings.syncLength, settings.syncType, held, sampleRate) / 2;
}
