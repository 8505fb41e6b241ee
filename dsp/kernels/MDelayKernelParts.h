// SPDX-License-Identifier: GPL-3.0-or-later
// The kernels of the delay that stand in files of their own; see MDelayKernels for what they do.
#pragma once

#include "dsp/kernels/MDelayKernels.h"

#ifndef M_KERNEL_NAMESPACE
#error "Only the kernel sources may include this header."
#endif

namespace M_KERNEL_NAMESPACE {

void FilterLoop(const MFilterPair& filters, double limit, double* const* samples, int channels,
                int count);
void FilterInput(const MFilterPair& filters, float* const* samples, int channels, int count);
void Saturate(const MSaturationSettings& settings, double* samples, int count);

void Stretch(const MStretch& stretch, const float* from, float* to, int count);

}  // namespace M_KERNEL_NAMESPACE
