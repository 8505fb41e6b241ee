// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MStream.h"

#include <memory>

/// Deflates what is written on its way into another stream, or inflates what is read out of one.
/// The format is zlib's: a header of two bytes and a checksum at the end.
class MZLibStream final : public MStream {
public:
    static constexpr int kBestQuality = 100;

    /// Deflates into `target` (borrowed); `quality` 1 .. 100. [main]
    explicit MZLibStream(MStream& target, int quality = kBestQuality);
    /// Inflates out of `source` (borrowed), up to `ceiling` bytes: a few bytes may stand for
    /// gigabytes. [main]
    MZLibStream(MStream& source, std::size_t ceiling);
    ~MZLibStream() override;

    /// Throws MException when the data is damaged, ends before its end or exceeds the ceiling.
    /// What follows the end of the data is left alone. [main]
    std::size_t Read(std::span<std::uint8_t> target) override;
    void Write(std::span<const std::uint8_t> bytes) override;
    /// Writes what is still held back and the end of the data; nothing may be written after it.
    /// [main]
    void Finish();

    /// Whether `bytes` begin as deflated data does. No text does. [any]
    static bool HasHeader(std::span<const std::uint8_t> bytes) noexcept;

private:
    struct Package;

    void Deflate(std::span<const std::uint8_t> bytes, bool isLast);
    bool FillInput();

    MStream& inner_;
    std::unique_ptr<Package> package_;
};
