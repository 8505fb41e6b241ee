// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueVolume.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/values/MTypedNumber.h"

#include <cmath>

namespace {
constexpr double kSilenceBelow = 1e-50;  // linear amplitude
constexpr double kOneDecimalFrom = 10;   // decibels
}  // namespace

MValueVolume::MValueVolume(double& amplitude, const MValueLimits<double>& limits, MVolumeUnit unit)
    : MValueRule(amplitude, limits), unit_(unit) {}

std::string MValueVolume::Format(double amplitude) {
    if (std::fabs(amplitude) < kSilenceBelow) return "silence";
    return FormatWithoutUnit(amplitude) + " dB";
}

std::string MValueVolume::FormatWithoutUnit(double amplitude) {
    const double size = std::fabs(amplitude);
    if (size < kSilenceBelow) return "silence";
    const double decibels = 20 * std::log10(size);
    return MFormat(std::fabs(decibels) < kOneDecimalFrom ? "{0;.2}" : "{0;.1}", decibels);
}

std::optional<double> MValueVolume::Parse(const std::string& text) {
    const std::string_view trimmed = MText::Trim(text);
    for (const std::string_view nothing : {"silence", "-inf", "-inf dB", "-infdB"}) {
        if (MText::EqualsIgnoringCase(trimmed, nothing)) return 0.0;
    }
    const std::optional<double> decibels = MReadTypedNumber(trimmed, {{"dB", 1}});
    if (!decibels) return std::nullopt;
    const double amplitude = std::pow(10.0, 0.05 * *decibels);
    return std::isfinite(amplitude) ? std::optional(amplitude) : std::nullopt;
}

std::string MValueVolume::FormatSquareRoot(double root) { return Format(root * root); }

std::optional<double> MValueVolume::ParseSquareRoot(const std::string& text) {
    const std::optional<double> amplitude = Parse(text);
    return amplitude ? std::optional(std::sqrt(*amplitude)) : std::nullopt;
}

std::string MValueVolume::Show(double value) const {
    return unit_ == MVolumeUnit::Shown ? Format(value) : FormatWithoutUnit(value);
}
