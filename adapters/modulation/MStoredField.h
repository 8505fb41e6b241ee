// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MArchive.h"

#include <string_view>

/// Stored fields that a state may have wrong: what is absent keeps its value, what cannot be read
/// becomes the default, what is out of range the nearest limit.
namespace MStoredField {

/// What a field may hold.
struct Range {
    double minimum;
    double maximum;
    double fallback;  ///< the default

    /// `value` within the range; the default for what is no number. [any]
    double Hold(double value) const noexcept;
};

/// What goes from 0 to 1, by where its default stands.
inline constexpr Range kStart{0, 1, 0};
inline constexpr Range kMiddle{0, 1, 0.5};
inline constexpr Range kEnd{0, 1, 1};

/// [main]
void Number(const MArchive& archive, MXMLNode node, std::string_view key, double& value,
            const Range& range);
void Integer(const MArchive& archive, MXMLNode node, std::string_view key, int& value,
             const Range& range);
void Switch(const MArchive& archive, MXMLNode node, std::string_view key, bool& value,
            bool fallback);

/// Tells that a state asks for a choice that there is not, as one of a newer version may. [main]
void ReportUnknown(const MXMLNode& node, std::string_view key, int number);

/// An enumerator by its number; one beyond the range becomes the default, which is reported. [main]
template <class Enumeration>
void Choice(const MArchive& archive, MXMLNode node, std::string_view key, Enumeration& value,
            const Range& range) {
    int number = static_cast<int>(value);
    constexpr double kAny = 1e9;
    Integer(archive, node, key, number, {-kAny, kAny, range.fallback});
    if (number < range.minimum || number > range.maximum) {
        if (!archive.IsWriting()) ReportUnknown(node, key, number);
        number = static_cast<int>(range.fallback);
    }
    value = static_cast<Enumeration>(number);
}

}  // namespace MStoredField
