// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <bit>
#include <cstddef>
#include <memory>

/// Scratch memory that grows in powers of two and never shrinks. Its content is not kept over
/// growth and not cleared: memory that nobody has written yet costs no physical page.
template <class Number>
class MGrowingBuffer {
public:
    /// Room for `count` numbers. Allocates when `count` exceeds every count so far. [audio]
    Number* Get(int count) {
        if (count > capacity_) {
            const std::size_t grown = std::bit_ceil(static_cast<std::size_t>(count));
            // The old memory goes first, so that the peak is one buffer.
            data_.reset();
            capacity_ = 0;
            data_ = std::make_unique_for_overwrite<Number[]>(grown);
            capacity_ = static_cast<int>(grown);
        }
        return data_.get();
    }

    /// Gives the memory back. [setup]
    void Free() noexcept {
        data_.reset();
        capacity_ = 0;
    }

private:
    std::unique_ptr<Number[]> data_;
    int capacity_ = 0;
};
