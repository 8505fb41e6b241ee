// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MText.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

/// Enumerations that the filters and the crossovers share.
namespace MAudioFilters {

/// The slope of the analog crossover. The numbers are stored in settings and never change.
enum class CrossoverGeneralizedType : std::int32_t {
    Slope12 = 0,
    Slope24 = 1,
    Slope48 = 2,
    Slope72 = 3,
    Slope96 = 4,
    Slope120 = 5,
};

/// The texts that a user sees, in the order of the numbers.
inline constexpr std::array<std::string_view, 6> kCrossoverSlopeNames = {
    "12dB/oct", "24dB/oct", "48dB/oct", "72dB/oct", "96dB/oct", "120dB/oct"};

/// The slope of that name, upper and lower case alike and blanks around it ignored; empty for any
/// other text. [any]
inline std::optional<CrossoverGeneralizedType> FindCrossoverSlope(std::string_view name) {
    const std::string_view wanted = MText::Trim(name);
    for (std::size_t i = 0; i < kCrossoverSlopeNames.size(); ++i) {
        if (MText::EqualsIgnoringCase(kCrossoverSlopeNames[i], wanted)) {
            return static_cast<CrossoverGeneralizedType>(i);
        }
    }
    return std::nullopt;
}

}  // namespace MAudioFilters
