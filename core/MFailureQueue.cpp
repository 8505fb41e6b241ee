// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MFailureQueue.h"

#include <algorithm>

namespace {

/// As much of `text` as fits into `room` bytes, up to the end of a character.
std::string_view Fitting(std::string_view text, std::size_t room) noexcept {
    if (text.size() <= room) return text;
    const auto goesOn = [&](std::size_t i) {
        return (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
    };
    while (room > 0 && goesOn(room)) --room;
    return text.substr(0, room);
}

void Append(MFailureQueue::Record& record, std::string_view text) noexcept {
    const std::string_view part = Fitting(text, record.bytes.size() - record.length);
    std::copy(part.begin(), part.end(), record.bytes.begin() + record.length);
    record.length += part.size();
}

}  // namespace

void MFailureQueue::Post(std::string_view heading, std::string_view text) noexcept {
    std::uint64_t number = written_.load(std::memory_order_relaxed);
    while (true) {
        Place& place = places_[number % kRecords];
        const std::uint64_t writable = 2 * (number / kRecords);
        const std::uint64_t turn = place.turn.load(std::memory_order_acquire);
        if (turn < writable) {  // still to be read from the lap before
            lost_.fetch_add(1, std::memory_order_relaxed);
            return;
        }
        if (turn > writable) {  // somebody else was faster
            number = written_.load(std::memory_order_relaxed);
        } else if (written_.compare_exchange_weak(number, number + 1, std::memory_order_relaxed)) {
            place.record.length = 0;
            Append(place.record, heading);
            Append(place.record, text);
            place.turn.store(writable + 1, std::memory_order_release);
            return;
        }
    }
}

bool MFailureQueue::Take(Record& record) noexcept {
    std::uint64_t number = taken_.load(std::memory_order_relaxed);
    while (true) {
        Place& place = places_[number % kRecords];
        const std::uint64_t readable = 2 * (number / kRecords) + 1;
        const std::uint64_t turn = place.turn.load(std::memory_order_acquire);
        if (turn < readable) return false;
        if (turn > readable) {
            number = taken_.load(std::memory_order_relaxed);
        } else if (taken_.compare_exchange_weak(number, number + 1, std::memory_order_relaxed)) {
            record.length = 0;
            Append(record, place.record.Text());
            place.turn.store(readable + 1, std::memory_order_release);
            return true;
        }
    }
}
