// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/AudioEffectX.h"

#include <utility>

namespace Vst2 {

namespace {

/// A host that answers nothing.
VstIntPtr AnswerNothing(AEffect* /*effect*/, VstInt32 /*opcode*/, VstInt32 /*index*/,
                        VstIntPtr /*value*/, void* /*pointer*/, float /*number*/) {
    return 0;
}

}  // namespace

AudioEffectX::AudioEffectX(AudioMasterCallback host, VstInt32 numPrograms, VstInt32 numParams)
    : host_(host != nullptr ? host : &AnswerNothing) {
    effect_.magic = kEffectMagic;
    effect_.dispatcher = &AudioEffectX::Dispatch;
    effect_.process = [](AEffect* effect, float** inputs, float** outputs, VstInt32 frames) {
        Of(effect).process(inputs, outputs, frames);
    };
    effect_.processReplacing = [](AEffect* effect, float** inputs, float** outputs,
                                  VstInt32 frames) {
        Of(effect).processReplacing(inputs, outputs, frames);
    };
    effect_.setParameter = [](AEffect* effect, VstInt32 index, float value) {
        Of(effect).setParameter(index, value);
    };
    effect_.getParameter = [](AEffect* effect, VstInt32 index) {
        return Of(effect).getParameter(index);
    };
    effect_.numPrograms = numPrograms;
    effect_.numParams = numParams;
    effect_.ioRatio = 1;
    effect_.object = this;
    effect_.version = 1;
}

AudioEffectX::~AudioEffectX() = default;

void AudioEffectX::setSampleRate(float rate) { sampleRate_ = rate; }
void AudioEffectX::setBlockSize(VstInt32 frames) { blockSize_ = frames; }

VstInt32 AudioEffectX::processEvents(const VstEvents* /*events*/) { return 0; }

bool AudioEffectX::string2parameter(VstInt32 /*index*/, const char* /*text*/) { return false; }

bool AudioEffectX::getParameterProperties(VstInt32 /*index*/,
                                          VstParameterProperties* /*properties*/) {
    return false;
}

VstInt32 AudioEffectX::getChunk(void** /*data*/, bool /*isPreset*/) { return 0; }
VstInt32 AudioEffectX::setChunk(const void* /*data*/, VstInt32 /*byteSize*/, bool /*isPreset*/) {
    return 0;
}

bool AudioEffectX::getInputProperties(VstInt32 /*index*/, VstPinProperties* /*properties*/) {
    return false;
}
bool AudioEffectX::getOutputProperties(VstInt32 /*index*/, VstPinProperties* /*properties*/) {
    return false;
}
bool AudioEffectX::setSpeakerArrangement(const VstSpeakerArrangement* /*input*/,
                                         const VstSpeakerArrangement* /*output*/) {
    return false;
}
bool AudioEffectX::getSpeakerArrangement(VstSpeakerArrangement** input,
                                         VstSpeakerArrangement** output) {
    if (input != nullptr) *input = nullptr;
    if (output != nullptr) *output = nullptr;
    return false;
}

bool AudioEffectX::getEffectName(char* /*text*/) { return false; }
bool AudioEffectX::getVendorString(char* /*text*/) { return false; }
bool AudioEffectX::getProductString(char* /*text*/) { return false; }
VstInt32 AudioEffectX::getVendorVersion() { return 0; }
VstInt32 AudioEffectX::canDo(const char* /*text*/) { return 0; }
VstInt32 AudioEffectX::getTailSize() { return 0; }

VstPlugCategory AudioEffectX::getPlugCategory() const noexcept {
    return hasFlag(effFlagsIsSynth) ? kPlugCategSynth : kPlugCategUnknown;
}

void AudioEffectX::setFlag(VstAEffectFlags flag, bool isSet) noexcept {
    effect_.flags = isSet ? effect_.flags | flag : effect_.flags & ~flag;
}

void AudioEffectX::setEditor(std::unique_ptr<AEffEditor> editor) noexcept {
    editor_ = std::move(editor);
    setFlag(effFlagsHasEditor, editor_ != nullptr);
}

VstInt32 AudioEffectX::getMasterVersion() {
    return static_cast<VstInt32>(AskHost(audioMasterVersion));
}

void AudioEffectX::wantEvents() { AskHost(audioMasterWantMidi, 0, 1); }

bool AudioEffectX::sendVstEventsToHost(VstEvents& events) {
    return AskHost(audioMasterProcessEvents, 0, 0, &events) == 1;
}

bool AudioEffectX::ioChanged() { return AskHost(audioMasterIOChanged) != 0; }

bool AudioEffectX::sizeWindow(VstInt32 width, VstInt32 height) {
    return AskHost(audioMasterSizeWindow, width, height) != 0;
}

bool AudioEffectX::updateDisplay() { return AskHost(audioMasterUpdateDisplay) != 0; }

void AudioEffectX::automate(VstInt32 index, float value) {
    AskHost(audioMasterAutomate, index, 0, nullptr, value);
}

}  // namespace Vst2
