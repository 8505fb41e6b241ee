// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValuePan.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/values/MTypedNumber.h"

#include <cmath>

namespace {

constexpr double kCenterBelow = 1e-50;
// Typed percents come back from their hundredth a rounding short, which is no percent less.
constexpr double kRounding = 1e-9;

struct Side {
    std::string_view name;
    double sign;
};
constexpr Side kSides[] = {{"left", -1}, {"right", 1}, {"l", -1}, {"r", 1}};  // long names first

/// A typed text cut into its side, 0 without one, and what is left of it.
struct SidedText {
    double sign;
    std::string_view rest;
};

SidedText TakeSide(std::string_view text) {
    for (const auto& [name, sign] : kSides) {
        if (text.size() < name.size()) continue;
        const std::size_t tail = text.size() - name.size();
        if (MText::EqualsIgnoringCase(text.substr(0, name.size()), name)) {
            return {sign, MText::Trim(text.substr(name.size()))};
        }
        if (MText::EqualsIgnoringCase(text.substr(tail), name)) {
            return {sign, MText::Trim(text.substr(0, tail))};
        }
    }
    return {0, text};
}

}  // namespace

std::string MValuePan::Format(double pan) {
    if (std::fabs(pan) < kCenterBelow) return "center";
    const double percent = std::trunc(100 * std::fabs(pan) + kRounding);
    return MFormat(pan < 0 ? "{0;.0}% left" : "{0;.0}% right", percent);
}

std::optional<double> MValuePan::Parse(const std::string& text) {
    const std::string_view trimmed = MText::Trim(text);
    for (const std::string_view center : {"center", "centre", "c"}) {
        if (MText::EqualsIgnoringCase(trimmed, center)) return 0.0;
    }
    const SidedText sided = TakeSide(trimmed);
    if (sided.sign != 0 && sided.rest.empty()) return sided.sign;
    const std::optional<double> pan = MReadTypedNumber(sided.rest, {{"%", 0.01}});
    if (!pan || sided.sign == 0) return pan;
    if (*pan < 0) return std::nullopt;  // "-50% left" could mean either side
    return *pan * sided.sign;
}
