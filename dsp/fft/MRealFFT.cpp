// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/fft/MRealFFT.h"

#include "core/MException.h"

#include <fftw3.h>

#include <cstddef>
#include <memory>
#include <new>

namespace {

fftwf_plan Plan(void* plan) noexcept { return static_cast<fftwf_plan>(plan); }

fftwf_complex* Complex(MRealFFT::Buffer& buffer) noexcept {
    // A complex number of the package is an array of two floats.
    return reinterpret_cast<fftwf_complex*>(buffer.memory.data());
}

}  // namespace

struct MRealFFT::Ending {
    ~Ending() {
        if (users_.load() > 0) return;
        fftwf_destroy_plan(Plan(transforms.forward_));
        fftwf_destroy_plan(Plan(transforms.inverse_));
        fftwf_cleanup();  // the package is linked in: there are no plans but ours
    }

    const MRealFFT& transforms;
};

const MRealFFT& MRealFFT::Instance() {
    // Stands in the library's own memory and is never destroyed, since it may outlast this file's
    // other objects. The package's planner is not thread-safe; the guard of the static object is
    // the lock.
    alignas(MRealFFT) static std::array<std::byte, sizeof(MRealFFT)> place;
    static const MRealFFT* const instance = new (place.data()) MRealFFT;
    static const Ending ending{*instance};
    return *instance;
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
