// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MGuard.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>

namespace Vst2 {

namespace {

std::array<std::uint8_t, 4> MidiBytes(const VstMidiEvent& event) noexcept {
    std::array<std::uint8_t, 4> bytes = {};
    std::memcpy(bytes.data(), event.midiData, bytes.size());
    return bytes;
}

/// Room for a VstEvents with any number of pointers, which lie one behind the other at its end.
using EventList = std::vector<VstIntPtr>;
constexpr std::size_t kWordsBeforePointers = offsetof(VstEvents, events) / sizeof(VstIntPtr);
static_assert(std::endian::native == std::endian::little, "the count is the first word's low half");

EventList ListOf(std::vector<VstMidiEvent>& events) {
    EventList words(kWordsBeforePointers, 0);
    words.reserve(kWordsBeforePointers + events.size());
    words.front() = static_cast<VstInt32>(events.size());
    for (VstMidiEvent& event : events) words.push_back(reinterpret_cast<VstIntPtr>(&event));
    return words;
}

}  // namespace

void MAudioPluginVSTAdapter::process(float** inputs, float** outputs, VstInt32 frames) {
    Guard("MAudioPluginVSTAdapter::process",
          [&] { PerformProcessing(inputs, outputs, frames, false); });
}

void MAudioPluginVSTAdapter::processReplacing(float** inputs, float** outputs, VstInt32 frames) {
    Guard("MAudioPluginVSTAdapter::processReplacing",
          [&] { PerformProcessing(inputs, outputs, frames, true); });
}

// One straight piece of code from the host to the plug-in and back. The plug-in has driven out of
// the processor's caches what was there, so that small blocks pay for every call on the way.
void MAudioPluginVSTAdapter::ReplaceBlock(AEffect* effect, float** inputs, float** outputs,
                                          VstInt32 frames) {
    static_cast<MAudioPluginVSTAdapter&>(Of(effect)).processReplacing(inputs, outputs, frames);
}

void MAudioPluginVSTAdapter::PerformProcessing(float** inputs, float** outputs, VstInt32 frames,
                                               bool replacing) {
    if (frames <= 0 || outputs == nullptr) return;
    Guard("MAudioPluginVSTAdapter::PerformProcessing", [&] {
        isInBlock_.store(true, std::memory_order_relaxed);
        PrepareProcessing(frames);
        if (hasIncoming_.load(std::memory_order_acquire)) DeliverQueuedMIDIEvents();
        if (replacing) {
            plugin_->Process(inputs, outputs, frames);
            if (hasSurplus_) [[unlikely]]
                FillSurplus(outputs, frames);
        } else {
            accumulator_.Process(*plugin_, inputs, outputs, getNumOutputs(), frames);
        }
        if (hasOutgoing_.load(std::memory_order_acquire)) SendQueuedMIDIEvents();
    });
    isInBlock_.store(false, std::memory_order_relaxed);
}

void MAudioPluginVSTAdapter::PrepareProcessing(VstInt32 frames) {
    if (!wantsHostTime_) [[unlikely]] {
        plugin_->Transport().isValid = true;
        return;
    }
    const VstTimeInfo* time = getTimeInfo(MVSTTransport::kFields);
    if (time != nullptr) [[likely]]
        transport_.Update(*time, frames, plugin_->Transport());
}

void MAudioPluginVSTAdapter::FillSurplus(float* const* outputs, VstInt32 frames) const {
    const int own = plugin_->OutputChannelCount();
    const float* const last = outputs[own - 1];
    for (int channel = own; channel < getNumOutputs(); ++channel) {
        if (outputs[channel] == nullptr) continue;
        if (last != nullptr) {
            std::copy_n(last, frames, outputs[channel]);
        } else {
            std::fill_n(outputs[channel], frames, 0.0f);
        }
    }
}

void MAudioPluginVSTAdapter::DeliverQueuedMIDIEvents() {
    for (const VstMidiEvent& event : incoming_.TakeAll()) {
        plugin_->ProcessMIDIEvent(event.deltaFrames, MidiBytes(event));
    }
}

void MAudioPluginVSTAdapter::SendQueuedMIDIEvents() {
    EventList list = ListOf(outgoing_.TakeAll());
    sendVstEventsToHost(*reinterpret_cast<VstEvents*>(list.data()));
}

VstInt32 MAudioPluginVSTAdapter::processEvents(const VstEvents* events) {
    Guard("MAudioPluginVSTAdapter::processEvents", [&] {
        if (events == nullptr || events->numEvents <= 0) return;
        isInBlock_.store(true, std::memory_order_relaxed);
        const VstTimeInfo* time = getTimeInfo(MVSTTransport::kPositionFields);
        if (time != nullptr) transport_.UpdatePosition(*time, plugin_->Transport());
        VstEvent* const* const list = events->events;
        for (VstInt32 i = 0; i < events->numEvents; ++i) {
            if (list[i] == nullptr || list[i]->type != kVstMidiType) continue;
            VstMidiEvent event = {};
            std::memcpy(&event, list[i], sizeof event);
            plugin_->ProcessMIDIEvent(event.deltaFrames, MidiBytes(event));
        }
    });
    isInBlock_.store(false, std::memory_order_relaxed);
    return 1;
}

}  // namespace Vst2
