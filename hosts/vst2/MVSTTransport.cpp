// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MVSTTransport.h"

#include <cmath>

namespace Vst2 {

namespace {

constexpr double kShortestCycle = 1e-20;  // quarter notes

void TakeFinite(double from, double& to) noexcept {
    if (std::isfinite(from)) to = from;
}

void TakePositive(VstInt32 from, int& to) noexcept {
    if (from > 0) to = from;
}

/// Bars start on a beat; hosts that add up lengths miss it by a little.
double OntoBeat(double barStart, int denominator) noexcept {
    const int beatsPerQuarter = denominator / 4;
    if (beatsPerQuarter <= 1) return std::floor(barStart + 0.5);
    return std::floor(beatsPerQuarter * barStart + 0.5) / beatsPerQuarter;
}

}  // namespace

void MVSTTransport::UpdatePosition(const VstTimeInfo& time, MTransport& transport) noexcept {
    song_ = kNoSong;  // the next block may have another
    TakeFinite(time.ppqPos, transport.songPosition);
    if (time.tempo > 0) TakeFinite(time.tempo, transport.tempo);
    TakePositive(time.timeSigNumerator, transport.signatureNumerator);
    TakePositive(time.timeSigDenominator, transport.signatureDenominator);
    TakeFinite(OntoBeat(time.barStartPos, transport.signatureDenominator), transport.barStart);
}

void MVSTTransport::UpdateAll(const VstTimeInfo& time, MTransport& transport) noexcept {
    UpdatePosition(time, transport);
    song_ = SongOf(time);
    const bool hasCycle = time.cycleEndPos - kShortestCycle > time.cycleStartPos &&
                          std::isfinite(time.cycleEndPos) && std::isfinite(time.cycleStartPos);
    transport.cycleStart = hasCycle ? time.cycleStartPos : -1.0;
    transport.cycleEnd = hasCycle ? time.cycleEndPos : -1.0;

    const double moved = transport.songPosition - lastPosition_;
    const bool hasJumped = IsOn(time) && moved * moved > kLongestMove * kLongestMove;
    SetPlaying(IsOn(time), hasJumped, transport);
}

}  // namespace Vst2
