// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string_view>

namespace Vst2 {

/// Texts of a parameter, in bytes without the final zero. The interface promises room for eight,
/// with which no host in use shows anything; 24 are what the longest names of parameters need.
inline constexpr std::size_t kLongestParameterText = 24;
inline constexpr std::size_t kLongestEffectName = 31;
inline constexpr std::size_t kLongestVendorText = 63;
inline constexpr std::size_t kLongestPinLabel = 63;
inline constexpr std::size_t kLongestShortPinLabel = 7;

/// Writes `text` (UTF-8) and a zero into `buffer`, of at least `limit` + 1 bytes; what does not fit
/// is cut before the character that would be split. [any]
void CopyText(std::string_view text, std::size_t limit, char* buffer) noexcept;

}  // namespace Vst2
