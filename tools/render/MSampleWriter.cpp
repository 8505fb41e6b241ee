// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MSampleWriter.h"

#include <algorithm>
#include <cmath>

MSampleWriter::MSampleWriter(MAudioWriter& file, MSampleFormat format, bool withDither)
    : file_(file), format_(format), withDither_(withDither) {}

void MSampleWriter::Write(std::span<const float> samples) {
    if (format_ == MSampleFormat::Float32) {
        file_.Write(samples);
        return;
    }
    numbers_.resize(samples.size());
    std::transform(samples.begin(), samples.end(), numbers_.begin(),
                   [this](float sample) { return Quantise(static_cast<double>(sample)); });
    file_.Write(std::span<const int>(numbers_));
}

int MSampleWriter::Quantise(double sample) {
    const double steps = std::ldexp(1.0, static_cast<int>(format_) - 1);  // of full scale
    if (std::abs(sample) > 1) ++clippedSamples_;
    const double scaled = sample * steps + (withDither_ ? Dither() : 0);
    return static_cast<int>(std::clamp(std::round(scaled), -steps, steps - 1));
}

double MSampleWriter::Dither() {
    // The standard's distributions differ between libraries; the generator's numbers do not.
    const auto first = static_cast<double>(random_());
    const auto second = static_cast<double>(random_());
    return (first - second) / 4294967296.0;
}
