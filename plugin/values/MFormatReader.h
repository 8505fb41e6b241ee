// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The number that `text` means when numbers are shown by `format`: a plain number, or one between
/// the literal texts that surround the format's argument ("-6" and "-6 dB" for "{+0.2} dB"). Empty
/// for any other text. [any]
std::optional<double> MReadByFormat(std::string_view format, std::string_view text);
