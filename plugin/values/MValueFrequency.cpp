// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueFrequency.h"

#include "core/MFormat.h"
#include "plugin/values/MTypedNumber.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kZeroBelow = 1e-5;  // hertz; shown as zero, and where logarithms end

double Log(double value) { return std::log10(std::max(value, kZeroBelow)); }

}  // namespace

std::string MValueLogarithmic::GetDisplayTextFrom01(double x) const {
    return Show(MValueNumber::ValueAt(x));
}

double MValueLogarithmic::PositionOf(double value) const {
    const double from = Log(Limits().minimum);
    const double to = Log(Limits().maximum);
    if (to == from) return 1;  // deliberately the upper end, unlike a linear scale
    return std::clamp((Log(value) - from) / (to - from), 0.0, 1.0);
}

double MValueLogarithmic::ValueAt(double x) const {
    const double from = Log(Limits().minimum);
    const double to = Log(Limits().maximum);
    return std::pow(10.0, from + (to - from) * x);
}

std::string MValueFrequency::Format(double hertz) { return FormatWithSeparator(hertz, " "); }

std::string MValueFrequency::FormatWithSeparator(double hertz, std::string_view separator) {
    const double size = std::fabs(hertz);
    if (size < kZeroBelow) return MFormat("0{0}Hz", separator);
    if (size < 1) return MFormat("{0;.4}{1}Hz", hertz, separator);
    if (size < 10) return MFormat("{0;.2}{1}Hz", hertz, separator);
    if (size < 100) return MFormat("{0;.1}{1}Hz", hertz, separator);
    if (size < 10000) return MFormat("{0;.0}{1}Hz", std::floor(hertz + 0.5), separator);
    return MFormat("{0;.1}{1}kHz", hertz / 1000, separator);
}

std::optional<double> MValueFrequency::Parse(const std::string& text) {
    return MReadTypedNumber(text, {{"Hz", 1}, {"kHz", 1000}, {"k", 1000}});
}

std::string MValueFrequencyLog::Format(double log10Hertz) {
    return MValueFrequency::Format(std::pow(10.0, log10Hertz));
}

std::optional<double> MValueFrequencyLog::Parse(const std::string& text) {
    const std::optional<double> hertz = MValueFrequency::Parse(text);
    if (!hertz || *hertz <= 0) return std::nullopt;
    return std::log10(*hertz);
}
