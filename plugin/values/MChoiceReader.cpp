// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MChoiceReader.h"

#include "core/MText.h"

#include <algorithm>
#include <cmath>

namespace {

std::string Simplified(std::string_view text) {
    std::string result = MText::ToLower(text);
    std::erase_if(result, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
    return result;
}

// The index of the only choice that `matches`; empty when there are none or several.
template <class Predicate>
std::optional<int> OnlyMatch(std::span<const std::string> choices, Predicate matches) {
    std::optional<int> found;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (!matches(Simplified(choices[i]))) continue;
        if (found) return std::nullopt;
        found = static_cast<int>(i);
    }
    return found;
}

bool IsNumeral(const std::string& name) {
    return !name.empty() && name.front() >= '0' && name.front() <= '9';
}

}  // namespace

std::optional<int> MReadChoice(std::span<const std::string> choices, std::string_view text) {
    std::string typed = Simplified(text);
    if (typed.empty()) return std::nullopt;
    const auto isTyped = [&](const std::string& name) { return name == typed; };
    if (const auto exact = OnlyMatch(choices, isTyped)) return exact;

    if (std::any_of(choices.begin(), choices.end(), IsNumeral)) {
        // No beginnings here: "1/1" would mean "1 / 16" as well as "1 / 128".
        if (std::string_view("dt.").find(typed.back()) == std::string_view::npos) {
            return std::nullopt;
        }
        typed.pop_back();
        return OnlyMatch(choices, isTyped);
    }
    if (const auto index = MText::ReadNumber(typed)) {
        const bool isIndex = *index >= 0 && *index < static_cast<double>(choices.size()) &&
                             std::trunc(*index) == *index;
        return isIndex ? std::optional(static_cast<int>(*index)) : std::nullopt;
    }
    return OnlyMatch(choices, [&](const std::string& name) { return name.starts_with(typed); });
}
