// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The index of the choice that the typed text means: a name in any case, blanks ignored ("1/8" for
/// "1 / 8"), or the beginning of exactly one name. Where names are numbers, such as note lengths, a
/// trailing "d", "t" or "." (dotted, triplet) is ignored, since it belongs to another setting;
/// anywhere else a whole number is the index. Empty for any other text. [any]
std::optional<int> MReadChoice(std::span<const std::string> choices, std::string_view text);
