// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/fft/MRealFFT.h"
#include "dsp/fft/MWindow.h"

#include <array>
#include <span>

/// A symmetric windowed-sinc filter: linear phase, its delay half its length.
class MFIRKernel {
public:
    static constexpr int kCapacity = 2049;  // taps

    explicit MFIRKernel(MWindow window) : window_(window) {}

    /// Designs a low-pass of about `requestedLength` taps (made odd, at most kCapacity), of which
    /// the `effectiveLength` in the middle (odd, at most the length) are not 0. `windowed` off
    /// leaves the sinc as it is. `frequency` and `sampleRate` in hertz. Allocates nothing. [any]
    void DesignLowPass(double frequency, double sampleRate, int requestedLength,
                       int effectiveLength, bool windowed = true) noexcept;

    /// Makes what passed stop and what stopped pass: an impulse at the centre minus the kernel.
    /// [any]
    void Invert() noexcept;

    /// The kernel's transform, the kernel starting `delay` samples late. delay + Length() <= 4096.
    /// `work` is overwritten. [any]
    void Transform(int delay, MRealFFT::Buffer& work, MRealFFT::Buffer& spectrum) const noexcept;

    std::span<const float> Taps() const noexcept {
        return std::span(taps_).first(static_cast<std::size_t>(length_));
    }
    int Length() const noexcept { return length_; }                    // taps, odd
    int EffectiveLength() const noexcept { return effectiveLength_; }  // taps, odd
    int Delay() const noexcept { return length_ / 2; }                 // samples
    const MWindow& Window() const noexcept { return window_; }

private:
    MWindow window_;
    std::array<float, kCapacity> taps_{};
    int length_ = 1;
    int effectiveLength_ = 1;
};

/// The effective length, at most `fullLength`, that gives a kernel some 12.5 periods of
/// `frequency`, so that its edge is as steep in octaves at every frequency. Both in hertz. [any]
int LengthOfConstantSteepness(double frequency, double sampleRate, int fullLength) noexcept;
