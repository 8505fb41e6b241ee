// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/values/MFormatReader.h"

#include "core/MText.h"

std::optional<double> MReadByFormat(std::string_view format, std::string_view text) {
    const std::string_view before = MText::Trim(format.substr(0, format.find('{')));
    const std::size_t end = format.rfind('}');
    const std::string_view after =
        end == std::string_view::npos ? std::string_view() : MText::Trim(format.substr(end + 1));

    text = MText::Trim(text);
    if (!before.empty() && MText::EqualsIgnoringCase(text.substr(0, before.size()), before)) {
        text.remove_prefix(before.size());
    }
    const std::optional<MText::Number> number = MText::ReadLeadingNumber(text);
    if (!number) return std::nullopt;
    const bool isComplete = number->rest.empty() || MText::EqualsIgnoringCase(number->rest, after);
    return isComplete ? std::optional(number->value) : std::nullopt;
}
