// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MXML.h"
#include "plugin/MArchive.h"

#include <array>

/// What every plug-in of this kind stores besides parameters, modulation and MIDI. Plain data.
struct MStandardSettings {
    static constexpr int kSurround = 7;
    static constexpr int kFollowsChannels = -1;
    static constexpr int kSurroundChannels = 8;
    /// What states are taken for that do not say which version wrote them.
    static constexpr int kUnknownVersion = 328448;

    int version = kUnknownVersion;       ///< that wrote the state; of no state, this one's
    int channelMode = kFollowsChannels;  ///< kSurround, or another for plain channels
    /// Those that surround processing works on.
    std::array<bool, kSurroundChannels> surroundChannels{true, true, true, true,
                                                         true, true, true, true};
    int maxLFOBlockSize = 64;  ///< samples, 16 .. 8192; modulators move targets that often at least

    /// Reads or writes them all. `channelsPerBus`: with two or fewer there is no surround
    /// processing. [main]
    void Store(MXMLNode node, const MArchive& archive, int channelsPerBus);

private:
    void StoreChannels(MXMLNode node, const MArchive& archive, int channelsPerBus);
};
