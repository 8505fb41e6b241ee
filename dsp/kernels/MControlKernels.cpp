// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MControlKernels.h"

#include "dsp/kernels/MVector.h"

namespace M_KERNEL_NAMESPACE {
namespace {

using Wholes = std::int64_t __attribute__((vector_size(kWidth * 8)));

/// The numbers at `places`.
inline Doubles Gather(const double* numbers, const int* places) noexcept {
#ifdef M_KERNEL_v3
    return Doubles{numbers[places[0]], numbers[places[1]], numbers[places[2]], numbers[places[3]]};
#else
    return Doubles{numbers[places[0]], numbers[places[1]]};
#endif
}

void Follow(const MControlWays& given, const double* sources, double* values, int count) noexcept {
    const MControlWays ways = given;
    for (int i = 0; i < count; i += kWidth) {
        const Doubles slope = Load<Doubles>(ways.slope + i);
        const Doubles wanted =
            Load<Doubles>(ways.foot + i) + slope * Gather(sources, ways.source + i);
        Store(values + i, Smaller(Larger(wanted, Load<Doubles>(ways.lowest + i)),
                                  Load<Doubles>(ways.highest + i)));
    }
}

/// 2^x for |x| <= 0.5: the series, whose next term would be below 2e-16.
inline Doubles PowerOfTwo(Doubles x) noexcept {
    const Doubles x2 = x * x, x4 = x2 * x2;
    const Doubles first =
        (1.0 + 0.6931471805599453 * x) + x2 * (0.2402265069591007 + 0.055504108664821576 * x);
    const Doubles second = (0.009618129107628477 + 0.0013333558146428441 * x) +
                           x2 * (0.00015403530393381606 + 1.5252733804059838e-05 * x);
    const Doubles third = (1.3215486790144305e-06 + 1.0178086009239696e-07 * x) +
                          x2 * (7.054911620801121e-09 + 4.44553827187081e-10 * x);
    constexpr double kLast = 2.5678435993488196e-11;
    return (first + x4 * second) + (x4 * x4) * (third + kLast * x4);
}

void Amplitudes(const double* decibels, double* amplitudes, int count) noexcept {
    constexpr double kOctavesPerDecibel = 0.16609640474436813;  // log2(10) / 20
    // Adding it leaves no room for decimals: the sum's last bits are the nearest whole number.
    const Doubles rounder = 6755399441055744.0 - Doubles{};  // 1.5 * 2^52
    for (int i = 0; i < count; i += kWidth) {
        const Doubles octaves = Load<Doubles>(decibels + i) * kOctavesPerDecibel;
        const Doubles rounded = octaves + rounder;
        const Doubles part = PowerOfTwo(octaves - (rounded - rounder));
        // The whole octaves go into the exponent; what else there is in the bits is shifted out.
        Wholes exponent, bits;
        __builtin_memcpy(&exponent, &rounded, sizeof exponent);
        __builtin_memcpy(&bits, &part, sizeof bits);
        Store(amplitudes + i, bits + (exponent << 52));
    }
}

}  // namespace

extern const MControlKernels kControlKernels;
const MControlKernels kControlKernels = {
    .follow = Follow,
    .amplitudes = Amplitudes,
};

}  // namespace M_KERNEL_NAMESPACE
