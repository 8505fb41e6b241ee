// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MRealFFT.h"

#include "core/MException.h"

#include <fftw3.h>

#include <memory>

namespace {

fftwf_plan Plan(void* plan) noexcept { return static_cast<fftwf_plan>(plan); }

fftwf_complex* Complex(MRealFFT::Buffer& buffer) noexcept {
    // A complex number of the package is an array of two floats.
    return reinterpret_cast<fftwf_complex*>(buffer.memory.data());
}

}  // namespace

const MRealFFT& MRealFFT::Instance() {
    // The package's planner is not thread-safe; the guard of the static object is the lock.
    static const MRealFFT instance;
    return instance;
}

MRealFFT::MRealFFT() {
    const auto time = std::make_unique<Buffer>();
    const auto bins = std::make_unique<Buffer>();
    forward_ = fftwf_plan_dft_r2c_1d(kSize, time->memory.data(), Complex(*bins),
                                     FFTW_ESTIMATE | FFTW_PRESERVE_INPUT);
    inverse_ = fftwf_plan_dft_c2r_1d(kSize, Complex(*bins), time->memory.data(), FFTW_ESTIMATE);
    if (forward_ == nullptr || inverse_ == nullptr) {
        throw MException("The Fourier transform could not be prepared.");
    }
}

void MRealFFT::Forward(const Buffer& samples, Buffer& spectrum) const noexcept {
    // The package takes its input without const, and the plan keeps it as it is.
    float* const input = const_cast<float*>(samples.memory.data());
    fftwf_execute_dft_r2c(Plan(forward_), input, Complex(spectrum));
    spectrum.memory[1] = spectrum.memory[kSize];
}

void MRealFFT::Inverse(Buffer& spectrum, Buffer& samples) const noexcept {
    spectrum.memory[kSize] = spectrum.memory[1];
    spectrum.memory[1] = 0;
    spectrum.memory[kSize + 1] = 0;
    fftwf_execute_dft_c2r(Plan(inverse_), Complex(spectrum), samples.memory.data());
}
