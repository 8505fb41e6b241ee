// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

/// A message of a channel at its time.
struct MMIDIFileEvent {
    double seconds = 0;  ///< from the start of the file
    std::array<std::uint8_t, 4> data{};
};

/// The messages of a standard MIDI file in the order of their times, those of one time in the order
/// of the tracks: format 0 or 1, the file's tempo changes followed, or frames per second instead.
/// Whatever is no message of a channel is left out. Throws MRenderFailure (File) when the file
/// cannot be read, or with what is wrong in it. [main]
std::vector<MMIDIFileEvent> MReadMIDIFile(const std::filesystem::path& path);

/// The same from the bytes of such a file. [main]
std::vector<MMIDIFileEvent> MReadMIDI(std::string_view bytes);
