// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// A bounded queue of short texts that any number of threads write and read without a lock. Its
/// memory is part of the object and is good to use when it is all zero.
class MFailureQueue {
public:
    static constexpr int kRecords = 64;
    /// In bytes; longer texts lose their end, and no character is cut in two.
    static constexpr std::size_t kLongest = 480;

    /// Adds `heading` and `text` as one text. A full queue counts it as lost. Neither waits nor
    /// allocates. [any]
    void Post(std::string_view heading, std::string_view text) noexcept;

    /// A text that has been taken out.
    struct Record {
        std::string_view Text() const noexcept { return {bytes.data(), length}; }

        std::array<char, kLongest> bytes{};
        std::size_t length = 0;
    };
    /// Takes the oldest text out; false when there is none, or its writer is not done yet. [any]
    bool Take(Record& record) noexcept;

    /// Whether there is nothing to take and nothing was lost. [any]
    bool IsEmpty() const noexcept {
        return taken_.load(std::memory_order_relaxed) == written_.load(std::memory_order_relaxed) &&
               lost_.load(std::memory_order_relaxed) == 0;
    }

    /// How many were lost since the last call. [any]
    int TakeLost() noexcept { return lost_.exchange(0, std::memory_order_relaxed); }

private:
    /// A place in the queue. In its lap number n it may be written while `turn` is 2n and read
    /// while it is 2n + 1.
    struct Place {
        std::atomic<std::uint64_t> turn{0};
        Record record;
    };

    std::array<Place, kRecords> places_;
    std::atomic<std::uint64_t> written_{0};  // texts so far
    std::atomic<std::uint64_t> taken_{0};
    std::atomic<int> lost_{0};
};
