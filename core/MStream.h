// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

/// Bytes one after the other, in or out. A stream that only goes one way throws MException for the
/// other.
class MStream {
public:
    MStream() = default;
    MStream(const MStream&) = delete;
    MStream& operator=(const MStream&) = delete;

    virtual ~MStream() = default;
    /// Fills `target` with the next bytes and returns how many there were: fewer than it has room
    /// for at the end of the stream alone. [main]
    virtual std::size_t Read(std::span<std::uint8_t> target) = 0;
    /// Appends `bytes`. [main]
    virtual void Write(std::span<const std::uint8_t> bytes) = 0;
};
