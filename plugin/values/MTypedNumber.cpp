// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MTypedNumber.h"

#include "core/MText.h"

#include <cmath>

std::optional<double> MReadTypedNumber(std::string_view text,
                                       std::initializer_list<MTypedUnit> units) {
    const std::optional<MText::Number> number = MText::ReadLeadingNumber(text);
    if (!number) return std::nullopt;
    for (const MTypedUnit& unit : units) {
        const bool isMeant =
            number->rest.empty() || MText::EqualsIgnoringCase(number->rest, unit.name);
        if (!isMeant) continue;
        const double value = number->value * unit.factor;
        return std::isfinite(value) ? std::optional(value) : std::nullopt;
    }
    return std::nullopt;
}
