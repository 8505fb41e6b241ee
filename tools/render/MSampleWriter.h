// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/MAudioFile.h"

#include <cstdint>
#include <random>
#include <span>
#include <vector>

/// Brings samples into the numbers of a sample format on their way to a file: rounding, dither,
/// limits. The dither is seeded, so that equal renders are equal files.
class MSampleWriter {
public:
    /// Writes to `file`, which must outlive this and stand in `format`. `withDither` adds
    /// triangular noise of two steps' width before rounding. [main]
    MSampleWriter(MAudioWriter& file, MSampleFormat format, bool withDither);

    /// Appends interleaved `samples` (full scale 1). Throws as the file does. [main]
    void Write(std::span<const float> samples);

    /// Samples so far that were beyond the format's range and stand at its limit. [main]
    std::int64_t ClippedSamples() const { return clippedSamples_; }

private:
    int Quantise(double sample);
    double Dither();

    MAudioWriter& file_;
    MSampleFormat format_;
    bool withDither_;
    std::int64_t clippedSamples_ = 0;
    std::mt19937 random_;
    std::vector<int> numbers_;
};
