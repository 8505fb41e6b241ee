// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MBandKernels.h"
#include "dsp/kernels/MControlKernels.h"
#include "dsp/kernels/MCrossoverKernels.h"
#include "dsp/kernels/MDelayKernels.h"

#include <span>

/// The hot loops of one instruction set. Every set gives the same bits for the same input.
struct MKernelSet {
    const char* name;  ///< "x86-64-v2" or "x86-64-v3"
    const MDelayKernels* delay;
    const MCrossoverKernels* crossover;
    const MBandKernels* bands;
    const MControlKernels* controls;
};

/// The fastest set that this machine runs; chosen once, at load time. [any]
const MKernelSet& Kernels() noexcept;

/// Every set that this machine runs, the plainest first. [any]
std::span<const MKernelSet> RunnableKernels() noexcept;
