// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MRelaxed.h"
#include "hosts/vst2/AEffEditor.h"
#include "hosts/vst2/VstOpcodes.h"
#include "hosts/vst2/VstTypes.h"

#include <cstddef>
#include <memory>
#include <optional>

namespace Vst2 {

/// The thread that a call of the host's comes from, as far as the call itself tells.
enum class VstCaller {
    Main,     ///< it takes memory and waits, so that no host makes it where blocks run
    Unknown,  ///< a question, which hosts ask on any thread
    Audio,    ///< it goes with the blocks
};

/// A VST 2.4 plug-in as its host drives it: the record with the plain functions, the way from an
/// opcode to a virtual operation, and the requests to the host. Operations that are not overridden
/// give the interface's usual answers. The host destroys the object by closing it.
///
/// Operations keep the names that the interface has given them. None may let an exception out. Text
/// operations find an empty text and write at most what their host has room for.
class AudioEffectX {
public:
    /// `host` may be null: every request is then answered with 0. [setup]
    AudioEffectX(AudioMasterCallback host, VstInt32 numPrograms, VstInt32 numParams);
    AudioEffectX(const AudioEffectX&) = delete;
    AudioEffectX& operator=(const AudioEffectX&) = delete;
    virtual ~AudioEffectX();

    /// The record that the host keeps; lives as long as this. [any]
    AEffect* getAeffect() noexcept { return &effect_; }

    virtual void open() {}
    virtual void close() {}
    virtual void suspend() {}
    virtual void resume() {}

    /// Hertz; whatever the host says. [main]
    virtual void setSampleRate(float rate);
    virtual void setBlockSize(VstInt32 frames);
    float getSampleRate() const noexcept { return sampleRate_; }
    VstInt32 getBlockSize() const noexcept { return blockSize_; }

    /// Blocks are [channels][frames]; the first adds to the outputs. [audio]
    virtual void process(float** inputs, float** outputs, VstInt32 frames) = 0;
    virtual void processReplacing(float** inputs, float** outputs, VstInt32 frames) = 0;
    /// The host has made a call and is about to get its answer. [any]
    virtual void dispatched(VstCaller /*caller*/) {}
    /// Events of the next block; answers 1. [audio]
    virtual VstInt32 processEvents(const VstEvents* events);

    virtual void setParameter(VstInt32 index, float value) = 0;
    virtual float getParameter(VstInt32 index) = 0;
    virtual void getParameterName(VstInt32 index, char* text) = 0;
    virtual void getParameterDisplay(VstInt32 index, char* text) = 0;
    virtual void getParameterLabel(VstInt32 index, char* text) = 0;
    /// Sets a parameter to a typed value. A null text asks whether it takes any. [main]
    virtual bool string2parameter(VstInt32 index, const char* text);
    /// Whether there is something to say; only then anything is written. [any]
    virtual bool getParameterProperties(VstInt32 index, VstParameterProperties* properties);

    /// The state's bytes, which stay valid until the next call; the result is their count. [main]
    virtual VstInt32 getChunk(void** data, bool isPreset);
    virtual VstInt32 setChunk(const void* data, VstInt32 byteSize, bool isPreset);

    virtual bool getInputProperties(VstInt32 index, VstPinProperties* properties);
    virtual bool getOutputProperties(VstInt32 index, VstPinProperties* properties);
    /// Either may be null. Not while blocks run. [main]
    virtual bool setSpeakerArrangement(const VstSpeakerArrangement* input,
                                       const VstSpeakerArrangement* output);
    virtual bool getSpeakerArrangement(VstSpeakerArrangement** input,
                                       VstSpeakerArrangement** output);

    virtual bool getEffectName(char* text);
    virtual bool getVendorString(char* text);
    virtual bool getProductString(char* text);
    virtual VstInt32 getVendorVersion();
    VstInt32 getVstVersion() const noexcept { return kVstVersion; }
    VstPlugCategory getPlugCategory() const noexcept;
    /// 1 for yes, -1 for no, 0 for what it has never heard of. [any]
    virtual VstInt32 canDo(const char* text);
    /// In samples: 1 for no tail, 0 for what is not known. [any]
    virtual VstInt32 getTailSize();

    AEffEditor* getEditor() const noexcept { return editor_.get(); }

protected:
    VstInt32 getNumInputs() const noexcept { return effect_.numInputs; }
    VstInt32 getNumOutputs() const noexcept { return effect_.numOutputs; }
    void setNumInputs(VstInt32 channels) noexcept { effect_.numInputs = channels; }
    void setNumOutputs(VstInt32 channels) noexcept { effect_.numOutputs = channels; }
    void setUniqueID(VstInt32 identifier) noexcept { effect_.uniqueID = identifier; }
    /// Any thread may, whenever the latency changes; the host looks when it is told.
    void setInitialDelay(VstInt32 samples) noexcept {
        MRelaxed::Store(effect_.initialDelay, samples);
    }
    void setFlag(VstAEffectFlags flag, bool isSet) noexcept;
    /// Replaces the host's way to processReplacing, for classes whose function can do without the
    /// virtual one. [setup]
    void setProcessReplacing(AEffectProcess function) noexcept {
        effect_.processReplacing = function;
    }
    /// What the host's functions get, as the object behind it. [any]
    static AudioEffectX& Of(AEffect* effect) noexcept {
        return *static_cast<AudioEffectX*>(effect->object);
    }
    bool hasFlag(VstAEffectFlags flag) const noexcept { return (effect_.flags & flag) != 0; }
    /// Takes the editor over; the host learns that there is one. [setup]
    void setEditor(std::unique_ptr<AEffEditor> editor) noexcept;

    /// Requests to the host; 0, null or false from a host that does not answer. [any]
    VstInt32 getMasterVersion();
    void wantEvents();
    /// `fields`: VstTimeInfoFlags; valid until the next call. [audio]
    const VstTimeInfo* getTimeInfo(VstInt32 fields) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the interface passes this address as a number
        return reinterpret_cast<const VstTimeInfo*>(AskHost(audioMasterGetTime, 0, fields));
    }
    bool sendVstEventsToHost(VstEvents& events);
    /// The host reads channel counts and delay anew; false when it says that it does not. [main]
    bool ioChanged();
    bool sizeWindow(VstInt32 width, VstInt32 height);
    bool updateDisplay();
    void automate(VstInt32 index, float value);

private:
    using Answer = std::optional<VstIntPtr>;  // none: the opcode belongs to another subject

    /// One call of the host.
    struct Call {
        VstInt32 opcode;
        VstInt32 index;
        VstIntPtr value;
        void* pointer;
        float number;
    };

    static VstIntPtr Dispatch(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                              void* pointer, float number);

    Answer DispatchRunning(const Call& call);
    Answer DispatchTexts(const Call& call);
    Answer DispatchState(const Call& call);
    Answer DispatchChannels(const Call& call);
    Answer DispatchEditor(const Call& call);
    Answer DispatchIdentity(const Call& call);

    VstIntPtr AskHost(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0,
                      void* pointer = nullptr, float number = 0) {
        return host_(&effect_, opcode, index, value, pointer, number);
    }

    float sampleRate_ = 44100;
    VstInt32 blockSize_ = 1024;
    std::unique_ptr<AEffEditor> editor_;
    alignas(64) AEffect effect_ = {};
    AudioMasterCallback host_;  // never null; last, since what blocks read follows
};

}  // namespace Vst2
