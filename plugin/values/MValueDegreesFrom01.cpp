// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MValueDegreesFrom01.h"

#include "core/MFormat.h"
#include "core/MText.h"
#include "plugin/values/MTypedNumber.h"

#include <cmath>
#include <cstddef>

namespace {

constexpr const char* kDegreeSign = "°";
constexpr double kNoneBelow = 1e-50;

// Whether `text` is the second half of what Format writes, such as "(25.0%)".
bool IsPercentNote(std::string_view text) {
    if (!text.starts_with('(') || !text.ends_with("%)")) return false;
    return MText::ReadNumber(text.substr(1, text.size() - 3)).has_value();
}

}  // namespace

std::string MValueDegreesFrom01::Format(double turns) {
    if (std::fabs(turns) < kNoneBelow) return MFormat("0{0} (0%)", kDegreeSign);
    return MFormat("{0;.0}{1} ({2.1}%)", std::floor(360 * turns + 0.5), kDegreeSign, 100 * turns);
}

std::optional<double> MValueDegreesFrom01::Parse(const std::string& text) {
    std::string_view typed = MText::Trim(text);
    const std::size_t note = typed.find('(');
    if (note != std::string_view::npos && IsPercentNote(typed.substr(note))) {
        typed = typed.substr(0, note);
    }
    const std::optional<double> degrees =
        MReadTypedNumber(typed, {{kDegreeSign, 1}, {"deg", 1}, {"degrees", 1}});
    return degrees ? std::optional(*degrees / 360) : std::nullopt;
}
