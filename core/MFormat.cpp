// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MFormat.h"

#include "core/MException.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace {

constexpr int kDefaultDecimals = 4;
constexpr int kGeneralFrom = 10;      // as many decimals or more mean significant digits
constexpr int kLargestCount = 99;     // of decimals and of padded characters
constexpr double kPlusAbove = 1e-20;  // what is shown as zero keeps no sign
constexpr std::size_t kBuffer = 352;  // sign, 309 digits, point, 9 decimals of the largest double

struct ArgumentFormat {
    std::size_t argument = 0;
    int decimals = -1;  // -1 where none is asked for
    bool plus = false;
    bool hexadecimal = false;
    char padding = ' ';
    int width = 0;
};

bool IsDigit(char character) { return character >= '0' && character <= '9'; }

// Takes the digits at the start of `text`; a number too large for any use stays at the limit.
int TakeNumber(std::string_view& text, int fallback) {
    int number = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && IsDigit(text[digits]); ++digits) {
        number = std::min(number * 10 + (text[digits] - '0'), kLargestCount);
    }
    text.remove_prefix(digits);
    return digits > 0 ? number : fallback;
}

ArgumentFormat ParseArgumentFormat(std::string_view text) {
    ArgumentFormat result;
    result.argument = static_cast<std::size_t>(TakeNumber(text, 0));
    while (!text.empty()) {
        const char element = text.front();
        text.remove_prefix(1);
        switch (element) {
            case '.':
                result.decimals = TakeNumber(text, kDefaultDecimals);
                break;
            case '+':
                result.plus = true;
                break;
            case '0':
            case ' ':
                result.padding = element;
                result.width = TakeNumber(text, 0);
                break;
            case 'x':
                result.hexadecimal = true;
                break;
            default:  // the separators; other characters are kept free for later elements
                break;
        }
    }
    return result;
}

void AppendNumber(std::string& out, double value, const ArgumentFormat& layout) {
    if (std::isnan(value)) {
        out += "nan";  // without the sign that the platform's own text may carry
        return;
    }
    const int decimals = layout.decimals >= 0 ? layout.decimals : kDefaultDecimals;
    const auto notation =
        decimals < kGeneralFrom ? std::chars_format::fixed : std::chars_format::general;
    char buffer[kBuffer];
    const auto end =
        std::to_chars(buffer, buffer + kBuffer, std::fabs(value), notation, decimals).ptr;
    const std::string_view digits(buffer, static_cast<std::size_t>(end - buffer));
    // A value that rounds to zero shows as zero: "-0.00" would look like a setting of its own.
    const bool isZero = digits.find_first_not_of("0.") == std::string_view::npos;
    if (value < 0 && !isZero) out += '-';
    if (layout.plus && value > kPlusAbove) out += '+';
    out += digits;
}

void AppendInteger(std::string& out, std::int64_t value, const ArgumentFormat& layout) {
    const auto bits = static_cast<std::uint64_t>(value);
    const bool negative = value < 0 && !layout.hexadecimal;
    char buffer[24];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, negative ? 0 - bits : bits,
                                   layout.hexadecimal ? 16 : 10)
                         .ptr;
    const std::string_view digits(buffer, static_cast<std::size_t>(end - buffer));
    std::string_view sign;
    if (negative) sign = "-";
    if (layout.plus && value > 0) sign = "+";

    const auto used = digits.size() + sign.size();
    const auto width = static_cast<std::size_t>(layout.width);
    const std::size_t missing = width > used ? width - used : 0;
    if (layout.padding == ' ') out.append(missing, ' ');
    out += sign;
    if (layout.padding == '0') out.append(missing, '0');
    out += digits;
}

void AppendArgument(std::string& out, const MFormatArgument& argument,
                    const ArgumentFormat& layout) {
    if (const auto* text = std::get_if<std::string_view>(&argument.Value())) {
        out += *text;
    } else if (const auto* number = std::get_if<double>(&argument.Value())) {
        AppendNumber(out, *number, layout);
    } else if (const auto* integer = std::get_if<std::int64_t>(&argument.Value())) {
        if (layout.decimals >= 0) {  // asked for as a number with decimals
            AppendNumber(out, static_cast<double>(*integer), layout);
        } else {
            AppendInteger(out, *integer, layout);
        }
    }
}

}  // namespace

std::string MFormatList(std::string_view format, std::span<const MFormatArgument> arguments) {
    std::string out;
    out.reserve(format.size() + 16);
    while (!format.empty()) {
        const std::size_t brace = format.find('{');
        out += format.substr(0, brace);
        if (brace == std::string_view::npos) break;
        format.remove_prefix(brace + 1);
        if (!format.empty() && format.front() == '{') {
            out += '{';
            format.remove_prefix(1);
            continue;
        }
        const std::size_t end = format.find('}');
        if (end == std::string_view::npos) {
            throw MException("Formatting string ends in an argument specification.");
        }
        const ArgumentFormat layout = ParseArgumentFormat(format.substr(0, end));
        if (layout.argument < arguments.size()) {
            AppendArgument(out, arguments[layout.argument], layout);
        }
        format.remove_prefix(end + 1);
    }
    return out;
}
