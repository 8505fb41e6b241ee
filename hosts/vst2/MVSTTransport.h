// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/VstOpcodes.h"
#include "hosts/vst2/VstTypes.h"
#include "plugin/MTransport.h"

#include <limits>

namespace Vst2 {

/// Takes over what a host says about its transport. Numbers that cannot be meant (not finite, a
/// tempo or a time signature of nothing) leave what was known before. One thread only.
class MVSTTransport {
public:
    /// What Update wants of the host.
    static constexpr VstInt32 kFields = kVstTransportChanged | kVstTransportPlaying |
                                        kVstTransportCycleActive | kVstAutomationWriting |
                                        kVstAutomationReading | kVstPpqPosValid | kVstTempoValid |
                                        kVstBarsValid | kVstCyclePosValid | kVstTimeSigValid;
    /// What UpdatePosition wants.
    static constexpr VstInt32 kPositionFields =
        kVstPpqPosValid | kVstTempoValid | kVstBarsValid | kVstTimeSigValid;

    /// Everything, at the start of a block. A move of more than two quarter notes while playing is
    /// a jump; the block that jumps leaves the playing state as it was. [audio]
    void Update(const VstTimeInfo& time, MTransport& transport) noexcept {
        if (SongOf(time) != song_) UpdateAll(time, transport);
        TakePosition(time, transport);
        const bool isOn = (time.flags & kVstTransportPlaying) != 0;
        const double moved = transport.songPosition - lastPosition_;
        const bool hasJumped = isOn && moved * moved > kLongestMove * kLongestMove;
        if (isOn) lastPosition_ = transport.songPosition;
        const bool isPlaying = hasJumped ? transport.isPlaying : isOn;
        transport.playStateChanged = isPlaying != transport.isPlaying;
        transport.isPlaying = isPlaying;
        transport.hasJumped = hasJumped;
        transport.isValid = true;
    }

    /// Position, tempo, time signature and start of the bar alone. [audio]
    void UpdatePosition(const VstTimeInfo& time, MTransport& transport) noexcept;

private:
    static constexpr double kLongestMove = 2.0;  // quarter notes between blocks without a jump

    /// What hardly ever changes while a song plays, as the host has it. Without a change nothing of
    /// it is looked at: a block finds little of this code in the processor's caches, and what it
    /// can do without it need not wait for.
    struct Song {
        double tempo = std::numeric_limits<double>::quiet_NaN();  // equals nothing
        double barStart = 0;
        double cycleStart = 0;
        double cycleEnd = 0;
        VstInt32 numerator = 0;
        VstInt32 denominator = 0;

        bool operator==(const Song&) const = default;
    };

    static Song SongOf(const VstTimeInfo& time) noexcept {
        return {time.tempo,       time.barStartPos,      time.cycleStartPos,
                time.cycleEndPos, time.timeSigNumerator, time.timeSigDenominator};
    }
    static void TakePosition(const VstTimeInfo& time, MTransport& transport) noexcept {
        if (time.ppqPos - time.ppqPos == 0) transport.songPosition = time.ppqPos;  // is finite
    }
    [[gnu::cold]] void UpdateAll(const VstTimeInfo& time, MTransport& transport) noexcept;

    double lastPosition_ = 0;  // quarter notes, of the last block that played
    Song song_;
};

}  // namespace Vst2
