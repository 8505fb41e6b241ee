// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MMemoryStream.h"

#include "core/MException.h"

#include <algorithm>
#include <utility>

std::size_t MMemoryStream::Read(std::span<std::uint8_t> target) {
    const std::span<const std::uint8_t> rest = Rest();
    const std::size_t count = std::min(target.size(), rest.size());
    std::copy_n(rest.begin(), count, target.begin());
    position_ += count;
    return count;
}

void MMemoryStream::Write(std::span<const std::uint8_t> bytes) {
    if (isSource_) throw MException("The stream is read-only.");
    written_.insert(written_.end(), bytes.begin(), bytes.end());
}

std::vector<std::uint8_t> MMemoryStream::Take() noexcept {
    position_ = 0;
    return std::exchange(written_, {});
}
