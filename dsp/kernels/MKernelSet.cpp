// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MKernelSet.h"

#include <cstddef>

namespace m_x86_64_v2 {
extern const MDelayKernels kDelayKernels;
extern const MCrossoverKernels kCrossoverKernels;
extern const MBandKernels kBandKernels;
extern const MControlKernels kControlKernels;
}  // namespace m_x86_64_v2
namespace m_x86_64_v3 {
extern const MDelayKernels kDelayKernels;
extern const MCrossoverKernels kCrossoverKernels;
extern const MBandKernels kBandKernels;
extern const MControlKernels kControlKernels;
}  // namespace m_x86_64_v3

namespace {

const MKernelSet kSets[] = {
    {"x86-64-v2", &m_x86_64_v2::kDelayKernels, &m_x86_64_v2::kCrossoverKernels,
     &m_x86_64_v2::kBandKernels, &m_x86_64_v2::kControlKernels},
    {"x86-64-v3", &m_x86_64_v3::kDelayKernels, &m_x86_64_v3::kCrossoverKernels,
     &m_x86_64_v3::kBandKernels, &m_x86_64_v3::kControlKernels},
};

std::size_t CountRunnable() noexcept {
    __builtin_cpu_init();
    // The level x86-64-v3 also promises BMI, F16C, LZCNT and MOVBE; every processor with these four
    // has them.
    const bool runsV3 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
                        __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
    return runsV3 ? 2 : 1;
}

}  // namespace

std::span<const MKernelSet> RunnableKernels() noexcept {
    static const std::size_t count = CountRunnable();
    return std::span(kSets).first(count);
}

const MKernelSet& Kernels() noexcept {
    static const MKernelSet& best = RunnableKernels().back();
    return best;
}
