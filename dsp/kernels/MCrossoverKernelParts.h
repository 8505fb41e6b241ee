// SPDX-License-Identifier: GPL-3.0-or-later
// The kernels of the crossovers that stand in files of their own; see MCrossoverKernels for what
// they do.
#pragma once

#include "dsp/kernels/MCrossoverKernels.h"

#ifndef M_KERNEL_NAMESPACE
#error "Only the kernel sources may include this header."
#endif

namespace M_KERNEL_NAMESPACE {

void Interleave(const double* left, const double* right, double* frames, int count) noexcept;
void Separate(const double* frames, double* left, double* right, int count) noexcept;
void InterleaveClean(const float* left, const float* right, float ceiling, double* frames,
                     int count) noexcept;
void SeparateScaled(const double* frames, const MLinearRamp& gain, float* left, float* right,
                    int count) noexcept;

void MultiplySpectra(const float* a, const float* b, float gain, float* product, int size) noexcept;
void AddSpectra(const float* a, const float* b, float* sum, int count) noexcept;

}  // namespace M_KERNEL_NAMESPACE
