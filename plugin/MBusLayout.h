// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// The channels of a plug-in with one input bus and one output bus.
struct MBusLayout {
    static constexpr int kMaxChannels = 8;

    int inputs = 2;   ///< 0 (no input bus) to 8; no more than what the host connects
    int outputs = 2;  ///< 1 to 8: as many channels as are processed

    /// Whether both counts are within their ranges. [any]
    bool IsValid() const noexcept {
        return inputs >= 0 && inputs <= kMaxChannels && outputs >= 1 && outputs <= kMaxChannels;
    }

    /// The input that feeds the processed channel `channel`: a single input feeds all of them, any
    /// other count feeds them one by one; -1 for a channel without an input. [any]
    int InputOf(int channel) const noexcept {
        if (inputs == 1) return 0;
        return channel < inputs ? channel : -1;
    }

    /// What a host shows for channel `channel` of a bus of `count` channels: "Left" and "Right" in
    /// stereo, "Mono", else "Channel" and a number. [main]
    static std::string ChannelName(int channel, int count);

    bool operator==(const MBusLayout&) const = default;
};
