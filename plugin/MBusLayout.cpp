// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MBusLayout.h"

std::string MBusLayout::ChannelName(int channel, int count) {
    if (count == 1) return "Mono";
    if (count == 2) return channel == 0 ? "Left" : "Right";
    return "Channel " + std::to_string(channel + 1);
}
