// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MDelayKernelParts.h"
#include "dsp/kernels/MVector.h"

namespace M_KERNEL_NAMESPACE {
namespace {

/// Where the lanes from sample `i` on are read.
template <class D>
inline D PlaceOf(const MStretch& s, int i) noexcept {
    return s.offset + (static_cast<double>(s.step + i) + Lanes<D>::Iota()) * s.rate;
}

inline int WholePlace(const MStretch& s, int i) noexcept {
    return static_cast<int>(PlaceOf<double>(s, i));
}

/// Whole vectors of neighbours: samples whose places are all equally many whole samples ahead.
inline int StretchRun(const MStretch& s, const float* from, float* to, int i, int end) noexcept {
    const int ahead = WholePlace(s, i) - i;
    const float* const source = from + (ahead - s.skipped);
    for (; i + kWidth <= end; i += kWidth) {
        const Doubles whole = static_cast<double>(i + ahead) + Lanes<Doubles>::Iota();
        const Doubles f = PlaceOf<Doubles>(s, i) - whole;
        Store(to + i, Narrow((1.0 - f) * LoadWide(source + i) + f * LoadWide(source + i + 1)));
    }
    return i;
}

/// Vectors put together sample by sample, then the odd ones.
inline void StretchScattered(const MStretch& s, const float* from, float* to, int i,
                             int end) noexcept {
    for (; i + kWidth <= end; i += kWidth) {
        const Doubles place = PlaceOf<Doubles>(s, i);
        Doubles whole{};
        Floats before{}, after{};
        for (int lane = 0; lane < kWidth; ++lane) {
            const int j = static_cast<int>(place[lane]);
            whole[lane] = j;
            before[lane] = from[j - s.skipped];
            after[lane] = from[j - s.skipped + 1];
        }
        const Doubles f = place - whole;
        Store(to + i, Narrow((1.0 - f) * Widen(before) + f * Widen(after)));
    }
    for (; i < end; ++i) {
        const double place = PlaceOf<double>(s, i);
        const int j = static_cast<int>(place);
        const double f = place - j;
        to[i] = static_cast<float>((1.0 - f) * static_cast<double>(from[j - s.skipped]) +
                                   f * static_cast<double>(from[j - s.skipped + 1]));
    }
}

/// The end of the samples from `i` on that are as many whole samples ahead as `i` is.
inline int RunEnd(const MStretch& s, int i, int count) noexcept {
    const int ahead = WholePlace(s, i) - i;
    int inside = i, outside = count;
    if (WholePlace(s, count - 1) - (count - 1) == ahead) return count;
    while (outside - inside > 1) {
        const int middle = inside + (outside - inside) / 2;
        (WholePlace(s, middle) - middle == ahead ? inside : outside) = middle;
    }
    return outside;
}

}  // namespace

void Stretch(const MStretch& stretch, const float* from, float* to, int count) {
    // Near the original speed there is a slip of one sample only now and then.
    const bool hasRuns = stretch.rate > 0.97 && stretch.rate < 1.03;
    int i = 0;
    while (hasRuns && i < count) {
        const int end = RunEnd(stretch, i, count);
        i = StretchRun(stretch, from, to, i, end);
        StretchScattered(stretch, from, to, i, end);
        i = end;
    }
    StretchScattered(stretch, from, to, i, count);
}

}  // namespace M_KERNEL_NAMESPACE
