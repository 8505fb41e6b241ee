// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MVSTTransport.h"

#include <cmath>
#include <limits>

namespace Vst2 {

namespace {

constexpr double kShortestCycle = 1e-20;  // quarter notes

// What a song may have, for fields that the host has not flagged.
constexpr double kFarthestPosition = 1e6;  // quarter notes: a week and more at any usual tempo
constexpr double kSlowestTempo = 20;
constexpr double kFastestTempo = 999;
constexpr VstInt32 kLargestSignature = 64;

bool Has(const VstTimeInfo& time, VstTimeInfoFlags field) noexcept {
    return (time.flags & field) != 0;
}

bool IsPosition(double quarters, bool isFlagged) noexcept {
    return std::isfinite(quarters) && (isFlagged || std::abs(quarters) < kFarthestPosition);
}

bool IsTempo(double tempo, bool isFlagged) noexcept {
    if (isFlagged) return std::isfinite(tempo) && tempo > 0;
    return tempo >= kSlowestTempo && tempo <= kFastestTempo;
}

bool IsSignature(VstInt32 numerator, VstInt32 denominator, bool isFlagged) noexcept {
    const VstInt32 largest = isFlagged ? std::numeric_limits<VstInt32>::max() : kLargestSignature;
    return numerator > 0 && denominator > 0 && numerator <= largest && denominator <= largest;
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
    if (IsPosition(time.ppqPos, Has(time, kVstPpqPosValid))) transport.songPosition = time.ppqPos;
    if (IsTempo(time.tempo, Has(time, kVstTempoValid))) transport.tempo = time.tempo;
    if (IsSignature(time.timeSigNumerator, time.timeSigDenominator, Has(time, kVstTimeSigValid))) {
        transport.signatureNumerator = time.timeSigNumerator;
        transport.signatureDenominator = time.timeSigDenominator;
    }
    const double barStart = OntoBeat(time.barStartPos, transport.signatureDenominator);
    if (IsPosition(barStart, Has(time, kVstBarsValid))) transport.barStart = barStart;
}

void MVSTTransport::UpdateCycle(const VstTimeInfo& time, MTransport& transport) noexcept {
    const bool isFlagged = Has(time, kVstCyclePosValid);
    const bool arePositions =
        IsPosition(time.cycleStartPos, isFlagged) && IsPosition(time.cycleEndPos, isFlagged);
    if (!arePositions && !isFlagged) return;
    const bool hasCycle = arePositions && time.cycleEndPos - kShortestCycle > time.cycleStartPos;
    transport.cycleStart = hasCycle ? time.cycleStartPos : -1.0;
    transport.cycleEnd = hasCycle ? time.cycleEndPos : -1.0;
}

void MVSTTransport::UpdateAll(const VstTimeInfo& time, int frames, MTransport& transport) noexcept {
    UpdatePosition(time, transport);
    UpdateCycle(time, transport);
    song_ = SongOf(time);

    const double moved = transport.songPosition - lastPosition_;
    const bool hasJumped = IsOn(time) && moved * moved > kLongestMove * kLongestMove;
    SetPlaying(IsOn(time), hasJumped, transport);
    if (!IsOn(time) || !IsLong(frames, transport)) return;
    const double perQuarter = longFrames_.load(std::memory_order_relaxed) / kLongestMove;
    lastPosition_ += frames * transport.tempo / perQuarter;
}

}  // namespace Vst2
