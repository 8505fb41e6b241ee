// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/VstOpcodes.h"
#include "hosts/vst2/VstTypes.h"
#include "plugin/MTransport.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace Vst2 {

/// Takes over what a host says about its transport. Numbers that cannot be meant (not finite, a
/// tempo or a time signature of nothing) leave what was known before. Hosts are to flag the fields
/// that they have filled, but some that fill all flag none: a field without a flag counts when it
/// holds what a song may have, since it may as well hold anything. One thread only.
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

    /// The rate of the blocks to come, in hertz. [any]
    void SetSampleRate(int sampleRate) noexcept {
        longFrames_.store(kLongestMove * kSecondsPerMinute * sampleRate, std::memory_order_relaxed);
    }

    /// Everything, at the start of a block of `frames`. A move of more than two quarter notes while
    /// playing is a jump; the block that jumps leaves the playing state as it was. After a block
    /// that is longer than that itself, as in a render, the move counts from its end. [audio]
    void Update(const VstTimeInfo& time, int frames, MTransport& transport) noexcept {
        const double moved = time.ppqPos - lastPosition_;
        const bool goesOn = moved * moved <= kLongestMove * kLongestMove;  // hence is finite
        if (!goesOn || IsLong(frames, transport) || !IsSameSong(time)) [[unlikely]] {
            UpdateAll(time, frames, transport);
            return;
        }
        transport.songPosition = time.ppqPos;
        SetPlaying(IsOn(time), false, transport);
    }

    /// Position, tempo, time signature and start of the bar alone. [audio]
    void UpdatePosition(const VstTimeInfo& time, MTransport& transport) noexcept;

private:
    static constexpr double kLongestMove = 2.0;  // quarter notes between blocks without a jump
    static constexpr double kSecondsPerMinute = 60;

    /// What hardly ever changes while a song plays, as the host has it, bit by bit: one comparison
    /// tells that there is nothing to look at. A block finds little of this code in the processor's
    /// caches, so every instruction that it can do without counts.
    using Song = std::array<std::uint64_t, 6>;
    static constexpr std::uint64_t kNaN = ~std::uint64_t{0};
    /// None that a host could mean: nothing in it is a number, the signature is -1 / -1.
    static constexpr Song kNoSong = {kNaN, kNaN, kNaN, kNaN, kNaN, kNaN};

    static Song SongOf(const VstTimeInfo& time) noexcept {
        return {std::bit_cast<std::uint64_t>(time.tempo),
                std::bit_cast<std::uint64_t>(time.barStartPos),
                std::bit_cast<std::uint64_t>(time.cycleStartPos),
                std::bit_cast<std::uint64_t>(time.cycleEndPos),
                std::bit_cast<std::uint64_t>(
                    std::array{time.timeSigNumerator, time.timeSigDenominator}),
                static_cast<std::uint64_t>(time.flags & kValidFields)};
    }
    bool IsSameSong(const VstTimeInfo& time) const noexcept {
        const Song song = SongOf(time);
        std::uint64_t difference = 0;
        for (std::size_t i = 0; i < song.size(); ++i) difference |= song[i] ^ song_[i];
        return difference == 0;
    }
    static bool IsOn(const VstTimeInfo& time) noexcept {
        return (time.flags & kVstTransportPlaying) != 0;
    }
    bool IsLong(int frames, const MTransport& transport) const noexcept {
        return frames * transport.tempo > longFrames_.load(std::memory_order_relaxed);
    }
    void SetPlaying(bool isOn, bool hasJumped, MTransport& transport) noexcept {
        if (isOn) lastPosition_ = transport.songPosition;
        const bool isPlaying = hasJumped ? transport.isPlaying : isOn;
        transport.playStateChanged = isPlaying != transport.isPlaying;
        transport.isPlaying = isPlaying;
        transport.hasJumped = hasJumped;
        transport.isValid = true;
    }
    static void UpdateCycle(const VstTimeInfo& time, MTransport& transport) noexcept;
    [[gnu::cold]] void UpdateAll(const VstTimeInfo& time, int frames,
                                 MTransport& transport) noexcept;

    static constexpr VstInt32 kValidFields =
        kVstPpqPosValid | kVstTempoValid | kVstBarsValid | kVstCyclePosValid | kVstTimeSigValid;

    double lastPosition_ = 0;  // quarter notes: of the last block that played or, if long, its end
    // Frames that last kLongestMove, times the tempo; at the rate of a host that sets none.
    std::atomic<double> longFrames_{kLongestMove * kSecondsPerMinute * 44100};
    Song song_ = kNoSong;
};

}  // namespace Vst2
