// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MCrossoverKernelParts.h"
#include "dsp/kernels/MVector.h"

namespace M_KERNEL_NAMESPACE {
namespace {

#ifdef M_KERNEL_v3
inline WideFloats RealParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 0, 0, 2, 2, 4, 4, 6, 6);
}
inline WideFloats ImaginaryParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 1, 1, 3, 3, 5, 5, 7, 7);
}
inline WideFloats SwapParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6);
}
constexpr WideFloats kConjugate = {-1, 1, -1, 1, -1, 1, -1, 1};
#else
inline WideFloats RealParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 0, 0, 2, 2);
}
inline WideFloats ImaginaryParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 1, 1, 3, 3);
}
inline WideFloats SwapParts(WideFloats v) noexcept {
    return __builtin_shufflevector(v, v, 1, 0, 3, 2);
}
constexpr WideFloats kConjugate = {-1, 1, -1, 1};
#endif

}  // namespace

void MultiplySpectra(const float* a, const float* b, float gain, float* product,
                     int size) noexcept {
    const float lowest = a[0] * b[0] * gain, highest = a[1] * b[1] * gain;
    const WideFloats gains = gain - WideFloats{};
    for (int i = 0; i < size; i += kFloatWidth) {
        const WideFloats x = Load<WideFloats>(a + i), y = Load<WideFloats>(b + i);
        const WideFloats cross = ImaginaryParts(x) * SwapParts(y) * kConjugate;
        Store(product + i, (RealParts(x) * y + cross) * gains);
    }
    product[0] = lowest;
    product[1] = highest;
}

void AddSpectra(const float* a, const float* b, float* sum, int count) noexcept {
    for (int i = 0; i < count; i += kFloatWidth) {
        Store(sum + i, Load<WideFloats>(a + i) + Load<WideFloats>(b + i));
    }
}

}  // namespace M_KERNEL_NAMESPACE
