// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MGuard.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "hosts/vst2/MVSTText.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <string_view>

namespace Vst2 {

namespace {

using Texts = std::array<std::string_view, 4>;

constexpr Texts kReceivesMidi = {"receiveVstEvents", "receiveVstEvent", "receiveVstMidiEvents",
                                 "receiveVstMidiEvent"};
constexpr Texts kSendsMidi = {"sendVstEvents", "sendVstEvent", "sendVstMidiEvents",
                              "sendVstMidiEvent"};
constexpr Texts kAlways = {"plugAsChannelInsert", "canMono", "plugAsSend", "receiveVstTimeInfo"};

bool Contains(const Texts& texts, std::string_view text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

}  // namespace

VstInt32 MAudioPluginVSTAdapter::canDo(const char* text) {
    return Guard("MAudioPluginVSTAdapter::canDo", 0, [&] {
        const std::string_view asked = text;
        if (Contains(kReceivesMidi, asked)) return plugin_->ReceivesMIDI() ? 1 : -1;
        if (Contains(kSendsMidi, asked)) return plugin_->SendsMIDI() ? 1 : -1;
        if (Contains(kAlways, asked)) return 1;
        // The plug-in fades its own bypass and keeps its latency; a host's would click.
        return asked == "bypass" ? -1 : 0;
    });
}

VstInt32 MAudioPluginVSTAdapter::getTailSize() {
    return Guard("MAudioPluginVSTAdapter::getTailSize", VstInt32{0}, [&] {
        const VstInt32 tail = plugin_->GetTailLength();
        return tail < 0 ? std::numeric_limits<VstInt32>::max() : std::max(tail, VstInt32{1});
    });
}

bool MAudioPluginVSTAdapter::getEffectName(char* text) {
    return Guard("MAudioPluginVSTAdapter::getEffectName", false, [&] {
        CopyText(plugin_->Identity().name, kLongestEffectName, text);
        return true;
    });
}

bool MAudioPluginVSTAdapter::getVendorString(char* text) {
    return Guard("MAudioPluginVSTAdapter::getVendorString", false, [&] {
        CopyText(plugin_->Identity().vendor, kLongestVendorText, text);
        return true;
    });
}

bool MAudioPluginVSTAdapter::getProductString(char* text) {
    return Guard("MAudioPluginVSTAdapter::getProductString", false, [&] {
        CopyText(plugin_->Identity().name, kLongestVendorText, text);
        return true;
    });
}

bool MAudioPluginVSTAdapter::getInputProperties(VstInt32 index, VstPinProperties* properties) {
    return Guard("MAudioPluginVSTAdapter::getInputProperties", false,
                 [&] { return FillPin(index, plugin_->InputChannelCount(), *properties); });
}

bool MAudioPluginVSTAdapter::getOutputProperties(VstInt32 index, VstPinProperties* properties) {
    return Guard("MAudioPluginVSTAdapter::getOutputProperties", false,
                 [&] { return FillPin(index, plugin_->OutputChannelCount(), *properties); });
}

bool MAudioPluginVSTAdapter::FillPin(VstInt32 index, int channelCount,
                                     VstPinProperties& pin) const {
    if (index < 0 || index >= channelCount) return false;
    const std::string name = MBusLayout::ChannelName(index, channelCount);
    CopyText(name, kLongestPinLabel, pin.label);
    CopyText(name, kLongestShortPinLabel, pin.shortLabel);
    switch (plugin_->ChannelsPerBus()) {
        case 1:
            pin.flags = kVstPinIsActive;
            pin.arrangementType = kSpeakerArrMono;
            break;
        case 2:
            pin.flags = kVstPinIsActive | kVstPinIsStereo;
            pin.arrangementType = kSpeakerArrStereo;
            break;
        default:
            pin.flags = kVstPinIsActive | kVstPinUseSpeaker;
            pin.arrangementType = kSpeakerArr80Music;
    }
    return true;
}

bool MAudioPluginVSTAdapter::setSpeakerArrangement(const VstSpeakerArrangement* input,
                                                   const VstSpeakerArrangement* output) {
    return Guard("MAudioPluginVSTAdapter::setSpeakerArrangement", false, [&] {
        if (input != nullptr && input->numChannels > created_.inputs) return false;
        if (output != nullptr && output->numChannels > created_.outputs) return false;
        const int width = CreatedChannelsPerBus();
        MBusLayout layout = plugin_->BusLayout();
        if (created_.inputs < width) {
            layout.inputs = 0;
        } else if (input != nullptr) {
            layout.inputs = std::min<int>(input->numChannels, width);
        }
        layout.outputs = output == nullptr ? 1 : std::clamp<int>(output->numChannels, 1, width);
        const MBusLayout before = plugin_->BusLayout();
        if (!plugin_->SetBusLayout(layout)) return false;
        if (layout != before) TellChannels(layout);
        return true;
    });
}

// A host that does not follow goes on handing over, and reading, as many channels as before. More
// channels than before are what it has just asked for.
void MAudioPluginVSTAdapter::TellChannels(const MBusLayout& layout) {
    const VstInt32 inputs = getNumInputs();
    const VstInt32 outputs = getNumOutputs();
    setNumInputs(layout.inputs);
    setNumOutputs(layout.outputs);
    if (!ioChanged()) {
        setNumInputs(std::max(inputs, layout.inputs));
        setNumOutputs(std::max(outputs, layout.outputs));
    }
    hasSurplus_ = getNumOutputs() > layout.outputs;
}

}  // namespace Vst2
