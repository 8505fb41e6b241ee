// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueTimeMS.h"

#include "core/MFormat.h"
#include "plugin/values/MTypedNumber.h"

#include <cmath>

std::string MValueTimeMS::Format(double seconds) {
    const double size = std::fabs(seconds);
    const double milliseconds = 1000 * seconds;
    if (size < 1e-50) return "0 ms";
    if (size < 0.0001) return MFormat("{0;.3} ms", milliseconds);
    if (size < 0.001) return MFormat("{0;.2} ms", milliseconds);
    if (size < 0.01) return MFormat("{0;.1} ms", milliseconds);
    return MFormat("{0;.0} ms", std::floor(milliseconds + 0.5));
}

std::optional<double> MValueTimeMS::Parse(const std::string& text) {
    return MReadTypedNumber(
        text, {{"ms", 0.001}, {"msec", 0.001}, {"s", 1}, {"sec", 1}, {"us", 1e-6}, {"µs", 1e-6}});
}
