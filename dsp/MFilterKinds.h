// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBiquad.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The filters that a user may choose from; the editor will offer them. The numbers and keys are
/// stored in settings and never change.
enum class MFilterKind : std::int32_t {
    Peak = 0,
    LowShelf = 1,
    HighShelf = 2,
    LowPass = 3,
    HighPass = 4,
    LowPass6 = 5,
    HighPass6 = 6,
    BandPass = 7,
};

/// One row of the table of filters.
struct MFilterKindInfo {
    MFilterKind kind;
    std::string_view key;              ///< what settings store
    std::string_view displayName;      ///< what a user sees, without the slope
    int slopePerOrder;                 ///< decibels per octave; 0 for kinds without a slope
    std::optional<BiquadType> design;  ///< empty for the first-order kinds, which are no biquads
};

namespace MFilterKinds {

/// Every kind, in the order of its numbers. [any]
std::span<const MFilterKindInfo> All() noexcept;

/// The kind of that key, upper and lower case told apart; null for any other text. [any]
const MFilterKindInfo* Find(std::string_view key) noexcept;

/// "Low-pass(24 dB/oct)" for the low-pass of order 2 without a suffix, "Peak" for a peak of any
/// order. `suffix` stands between the name and the slope. [main]
std::string DisplayText(const MFilterKindInfo& kind, int order, std::string_view suffix = {});

}  // namespace MFilterKinds
