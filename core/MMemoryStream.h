// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MStream.h"

#include <vector>

/// A stream in memory: over somebody's bytes, which it does not copy, or into bytes of its own,
/// which grow.
class MMemoryStream final : public MStream {
public:
    /// To be written.
    MMemoryStream() = default;
    /// To be read; `bytes` are borrowed and outlive the stream.
    explicit MMemoryStream(std::span<const std::uint8_t> bytes) : source_(bytes), isSource_(true) {}

    std::size_t Read(std::span<std::uint8_t> target) override;
    void Write(std::span<const std::uint8_t> bytes) override;

    /// Goes back to the first byte. [main]
    void Rewind() noexcept { position_ = 0; }
    /// What has not been read yet. [main]
    std::span<const std::uint8_t> Rest() const noexcept { return Bytes().subspan(position_); }
    /// Hands over what was written; the stream is empty then. [main]
    std::vector<std::uint8_t> Take() noexcept;

private:
    std::span<const std::uint8_t> Bytes() const noexcept {
        return isSource_ ? source_ : std::span<const std::uint8_t>(written_);
    }

    std::span<const std::uint8_t> source_;
    bool isSource_ = false;
    std::vector<std::uint8_t> written_;
    std::size_t position_ = 0;  // of the byte that is read next
};
