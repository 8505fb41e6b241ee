// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandLayoutRecord.h"

#include "core/MFormat.h"
#include "core/MText.h"

#include <optional>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kBandCount = "BandCount";
constexpr std::string_view kLimit = "BandLimit";
constexpr std::string_view kMute = "BandMute";
constexpr std::string_view kBypass = "BandBypass";

std::string_view KeyOf(std::string_view key, int index) {
    return key.substr(static_cast<std::size_t>(index));
}

std::optional<double> ReadNumber(const MXMLNode& node, std::string_view key) {
    const std::optional<std::string> text = node.Attribute(key);
    return text ? MText::ReadNumber(*text) : std::nullopt;
}

void ReadSwitch(const MXMLNode& node, std::string_view key, bool& value) {
    if (const std::optional<double> number = ReadNumber(node, key)) value = *number != 0;
}

int ReadCount(const MXMLNode& node, int present) {
    const std::optional<std::string> text = node.Attribute(kBandCount);
    if (!text) return present;
    const double number = MText::ReadNumber(*text).value_or(0);
    const bool isCount = number >= 1 && number <= MBandLayout::kMaxBands;
    const int count = isCount ? static_cast<int>(number) : 0;
    MBandLayout::CheckBandCount(count == number ? count : 0);
    return count;
}

}  // namespace

void MBandLayoutRecord::Save(MXMLNode node) const {
    node.SetAttribute(kBandCount, MText::WriteNumber(bandCount));
    for (int i = 0; i < bandCount - 1; ++i) {
        node.SetAttribute(KeyOf(kLimit, i), MFormat("{0.12}", limits[i]));
    }
    for (int i = 0; i < bandCount; ++i) {
        node.SetAttribute(KeyOf(kMute, i), mute[i] ? "1" : "0");
        node.SetAttribute(KeyOf(kBypass, i), bypass[i] ? "1" : "0");
    }
}

void MBandLayoutRecord::Load(const MXMLNode& node) {
    bandCount = ReadCount(node, bandCount);
    for (int i = 0; i < bandCount - 1; ++i) {
        limits[i] = ReadNumber(node, KeyOf(kLimit, i)).value_or(limits[i]);
    }
    for (int i = 0; i < bandCount; ++i) {
        ReadSwitch(node, KeyOf(kMute, i), mute[i]);
        ReadSwitch(node, KeyOf(kBypass, i), bypass[i]);
    }
}
