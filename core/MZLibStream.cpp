// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MZLibStream.h"

#include "core/MException.h"

#include <algorithm>
#include <array>

#define ZLIB_CONST
#include <zlib.h>

namespace {

constexpr std::size_t kPiece = 4096;  // bytes on their way to or from the other stream

}  // namespace

struct MZLibStream::Package {
    explicit Package(bool inflates) : isInflating(inflates) {}
    ~Package() {
        if (isInflating) {
            inflateEnd(&stream);
        } else {
            deflateEnd(&stream);
        }
    }
    Package(const Package&) = delete;
    Package& operator=(const Package&) = delete;

    z_stream stream = {};
    const bool isInflating;
    std::size_t left = 0;  // bytes that may still be inflated
    bool isAtEnd = false;
    std::array<std::uint8_t, kPiece> piece = {};
};

MZLibStream::MZLibStream(MStream& target, int quality)
    : inner_(target), package_(std::make_unique<Package>(false)) {
    if (deflateInit(&package_->stream, (quality - 1) / 10) != Z_OK) {
        throw MException("Could not start compressing.");
    }
}

MZLibStream::MZLibStream(MStream& source, std::size_t ceiling)
    : inner_(source), package_(std::make_unique<Package>(true)) {
    package_->left = ceiling;
    if (inflateInit(&package_->stream) != Z_OK) {
        throw MException("Could not start decompressing.");
    }
}

MZLibStream::~MZLibStream() = default;

bool MZLibStream::FillInput() {
    z_stream& stream = package_->stream;
    if (stream.avail_in > 0) return true;
    stream.next_in = package_->piece.data();
    stream.avail_in = static_cast<uInt>(inner_.Read(package_->piece));
    return stream.avail_in > 0;
}

std::size_t MZLibStream::Read(std::span<std::uint8_t> target) {
    if (!package_->isInflating) throw MException("The stream is write-only.");
    z_stream& stream = package_->stream;
    std::size_t count = 0;
    while (count < target.size() && !package_->isAtEnd) {
        const std::size_t room = std::min(target.size() - count, kPiece);
        stream.next_out = target.data() + count;
        stream.avail_out = static_cast<uInt>(room);
        const bool hasInput = FillInput();
        const int result = inflate(&stream, Z_NO_FLUSH);
        package_->isAtEnd = result == Z_STREAM_END;
        if (result == Z_BUF_ERROR && !hasInput) {
            throw MException("The compressed data ends too early.");
        }
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
            throw MException("The compressed data is damaged.");
        }
        const std::size_t inflated = room - stream.avail_out;
        if (inflated > package_->left) throw MException("The compressed data is too large.");
        package_->left -= inflated;
        count += inflated;
    }
    return count;
}

void MZLibStream::Write(std::span<const std::uint8_t> bytes) {
    // The package counts input in 32 bits.
    constexpr std::size_t kMost = std::size_t{1} << 30;
    for (; bytes.size() > kMost; bytes = bytes.subspan(kMost)) Deflate(bytes.first(kMost), false);
    Deflate(bytes, false);
}

void MZLibStream::Finish() { Deflate({}, true); }

void MZLibStream::Deflate(std::span<const std::uint8_t> bytes, bool isLast) {
    if (package_->isInflating) throw MException("The stream is read-only.");
    z_stream& stream = package_->stream;
    stream.next_in = bytes.data();
    stream.avail_in = static_cast<uInt>(bytes.size());
    do {
        stream.next_out = package_->piece.data();
        stream.avail_out = static_cast<uInt>(kPiece);
        if (deflate(&stream, isLast ? Z_FINISH : Z_NO_FLUSH) == Z_STREAM_ERROR) {
            throw MException("The compressed data has been finished.");
        }
        inner_.Write(std::span(package_->piece).first(kPiece - stream.avail_out));
    } while (stream.avail_out == 0);
}

bool MZLibStream::HasHeader(std::span<const std::uint8_t> bytes) noexcept {
    if (bytes.size() < 2) return false;
    const bool isDeflated = (bytes[0] & 0x0F) == Z_DEFLATED && bytes[0] >> 4 <= 7;
    return isDeflated && (bytes[0] * 256 + bytes[1]) % 31 == 0;
}
