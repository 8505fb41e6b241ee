// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValuePercents.h"

#include "core/MFormat.h"
#include "plugin/values/MTypedNumber.h"

#include <cmath>

std::string MValuePercents::Format(double fraction) {
    return MFormat(std::fabs(fraction) < 0.01 ? "{0.2}%" : "{0.1}%", 100 * fraction);
}

std::optional<double> MValuePercents::Parse(const std::string& text) {
    return MReadTypedNumber(text, {{"%", 0.01}});
}
