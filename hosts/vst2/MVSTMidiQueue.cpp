// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MVSTMidiQueue.h"

#include "hosts/vst2/VstOpcodes.h"

#include <bit>
#include <cstddef>
#include <cstring>

namespace Vst2 {

VstMidiEvent MakeMidiEvent(int deltaFrames, const std::array<std::uint8_t, 4>& data) noexcept {
    VstMidiEvent event = {};
    event.type = kVstMidiType;
    event.byteSize = sizeof(VstMidiEvent);
    event.deltaFrames = deltaFrames;
    std::memcpy(event.midiData, data.data(), data.size());
    return event;
}

void MVSTMidiQueue::Append(const VstMidiEvent& event) {
    const MLock lock(mutex_);
    const std::size_t count = waiting_.size() + 1;
    if (count > 2 && count > waiting_.capacity()) waiting_.reserve(std::bit_ceil(count));
    waiting_.push_back(event);
    hasEvents_.store(true, std::memory_order_release);
}

std::vector<VstMidiEvent>& MVSTMidiQueue::TakeAll() {
    taken_.clear();
    const MLock lock(mutex_);
    taken_.swap(waiting_);
    hasEvents_.store(false, std::memory_order_relaxed);
    return taken_;
}

}  // namespace Vst2
