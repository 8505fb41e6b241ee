// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

/// One argument of MFormat: an integer, a number or a text (UTF-8, borrowed for the call).
class MFormatArgument {
public:
    template <std::integral Integer>
    MFormatArgument(Integer value) : value_(static_cast<std::int64_t>(value)) {}
    MFormatArgument(double value) : value_(value) {}
    MFormatArgument(float value) : value_(static_cast<double>(value)) {}
    MFormatArgument(std::string_view text) : value_(text) {}
    MFormatArgument(const std::string& text) : value_(std::string_view(text)) {}
    MFormatArgument(const char* text) : value_(std::string_view(text)) {}

    const std::variant<std::int64_t, double, std::string_view>& Value() const { return value_; }

private:
    std::variant<std::int64_t, double, std::string_view> value_;
};

/// Formats `arguments` by the formatting language; see MFormat.
std::string MFormatList(std::string_view format, std::span<const MFormatArgument> arguments);

/// Inserts the arguments into `format`. Literal text is copied, "{{" gives one brace, and
/// "{" argument number, layout "}" inserts an argument. A layout consists of
///
///     .k     k decimals (default 4); from 10 on, k significant digits in general notation
///     +      a plus sign before values above 1e-20
///     0w     an integer padded with zeros to the width w
///     ' 'w   an integer padded with blanks to the width w
///     x      an integer in hexadecimal
///     ; :    separators without effect
///
/// and one that begins with a sign or a letter stands for argument 0. The result does not depend on
/// the locale. Throws MException "Formatting string ends in an argument specification." when
/// `format` ends inside such braces; a number beyond the arguments inserts nothing. [main]
template <class... Arguments>
std::string MFormat(std::string_view format, const Arguments&... arguments) {
    const MFormatArgument list[] = {MFormatArgument(arguments)..., MFormatArgument(0)};
    return MFormatList(format, std::span(list).first(sizeof...(arguments)));
}
