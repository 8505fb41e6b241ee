// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <initializer_list>
#include <optional>
#include <string_view>

/// A unit that may follow a typed number, compared in any case, and what one of it is worth.
struct MTypedUnit {
    std::string_view name;
    double factor;
};

/// The value that `text` means: a decimal number, blanks around it allowed, times the factor of the
/// unit that follows it. A number alone counts in the first of `units`, of which there is one or
/// more. Empty for any other text and for a value that is not finite. [any]
std::optional<double> MReadTypedNumber(std::string_view text,
                                       std::initializer_list<MTypedUnit> units);
