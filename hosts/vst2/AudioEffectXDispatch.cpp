// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/AudioEffectX.h"

#include <limits>

namespace Vst2 {

namespace {

/// An argument that the interface passes as a number although it is an address.
template <class Type>
Type* AsPointer(VstIntPtr value) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): see above
    return reinterpret_cast<Type*>(value);
}

/// A text operation: an empty text first, so that one that fails leaves nothing behind.
template <class Job>
VstIntPtr WriteText(void* pointer, Job&& job) {
    auto* text = static_cast<char*>(pointer);
    if (text == nullptr) return 0;
    *text = '\0';
    return job(text);
}

VstCaller CallerOf(VstInt32 opcode) noexcept {
    switch (opcode) {
        case effSetSampleRate:
        case effMainsChanged:
        case effSetSpeakerArrangement:
        case effEditGetRect:
        case effEditOpen:
        case effEditClose:
        case effEditIdle:
        case effEditKeyDown:
        case effEditKeyUp:
        case effGetChunk:
        case effSetChunk:
            return VstCaller::Main;
        case effProcessEvents:
        case effStartProcess:
        case effStopProcess:
            return VstCaller::Audio;
        default:
            return VstCaller::Unknown;
    }
}

}  // namespace

/// Opcodes that nobody lists below are answered with 0: offline processing, shells, pan laws, names
/// of MIDI programs, and whatever a host makes up.
VstIntPtr AudioEffectX::Dispatch(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                                 void* pointer, float number) {
    if (effect == nullptr || effect->object == nullptr) return 0;
    AudioEffectX& self = Of(effect);
    if (opcode == effClose) {
        self.close();
        delete &self;
        return 1;
    }
    const Call call = {opcode, index, value, pointer, number};
    using Subject = Answer (AudioEffectX::*)(const Call&);
    constexpr Subject kSubjects[] = {
        &AudioEffectX::DispatchRunning,  &AudioEffectX::DispatchTexts,
        &AudioEffectX::DispatchState,    &AudioEffectX::DispatchEditor,
        &AudioEffectX::DispatchChannels, &AudioEffectX::DispatchIdentity};
    Answer answer;
    for (const Subject subject : kSubjects) {
        if ((answer = (self.*subject)(call))) break;
    }
    self.dispatched(CallerOf(opcode));
    return answer.value_or(0);
}

AudioEffectX::Answer AudioEffectX::DispatchRunning(const Call& call) {
    switch (call.opcode) {
        case effOpen:
            open();
            return 0;
        case effSetSampleRate:
            setSampleRate(call.number);
            return 0;
        case effSetBlockSize:
            setBlockSize(static_cast<VstInt32>(call.value));
            return 0;
        case effMainsChanged:
            if (call.value != 0) {
                resume();
            } else {
                suspend();
            }
            return 0;
        case effProcessEvents:
            return processEvents(static_cast<const VstEvents*>(call.pointer));
        default:
            return std::nullopt;
    }
}

AudioEffectX::Answer AudioEffectX::DispatchTexts(const Call& call) {
    switch (call.opcode) {
        case effGetParamName:
            return WriteText(call.pointer, [&](char* text) {
                getParameterName(call.index, text);
                return 0;
            });
        case effGetParamDisplay:
            return WriteText(call.pointer, [&](char* text) {
                getParameterDisplay(call.index, text);
                return 0;
            });
        case effGetParamLabel:
            return WriteText(call.pointer, [&](char* text) {
                getParameterLabel(call.index, text);
                return 0;
            });
        case effGetEffectName:
            return WriteText(call.pointer, [&](char* text) { return getEffectName(text); });
        case effGetVendorString:
            return WriteText(call.pointer, [&](char* text) { return getVendorString(text); });
        case effGetProductString:
            return WriteText(call.pointer, [&](char* text) { return getProductString(text); });
        case effGetProgramName:
        case effGetProgramNameIndexed:
            return WriteText(call.pointer, [](const char*) { return 0; });  // there are none
        default:
            return std::nullopt;
    }
}

AudioEffectX::Answer AudioEffectX::DispatchState(const Call& call) {
    switch (call.opcode) {
        case effGetChunk:
            if (call.pointer == nullptr) return 0;
            return getChunk(static_cast<void**>(call.pointer), call.index != 0);
        case effSetChunk: {
            const bool fits = call.value >= 0 && call.value <= std::numeric_limits<VstInt32>::max();
            const VstInt32 byteSize = fits ? static_cast<VstInt32>(call.value) : 0;
            return setChunk(call.pointer, byteSize, call.index != 0);
        }
        case effCanBeAutomated:
            return call.index >= 0 && call.index < effect_.numParams;
        case effString2Parameter:
            return string2parameter(call.index, static_cast<const char*>(call.pointer));
        case effGetParameterProperties:
            return call.pointer != nullptr &&
                   getParameterProperties(call.index,
                                          static_cast<VstParameterProperties*>(call.pointer));
        default:
            return std::nullopt;
    }
}

AudioEffectX::Answer AudioEffectX::DispatchChannels(const Call& call) {
    auto* const pin = static_cast<VstPinProperties*>(call.pointer);
    switch (call.opcode) {
        case effGetInputProperties:
            return pin != nullptr && getInputProperties(call.index, pin);
        case effGetOutputProperties:
            return pin != nullptr && getOutputProperties(call.index, pin);
        case effSetSpeakerArrangement:
            return setSpeakerArrangement(AsPointer<VstSpeakerArrangement>(call.value),
                                         static_cast<VstSpeakerArrangement*>(call.pointer));
        case effGetSpeakerArrangement:
            return getSpeakerArrangement(AsPointer<VstSpeakerArrangement*>(call.value),
                                         static_cast<VstSpeakerArrangement**>(call.pointer));
        default:
            return std::nullopt;
    }
}

AudioEffectX::Answer AudioEffectX::DispatchEditor(const Call& call) {
    if (editor_ == nullptr) return std::nullopt;
    const bool hasModifiers = call.number >= 0 && call.number < 256;
    const VstKeyCode key = {call.index, static_cast<unsigned char>(call.value),
                            static_cast<unsigned char>(hasModifiers ? call.number : 0)};
    switch (call.opcode) {
        case effEditGetRect:
            return call.pointer != nullptr && editor_->getRect(static_cast<ERect**>(call.pointer));
        case effEditOpen:
            return editor_->open(call.pointer);
        case effEditClose:
            editor_->close();
            return 0;
        case effEditIdle:
            editor_->idle();
            return 0;
        case effEditKeyDown:
            return editor_->onKeyDown(key);
        case effEditKeyUp:
            return editor_->onKeyUp(key);
        default:
            return std::nullopt;
    }
}

AudioEffectX::Answer AudioEffectX::DispatchIdentity(const Call& call) {
    switch (call.opcode) {
        case effIdentify:
            return kEffectIdentity;
        case effGetPlugCategory:
            return getPlugCategory();
        case effGetVendorVersion:
            return getVendorVersion();
        case effGetVstVersion:
            return getVstVersion();
        case effCanDo:
            return call.pointer == nullptr ? 0 : canDo(static_cast<const char*>(call.pointer));
        case effGetTailSize:
            return getTailSize();
        default:
            return std::nullopt;
    }
}

}  // namespace Vst2
