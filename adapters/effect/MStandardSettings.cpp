// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MStandardSettings.h"

#include <algorithm>
#include <string>

namespace {

constexpr int kShortestBlock = 16, kLongestBlock = 8192;  // samples

}  // namespace

void MStandardSettings::Store(MXMLNode node, const MArchive& archive, int channelsPerBus) {
    if (!archive.IsWriting()) version = kUnknownVersion;
    archive.Integer(node, "Version", version);
    StoreChannels(node, archive, channelsPerBus);
    archive.Integer(node, "MaxLFOBlockSize", maxLFOBlockSize);
    maxLFOBlockSize = std::clamp(maxLFOBlockSize, kShortestBlock, kLongestBlock);
}

void MStandardSettings::StoreChannels(MXMLNode node, const MArchive& archive, int channelsPerBus) {
    const bool hasSurround = channelsPerBus > 2;
    if (archive.IsWriting() && channelMode == kFollowsChannels) {
        channelMode = hasSurround ? kSurround : 0;
    }
    archive.Integer(node, "ChannelMode", channelMode);
    if (channelMode == kSurround) {
        std::string enabled;
        for (const bool isOn : surroundChannels) enabled += isOn ? '1' : '0';
        archive.Text(node, "SurroundChannelsEnable", enabled);
        enabled.resize(kSurroundChannels, '0');
        for (int i = 0; i < kSurroundChannels; ++i) surroundChannels[i] = enabled[i] != '0';
    }
    if (archive.IsWriting()) return;
    if (node.Attribute("EnableSurroundProcessing")) {
        int isOn = 0;
        archive.Integer(node, "EnableSurroundProcessing", isOn);
        channelMode = isOn > 0 ? kSurround : 0;
    }
    if (channelMode == kSurround && !hasSurround) channelMode = 0;
}
