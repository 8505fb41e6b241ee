// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MGrowingBuffer.h"
#include "dsp/delay/MSaturationCurve.h"
#include "dsp/kernels/MKernelSet.h"
#include "effects/delay/MDelayFilters.h"
#include "effects/delay/MDelayFreeze.h"
#include "effects/delay/MDelaySettings.h"
#include "effects/delay/MDelayTap.h"

#include <memory>

/// Nothing in a loop gets louder than this: far above any sound (+180 dB), far enough below the
/// largest float that its square, and the square of that, are still finite numbers for whoever
/// reads them.
inline constexpr float kLoopCeiling = 1e9f;

/// The two-tap delay as numbers: settings and samples in, samples out. It knows neither records nor
/// locks. One instance serves one effect.
class MDelayEngine {
public:
    explicit MDelayEngine(const MKernelSet& kernels = Kernels()) noexcept
        : kernels_(*kernels.delay) {}

    /// Starts from silence for 1 to 8 `channels` at `sampleRate` hertz; an Update must follow.
    /// Blocks of up to `longestBlock` samples, and of 2048 in any case, take no memory. [setup]
    void Prepare(int channels, int sampleRate, int longestBlock = 0);

    /// Follows the settings that cost more than reading them: switches, lengths, filters. Does
    /// nothing before the first Prepare. Allocates when a tap is switched on
    /// that has had no memory yet. [audio]
    void Update(const MDelaySettings& settings);

    /// The lines that settings ask for and that are not there yet.
    struct Needs {
        int channels = 0;
        int sampleRate = 0;  // hertz
        bool taps[kDelayTaps] = {};

        bool HasAny() const noexcept { return taps[0] || taps[1]; }
    };
    /// Lines that were made apart from the engine, so that its Update need not.
    struct Spare {
        Needs needs;
        std::unique_ptr<MDelayTapLines> lines[kDelayTaps];
    };
    Needs NeedsOf(const MDelaySettings& settings) const noexcept;  // [audio]
    /// Makes the lines for `needs`. Takes microseconds, as their memory is not touched. [any]
    static Spare MakeSpare(const MDelaySettings& settings, const Needs& needs);
    /// Takes the lines that still fit and leaves the others. [audio]
    void Adopt(Spare& spare) noexcept;

    /// One block of the prepared channels: `inputs` and `outputs` are [channels][count] and may
    /// overlap each other. The outputs get the echoes alone. `tempo` in quarter notes per minute.
    /// Allocates only when `count` exceeds every block so far or a synchronised line grows beyond
    /// all it has held; does nothing before the first Prepare. [audio]
    void Process(const MDelaySettings& settings, double tempo, const float* const* inputs,
                 float* const* outputs, int count);

    /// Whether the lines of every enabled tap have fallen silent. [audio]
    bool IsTailSilent() const noexcept;

    int Channels() const noexcept { return channels_; }      // 0 before the first Prepare
    int SampleRate() const noexcept { return sampleRate_; }  // hertz

private:
    /// Where one tap's sound comes from and goes to.
    struct TapRoute {
        const MSaturationSettings* saturation;  // null while there is none
        const float* const* inputs;
        float* const* outputs;
        bool adds;  // to what the outputs hold
    };

    void TakeInputs(const float* const* inputs, float** cleaned, int count);
    void ProcessTap(MDelayTap& tap, const MDelayTapSettings& settings, const TapRoute& route,
                    int count);
    void FillFreeze(bool isInterleaved, float** positions, int count);

    const MDelayKernels& kernels_;
    int channels_ = 0;
    int sampleRate_ = 0;  // hertz
    MDelayTap taps_[kDelayTaps];
    MDelayFilters filters_;
    MDelayFilterStates inputStates_;
    MSaturationCurve saturationCurve_;
    MDelayFreeze freeze_;
    MGrowingBuffer<float> inputScratch_[kDelayMaxChannels];
    MGrowingBuffer<float> freezeScratch_;  // positions, channel after channel
    MGrowingBuffer<float> lineScratch_;    // the history of a line that is being settled
};
