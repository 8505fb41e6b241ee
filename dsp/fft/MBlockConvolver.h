// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/fft/MRealFFT.h"
#include "dsp/fft/MSampleQueue.h"

#include <memory>
#include <span>

/// Convolves one channel with kernels of up to 2049 taps, in blocks of 2048 samples that are
/// overlapped and added.
///
/// Samples go in and come out in any portions. Priming puts one block of silence in front, and then
/// what comes out is exactly 2048 samples late (plus the kernel's own delay) and never runs short
/// as long as as much is taken as was put in.
class MBlockConvolver {
public:
    static constexpr int kBlock = MRealFFT::kSize / 2;  // samples

    /// Starts from silence, `phase` samples (0 .. kBlock - 1) into a block: one block of silence
    /// waits in input and output together. Allocates on the first call only. [audio]
    void Prime(int phase = 0);

    /// Samples that may go in before a block is full, at least 1. [audio]
    int Space() const noexcept { return kBlock - input_.Count(); }

    /// Puts samples in, at most Space(). [audio]
    void Append(std::span<const float> samples) { input_.Append(samples); }

    /// Whether a block is full and must be convolved before more goes in. [audio]
    bool IsFull() const noexcept { return input_.Count() >= kBlock; }

    /// Takes the full block out of the input and transforms it into `spectrum`; `work` is
    /// overwritten. [audio]
    void TransformInput(MRealFFT::Buffer& work, MRealFFT::Buffer& spectrum);

    /// Takes the full block out of the input, because its transform is known already. [audio]
    void DropInput() noexcept { input_.Clear(); }

    /// Appends the block of that transform, convolved with `kernel` and multiplied by `gain`, to
    /// the output. `work` and `product` are overwritten. [audio]
    void Convolve(const MRealFFT::Buffer& spectrum, const MRealFFT::Buffer& kernel, float gain,
                  MRealFFT::Buffer& work, MRealFFT::Buffer& product);

    /// Takes samples out. Throws MException "Not enough data in the queue." when fewer wait.
    /// [audio]
    void Take(std::span<float> samples) { output_.Take(samples); }

private:
    using Tail = std::array<float, kBlock>;

    MSampleQueue input_, output_;
    std::unique_ptr<Tail> tail_;  // what the blocks so far still add to the next one
};
