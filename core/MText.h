// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Operations on text whose result never depends on the locale. Text is UTF-8; letters are compared
/// and folded in ASCII only.
namespace MText {

/// A number at the start of a typed text and what follows it.
struct Number {
    double value;
    std::string_view rest;  ///< without surrounding blanks; borrows from the text
};

/// Reads the decimal number that `text` begins with, blanks and a plus sign allowed before it; a
/// comma may stand for the decimal point. Empty when there is none or it is not finite. [any]
std::optional<Number> ReadLeadingNumber(std::string_view text);

/// Reads `text` as one decimal number and nothing else but blanks around it. [any]
std::optional<double> ReadNumber(std::string_view text);

/// The shortest decimal text that reads back to the same double; whole numbers without a point.
/// [any]
std::string WriteNumber(double value);

/// Whether the texts are equal when A-Z and a-z count as the same. [any]
bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept;

/// `text` without blanks, tabs and line ends at either end. [any]
std::string_view Trim(std::string_view text) noexcept;

/// `text` in lower case (ASCII letters only). [any]
std::string ToLower(std::string_view text);

}  // namespace MText
