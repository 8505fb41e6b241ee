// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MGrowingBuffer.h"
#include "dsp/crossover/MAnalogCrossoverDesign.h"

#include <array>

/// What the sound left behind in the filters of one channel, band by band, and the plain way of
/// running them: every band through all of its filters, nothing shared between the bands.
///
/// A redesign carries over the memory of every filter that goes on running. Filters that a larger
/// band count or a steeper slope adds start from silence, not from what they heard when they last
/// ran.
class MAnalogChannelState {
public:
    /// Writes band `band` of `input` into `output`, which may be the same memory. The bands of a
    /// block must be asked for in ascending order with the same input and length, because each band
    /// from 2 on continues the all-pass chain of the one before. Allocates only when `count`
    /// exceeds every count so far. [audio]
    void ProcessBand(const MAnalogCrossoverDesign& design, int band, const double* input,
                     double* output, int count);

    /// Forgets the sound. [audio]
    void Reset() noexcept;

private:
    /// One filter and its repeated application.
    using Twice = std::array<MBiquadCascadeState, 2>;
    using Points = std::array<Twice, kMaxCrossoverPoints>;

    void Follow(const MAnalogCrossoverShape& shape) noexcept;
    void SilenceWhatIsNew() noexcept;
    void CarryOver(const MAnalogCrossoverShape& shape, int point) noexcept;
    void ContinueAllPasses(const MAnalogCrossoverDesign& design, int band, const double* input,
                           int count);

    Points highPass_;
    std::array<Points, kMaxCrossoverBands>
        lowPass_;  // a point's low-pass serves every band below it
    std::array<MBiquadCascadeState, kMaxCrossoverPoints> allPass_;
    MGrowingBuffer<double> scratch_;  // the all-pass chain between the bands of a block

    MAnalogCrossoverShape shape_;  // what ran last
};
