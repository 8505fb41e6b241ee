// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MBiquadCoefficients.h"
#include "dsp/kernels/MLinearRamp.h"

/// The hot loops of the delay. Samples of lines and buffers are floats, the arithmetic is in
/// doubles; `count` is at least 0 and no pointers need an alignment. All are [audio].

/// How input and echo make the sample that goes round the loop.
enum class MLoopMix {
    Classic,  ///< input + feedback * echo: the first echo does not depend on the feedback
    Default,  ///< (input + echo) * feedback: it does
};

/// The ramps of one piece of a block; sample i of the piece is sample `first` + i of the ramps.
struct MLoopRamps {
    MLinearRamp feedback;
    MLinearRamp gain;
    MLinearRamp panorama;
    int first = 0;
};

/// A loop of a stereo tap whose echoes go to the output by the pan law.
struct MPannedLoop {
    MLoopMix mix = MLoopMix::Classic;
    MLoopRamps ramps;
    bool adds = false;  ///< to what the outputs hold already
};

/// A loop whose echoes go straight to the output, sample i of a call being sample `first` + i of
/// the ramps.
struct MPlainLoop {
    MLoopMix mix = MLoopMix::Classic;
    MLinearRamp feedback;
    MLinearRamp factor;  ///< from echo to output
    int first = 0;
    bool adds = false;  ///< to what the output holds already
};

/// Two sections one after the other; an absent one is null. The states are those of one or two
/// channels, side by side.
struct MFilterPair {
    const MBiquadCoefficients* first = nullptr;
    const MBiquadCoefficients* second = nullptr;
    MBiquadState* firstStates = nullptr;
    MBiquadState* secondStates = nullptr;
};

/// A saturation that is tanh(innerScale * |x|) * outerScale below 1 and 1 from there on, with an
/// even component: output = (1 - amount) x + amount (r + even (r - x)^2).
struct MSaturationSettings {
    double innerScale = 1;
    double outerScale = 1;
    double even = 0;
    double amount = 0;
};

/// Places that lie evenly: sample i is read at offset + (step + i) * rate. What is read begins with
/// the sample at place `skipped`; no place is below it.
struct MStretch {
    double offset = 0;
    double rate = 1;
    int step = 0;
    int skipped = 0;
};

struct MDelayKernels {
    /// out = in, a number that is not finite taken as 0 and the rest limited to +-`ceiling`.
    void (*copyClean)(const float* in, float* out, float ceiling, int count);

    /// Reads the echoes out of the line and puts the loop's next samples, limited to +-`ceiling`,
    /// in their place.
    void (*exchange)(MLoopMix mix, const MLoopRamps& ramps, const float* input, float* line,
                     float* echo, float ceiling, int count);
    /// The same with the echoes' way to the output in the same pass: output = factor * echo, or
    /// output += factor * echo. The usual case of a tap in the middle.
    void (*exchangeAndOutput)(const MPlainLoop& loop, const float* input, float* line,
                              float* output, float ceiling, int count);
    /// The same for both sides, with the echoes' way to the outputs by the pan law in the same
    /// pass; the ramps may move.
    void (*exchangePanned)(const MPannedLoop& loop, const float* const input[2],
                           float* const line[2], float* const output[2], float ceiling, int count);
    /// loop = the mix of input and echo.
    void (*mixLoop)(MLoopMix mix, const MLoopRamps& ramps, const float* input, const float* echo,
                    double* loop, int count);
    /// Pans the input pair and feeds each side from the other side's echo.
    void (*mixPingPong)(const MLoopRamps& ramps, const float* const input[2],
                        const float* const echo[2], double* const loop[2], int count);

    /// Runs one or two channels through the sections; each section's output, not its memory, is
    /// limited to +-`limit`. `samples` is in place.
    void (*filterLoop)(const MFilterPair& filters, double limit, double* const* samples,
                       int channels, int count);
    /// The same on single-precision samples without a limit.
    void (*filterInput)(const MFilterPair& filters, float* const* samples, int channels, int count);

    void (*saturate)(const MSaturationSettings& settings, double* samples, int count);
    /// loop = (1 - position) loop + position echo.
    void (*freeze)(const float* position, const float* echo, double* loop, int count);
    /// line = loop, limited to +-`ceiling`.
    void (*store)(const double* loop, float* line, float ceiling, int count);

    /// output += the echoes, mixed by the pan law.
    void (*addPanned)(const MLoopRamps& ramps, const float* const echo[2], float* const output[2],
                      int count);
    /// output += gain * echo.
    void (*addScaled)(const MLoopRamps& ramps, const float* echo, float* output, int count);
    /// output += echo.
    void (*add)(const float* echo, float* output, int count);

    /// Reads `count` samples at the places of `stretch`, interpolated linearly; `to` must not
    /// overlap what is read.
    void (*stretch)(const MStretch& stretch, const float* from, float* to, int count);
};
