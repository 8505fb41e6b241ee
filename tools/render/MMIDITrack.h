// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

/// What a track holds for us.
struct MMIDITrackEvent {
    std::int64_t tick = 0;  ///< from the start of the track
    int tempo = 0;          ///< microseconds per quarter note; 0 for a message of a channel
    std::array<std::uint8_t, 4> data{};
};

/// Adds the messages and tempo changes of one track's bytes to `events`, in their order. Throws
/// MRenderFailure (File) for bytes that are no track. [main]
void MReadMIDITrack(std::string_view bytes, std::vector<MMIDITrackEvent>& events);
