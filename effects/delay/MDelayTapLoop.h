// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MDelayKernels.h"
#include "effects/delay/MDelayFilters.h"
#include "effects/delay/MDelaySettings.h"
#include "effects/delay/MDelayTap.h"

/// One block of one tap.
///
/// The loop goes in pieces no longer than the line: every echo of such a piece was stored before
/// the piece began, so that only the filters are left to run sample after sample and all else
/// vectorises. The settings choose among kernels once per piece, never within one.
class MDelayTapLoop {
public:
    /// What the tap shares with the rest of the effect during the block.
    struct Surroundings {
        const MDelayKernels& kernels;
        const MDelayFilters& filters;
        const MSaturationSettings* saturation;  ///< null while there is none
        const float* const* freeze;  ///< positions [channels][samples]; null while not frozen
        bool adds;                   ///< to what the outputs hold; otherwise they are overwritten
    };

    /// `ramps` over the whole block. All references must outlive the loop. [audio]
    MDelayTapLoop(MDelayTap& tap, MDelayMode mode, const MLoopRamps& ramps,
                  const Surroundings& surroundings) noexcept;

    /// Runs `count` samples of every channel and gives the echoes to `outputs`, which may be the
    /// `inputs` as well. Both [channels][samples]. [audio]
    void Run(const float* const* inputs, float* const* outputs, int count) noexcept;

private:
    static constexpr int kHead = 8;     // samples: whole vectors of every instruction set
    static constexpr int kPiece = 256;  // samples: what the first-level cache holds with ease

    /// One or two channels of one piece, in memory that stays in the cache.
    struct Piece {
        int channel;   // the first one
        int channels;  // 1 or 2
        int start;     // of the block
        int count;
        const float* input[2];
        float* line[2];  // the samples that the piece reads and replaces
        float moving[2][kPiece];
        float delayed[2][kPiece];
        float echo[2][kPiece];
        double loop[2][kPiece];
    };

    void RunChannels(Piece& piece, const float* const* inputs, float* const* outputs,
                     int count) noexcept;
    void TakeInput(Piece& piece, const float* const* inputs) noexcept;
    void RunLoop(Piece& piece) noexcept;
    void MixLoop(Piece& piece) noexcept;
    void PassEchoesOn(const Piece& piece, float* const* outputs) const noexcept;

    bool IsDirect() const noexcept;
    bool IsPlain() const noexcept;
    void RunPlain(Piece& piece, const float* const* inputs, float* const* outputs) noexcept;
    void RunPanned(Piece& piece, float* const* outputs) noexcept;

    MDelayTap& tap_;
    const Surroundings surroundings_;
    const bool isStereo_;
    const bool isPingPong_;
    const MLoopMix mix_;
    MLoopRamps ramps_;
};
