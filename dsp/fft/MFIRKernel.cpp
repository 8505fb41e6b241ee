// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/fft/MFIRKernel.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <numbers>

int LengthOfConstantSteepness(double frequency, double sampleRate, int fullLength) noexcept {
    // The rule for Kaiser windows, length = (attenuation - 8) / (14.36 * transition width), for a
    // transition as wide as the frequency itself.
    const double length = 180 / (frequency / sampleRate * 14.357078426905355);
    if (length >= fullLength) return fullLength;
    return std::min(static_cast<int>(length) | 1, fullLength);
}

void MFIRKernel::DesignLowPass(double frequency, double sampleRate, int requestedLength,
                               int effectiveLength, bool windowed) noexcept {
    length_ = std::min(requestedLength | 1, kCapacity);
    effectiveLength_ = std::min(effectiveLength, length_);
    assert(effectiveLength_ >= 1 && effectiveLength_ % 2 == 1);
    taps_.fill(0);

    const int centre = length_ / 2;
    const double cutoff = 2 * frequency / sampleRate;
    taps_[centre] = static_cast<float>(cutoff);
    for (int k = 1; k <= effectiveLength_ / 2; ++k) {
        const double angle = k * std::numbers::pi;
        const double weight = windowed ? window_.Weight(k, effectiveLength_) : 1;
        const float tap = static_cast<float>(std::sin(angle * cutoff) / angle * weight);
        taps_[centre + k] = tap;
        taps_[centre - k] = tap;
    }
}

void MFIRKernel::Invert() noexcept {
    for (float& tap : taps_) tap = -tap;
    taps_[length_ / 2] += 1.0f;
}

void MFIRKernel::Transform(int delay, MRealFFT::Buffer& work,
                           MRealFFT::Buffer& spectrum) const noexcept {
    assert(delay >= 0 && delay + length_ <= MRealFFT::kSize);
    work.memory.fill(0);
    std::copy_n(taps_.begin(), length_, work.memory.begin() + delay);
    MRealFFT::Instance().Forward(work, spectrum);
}
