// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/hostcheck/MVst2Host.h"

#include "core/MException.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

using namespace Vst2;

namespace {

void WriteText(void* buffer, std::string_view text) {
    if (buffer == nullptr) return;
    std::memcpy(buffer, text.data(), text.size());
    static_cast<char*>(buffer)[text.size()] = '\0';
}

VstSpeakerArrangement Arrangement(int channels) {
    VstSpeakerArrangement arrangement = {};
    arrangement.type = channels == 1 ? kSpeakerArrMono : kSpeakerArrStereo;
    arrangement.numChannels = channels;
    return arrangement;
}

}  // namespace

// A plug-in asks its first questions before the host knows its record.
VstIntPtr MVst2Host::Answer(AEffect* effect, VstInt32 opcode, VstInt32 /*index*/,
                            VstIntPtr /*value*/, void* pointer, float /*number*/) {
    auto* host = effect == nullptr ? nullptr : static_cast<MVst2Host*>(effect->user);
    switch (opcode) {
        case audioMasterVersion:
            return kVstVersion;
        case audioMasterGetVendorString:
        case audioMasterGetProductString:
            WriteText(pointer, "kestrune-hostcheck");
            return 1;
        case audioMasterGetTime:
            return host == nullptr ? 0 : reinterpret_cast<VstIntPtr>(&host->time_);
        case audioMasterIOChanged:
            if (host == nullptr) return 0;
            host->NoteChange(host->asked_.latencyReports);
            return host->followsChanges_ ? 1 : 0;
        case audioMasterUpdateDisplay:
            if (host != nullptr) host->NoteChange(host->asked_.displayUpdates);
            return 1;
        case audioMasterAutomate:
            if (host != nullptr) ++host->asked_.automations;
            return 1;
        default:
            return 0;
    }
}

void MVst2Host::NoteChange(std::atomic<int>& kind) noexcept {
    ++kind;
    if (blockThread_ == std::this_thread::get_id()) ++asked_.inBlocks;
}

MVst2Host::MVst2Host(MPluginLibrary::Vst2Entry entry) : effect_(entry(&MVst2Host::Answer)) {
    if (effect_ == nullptr || effect_->magic != kEffectMagic) {
        throw MException("the plug-in could not be created");
    }
    effect_->user = this;
    Call(effOpen);
}

MVst2Host::~MVst2Host() {
    Call(effMainsChanged, 0, 0);
    Call(effClose);
}

VstIntPtr MVst2Host::Call(VstEffectOpcode opcode, VstInt32 index, VstIntPtr value, void* pointer,
                          float number) {
    return effect_->dispatcher(effect_, opcode, index, value, pointer, number);
}

std::string MVst2Host::Text(VstEffectOpcode opcode, int index) {
    std::array<char, 256> text = {};
    Call(opcode, index, 0, text.data());
    return text.data();
}

std::optional<int> MVst2Host::FindParameter(std::string_view name) {
    for (int i = 0; i < ParameterCount(); ++i) {
        if (Text(effGetParamName, i) == name) return i;
    }
    return std::nullopt;
}

bool MVst2Host::SetParameterText(int index, const std::string& text) {
    std::string typed = text;  // the interface has no word for what is not written to
    return Call(effString2Parameter, index, 0, typed.data()) != 0;
}

std::vector<std::uint8_t> MVst2Host::SaveState() {
    void* data = nullptr;
    const VstIntPtr count = Call(effGetChunk, 0, 0, &data);
    if (count <= 0 || data == nullptr) return {};
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + count};
}

void MVst2Host::LoadState(std::span<const std::uint8_t> state) {
    std::vector<std::uint8_t> copy(state.begin(), state.end());
    Call(effSetChunk, 0, static_cast<VstIntPtr>(copy.size()), copy.data());
}

bool MVst2Host::Start(int channels, int sampleRate, int maximumFrames) {
    Call(effMainsChanged, 0, 0);
    Call(effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRate));
    Call(effSetBlockSize, 0, maximumFrames);
    if (!Arrange(channels)) return false;
    Call(effMainsChanged, 0, 1);
    Call(effStartProcess);
    return true;
}

bool MVst2Host::Arrange(int channels) {
    VstSpeakerArrangement input = Arrangement(channels);
    VstSpeakerArrangement output = input;
    const bool isTaken =
        Call(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&input), &output) != 0;
    return isTaken || (channels == effect_->numInputs && channels == effect_->numOutputs);
}

void MVst2Host::SendMIDI(int frame, const std::array<std::uint8_t, 4>& data) {
    VstEvent event = {};
    event.type = kVstMidiType;
    event.byteSize = sizeof(VstMidiEvent);
    event.deltaFrames = frame;
    std::memcpy(event.data + (offsetof(VstMidiEvent, midiData) - offsetof(VstEvent, data)),
                data.data(), data.size());
    VstEvents events = {1, 0, {&event, nullptr}};
    blockThread_ = std::this_thread::get_id();
    Call(effProcessEvents, 0, 0, &events);
    blockThread_ = std::thread::id();
}

void MVst2Host::Process(const float* const* inputs, float* const* outputs, int frames) {
    // Plug-ins get their pointers in arrays that are theirs to change.
    std::array<float*, 16> in = {};
    std::array<float*, 16> out = {};
    const auto count = [](int channels, std::size_t room) {
        return std::min(static_cast<std::size_t>(std::max(channels, 0)), room);
    };
    for (std::size_t i = 0; i < count(effect_->numInputs, in.size()); ++i) {
        in[i] = const_cast<float*>(inputs[i]);  // NOLINT: the interface has no word for inputs
    }
    std::copy_n(outputs, count(effect_->numOutputs, out.size()), out.begin());
    blockThread_ = std::this_thread::get_id();
    effect_->processReplacing(effect_, in.data(), out.data(), frames);
    blockThread_ = std::thread::id();
}
