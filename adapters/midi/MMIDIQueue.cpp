// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/midi/MMIDIQueue.h"

#include <algorithm>

MMIDIQueue::MMIDIQueue() : events_(std::make_unique<Event[]>(kCapacity)) {}

void MMIDIQueue::Add(int offset, const MMIDIMessage& message) noexcept {
    if (message.kind == MMIDIMessage::Kind::None) return;
    if (next_ == size_) Clear();  // what was taken needs no room
    const bool isNoteEnd = message.kind == MMIDIMessage::Kind::NoteOff || message.EndsNotes();
    if (size_ >= (isNoteEnd ? kCapacity : kCapacity - kForNoteEnds)) {
        ++dropped_;
        return;
    }
    offset = std::max(offset, 0);
    if (size_ > begun_ && offset < events_[size_ - 1].offset) isInOrder_ = false;
    events_[size_] = {offset, size_, message};
    ++size_;
}

void MMIDIQueue::BeginBlock(int count) noexcept {
    Event* const events = events_.get();
    for (int i = next_; i < begun_; ++i) events[i].offset = 0;
    std::copy(events + next_, events + size_, events);
    size_ -= next_;
    next_ = 0;
    begun_ = size_;
    if (!isInOrder_) {
        // Not a stable sort, which would take memory: the order of arrival decides.
        std::sort(events, events + size_, [](const Event& left, const Event& right) {
            return left.offset != right.offset ? left.offset < right.offset
                                               : left.order < right.order;
        });
    }
    isInOrder_ = true;
    count_ = std::max(count, 0);
    for (int i = 0; i < size_; ++i) {
        events[i].offset = std::min(events[i].offset, std::max(count_ - 1, 0));
        events[i].order = i;
    }
}

int MMIDIQueue::NextOffset(int position) const noexcept {
    return next_ < begun_ ? std::max(events_[next_].offset, position) : count_;
}

const MMIDIMessage* MMIDIQueue::Take(int position) noexcept {
    if (next_ >= begun_ || events_[next_].offset > position) return nullptr;
    return &events_[next_++].message;
}

void MMIDIQueue::Clear() noexcept {
    size_ = next_ = begun_ = 0;
    isInOrder_ = true;
}
