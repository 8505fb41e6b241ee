// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

/// Reads numbers off the front of a MIDI file's bytes, the highest byte first. Throws
/// MRenderFailure (File) when there are no more. [main]
class MMIDIBytes {
public:
    explicit MMIDIBytes(std::string_view bytes) : rest_(bytes) {}

    bool IsAtEnd() const { return rest_.empty(); }
    /// The next byte, which stays.
    std::uint8_t Peek() const;
    std::uint8_t Byte() { return static_cast<std::uint8_t>(Number(1)); }
    /// A number of 1..4 bytes.
    std::uint32_t Number(int bytes);
    /// A number of seven bits a byte, at most four of them.
    std::uint32_t Length();
    /// The next `count` bytes.
    std::string_view Take(std::uint32_t count);

private:
    std::string_view rest_;
};
