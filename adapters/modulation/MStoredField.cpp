// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MStoredField.h"

#include "core/MFailureReporter.h"
#include "core/MFormat.h"

#include <algorithm>
#include <cmath>

namespace MStoredField {

double Range::Hold(double value) const noexcept {
    return std::isnan(value) ? fallback : std::clamp(value, minimum, maximum);
}

void Number(const MArchive& archive, MXMLNode node, std::string_view key, double& value,
            const Range& range) {
    // The archive leaves alone what it cannot read.
    const bool isThere = !archive.IsWriting() && node.Attribute(key).has_value();
    value = isThere ? range.fallback : range.Hold(value);
    archive.Number(node, key, value);
    value = range.Hold(value);
}

void Integer(const MArchive& archive, MXMLNode node, std::string_view key, int& value,
             const Range& range) {
    const bool isThere = !archive.IsWriting() && node.Attribute(key).has_value();
    value = static_cast<int>(isThere ? range.fallback : range.Hold(value));
    archive.Integer(node, key, value);
    value = static_cast<int>(range.Hold(value));
}

void Switch(const MArchive& archive, MXMLNode node, std::string_view key, bool& value,
            bool fallback) {
    const bool isThere = !archive.IsWriting() && node.Attribute(key).has_value();
    if (isThere) value = fallback;
    archive.Switch(node, key, value);
}

void ReportUnknown(const MXMLNode& node, std::string_view key, int number) {
    MFailureReporter::Report(
        MFormat("The state has <{0}> with {1} {2}, which is unknown.", node.Name(), key, number));
}

}  // namespace MStoredField
