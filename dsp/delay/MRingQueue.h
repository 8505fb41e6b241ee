// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <bit>
#include <cstddef>
#include <memory>
#include <utility>

/// A queue of plain values in memory that is made beforehand, with access to each of them by its
/// place from the front. One thread at a time.
template <class Value>
class MRingQueue {
public:
    MRingQueue() = default;
    MRingQueue(MRingQueue&& other) noexcept { Swap(other); }
    MRingQueue& operator=(MRingQueue&& other) noexcept {
        Swap(other);
        return *this;
    }
    ~MRingQueue() = default;

    /// Makes room for `count` values in all; those inside stay. [setup]
    void Reserve(int count) {
        if (count <= room_) return;
        const std::size_t room = std::bit_ceil(static_cast<std::size_t>(count));
        auto values = std::make_unique_for_overwrite<Value[]>(room);
        for (int i = 0; i < size_; ++i) values[static_cast<std::size_t>(i)] = (*this)[i];
        values_ = std::move(values);
        room_ = static_cast<int>(room);
        head_ = 0;
    }

    /// There must be room. [audio]
    void Push(const Value& value) noexcept {
        ++size_;
        (*this)[size_ - 1] = value;
    }
    /// There must be a value. [audio]
    Value Pop() noexcept {
        const Value value = (*this)[0];
        head_ = (head_ + 1) & (room_ - 1);
        --size_;
        return value;
    }
    /// Takes the newest one back; there must be one. [audio]
    Value PopBack() noexcept {
        const Value value = Back();
        --size_;
        return value;
    }
    void Clear() noexcept { size_ = 0; }

    Value& operator[](int place) noexcept { return values_[Index(place)]; }
    const Value& operator[](int place) const noexcept { return values_[Index(place)]; }
    Value& Back() noexcept { return (*this)[size_ - 1]; }
    const Value& Back() const noexcept { return (*this)[size_ - 1]; }
    int Size() const noexcept { return size_; }
    int Room() const noexcept { return room_; }

    void Swap(MRingQueue& other) noexcept {
        std::swap(values_, other.values_);
        std::swap(room_, other.room_);
        std::swap(head_, other.head_);
        std::swap(size_, other.size_);
    }

private:
    std::size_t Index(int place) const noexcept {
        return static_cast<std::size_t>((head_ + place) & (room_ - 1));
    }

    std::unique_ptr<Value[]> values_;
    int room_ = 0;  // a power of two, or 0
    int head_ = 0;
    int size_ = 0;
};
