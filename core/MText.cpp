// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kDigits = "0123456789";
// Whole numbers up to here are exact; beyond it, plain digits would pretend to a precision that a
// double has not, and below the other limit they would be mostly zeros.
constexpr double kPlainBelow = 1e15;
constexpr double kPlainFrom = 1e-5;

char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

// `text` with a decimal comma made a point. Only a comma with a digit after it and nothing but
// digits and a sign before it is one, which leaves lists such as "1, 2" and "1.000,5" alone.
std::string WithDecimalPoint(std::string_view text) {
    std::string result(text);
    const std::size_t comma = text.find_first_not_of("+-0123456789");
    if (comma != std::string_view::npos && text[comma] == ',' &&
        kDigits.find(text.substr(comma + 1, 1)) != std::string_view::npos &&
        comma + 1 < text.size()) {
        result[comma] = '.';
    }
    return result;
}

}  // namespace

std::optional<MText::Number> MText::ReadLeadingNumber(std::string_view text) {
    text = Trim(text);
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return std::nullopt;
    }
    const std::string copy = WithDecimalPoint(text);
    double value = 0;
    const auto [end, error] = std::from_chars(copy.data(), copy.data() + copy.size(), value);
    if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
    return Number{value, Trim(text.substr(static_cast<std::size_t>(end - copy.data())))};
}

std::optional<double> MText::ReadNumber(std::string_view text) {
    const std::optional<Number> number = ReadLeadingNumber(text);
    if (!number || !number->rest.empty()) return std::nullopt;
    return number->value;
}

std::string MText::WriteNumber(double value) {
    const double size = std::fabs(value);
    const bool isPlain = value == 0 || (size >= kPlainFrom && size < kPlainBelow);
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value,
                                   isPlain ? std::chars_format::fixed : std::chars_format::general)
                         .ptr;
    return {buffer, end};
}

bool MText::EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
}

std::string_view MText::Trim(std::string_view text) noexcept {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string MText::ToLower(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), Lower);
    return result;
}
