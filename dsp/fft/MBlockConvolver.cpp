// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/fft/MBlockConvolver.h"

#include "dsp/kernels/MKernelSet.h"

#include <algorithm>
#include <cassert>

void MBlockConvolver::Prime(int phase) {
    assert(phase >= 0 && phase < kBlock);
    if (tail_ == nullptr) tail_ = std::make_unique<Tail>();
    tail_->fill(0);
    // Once as full as they can ever be, so that no later call allocates.
    input_.Clear();
    input_.AppendSilence(kBlock);
    output_.Clear();
    output_.AppendSilence(2 * kBlock);

    input_.Clear();
    input_.AppendSilence(phase);
    output_.Clear();
    output_.AppendSilence(kBlock - phase);
}

void MBlockConvolver::TransformInput(MRealFFT::Buffer& work, MRealFFT::Buffer& spectrum) {
    input_.Take(work.Values().first<kBlock>());
    std::fill(work.memory.begin() + kBlock, work.memory.end(), 0.0f);
    MRealFFT::Instance().Forward(work, spectrum);
}

void MBlockConvolver::Convolve(const MRealFFT::Buffer& spectrum, const MRealFFT::Buffer& kernel,
                               float gain, MRealFFT::Buffer& work, MRealFFT::Buffer& product) {
    const MCrossoverKernels& kernels = *Kernels().crossover;
    kernels.multiplySpectra(spectrum.memory.data(), kernel.memory.data(), gain * MRealFFT::kScale,
                            product.memory.data(), MRealFFT::kSize);
    MRealFFT::Instance().Inverse(product, work);
    kernels.add(work.memory.data(), tail_->data(), work.memory.data(), kBlock);
    std::copy_n(work.memory.begin() + kBlock, kBlock, tail_->begin());
    output_.Append(work.Values().first<kBlock>());
}
