// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

/// The plain data that crosses the boundary between a VST 2.4 host and a plug-in on a 64-bit
/// machine. Names, order and sizes are those of the published interface, and checked below; every
/// text is zero-terminated.
namespace Vst2 {

using VstInt32 = std::int32_t;
using VstIntPtr = std::intptr_t;

struct AEffect;

/// The host's single entry for the plug-in, and the plug-in's for the host.
using AudioMasterCallback = VstIntPtr (*)(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                          VstIntPtr value, void* pointer, float number);
using AEffectDispatcher = AudioMasterCallback;
using AEffectProcess = void (*)(AEffect* effect, float** inputs, float** outputs, VstInt32 frames);
using AEffectProcessDouble = void (*)(AEffect* effect, double** inputs, double** outputs,
                                      VstInt32 frames);
using AEffectSetParameter = void (*)(AEffect* effect, VstInt32 index, float value);
using AEffectGetParameter = float (*)(AEffect* effect, VstInt32 index);

/// A four-character code as a number, first character highest.
constexpr VstInt32 FourCharacters(const char (&code)[5]) {
    return (code[0] << 24) | (code[1] << 16) | (code[2] << 8) | code[3];
}

inline constexpr VstInt32 kEffectMagic = FourCharacters("VstP");

/// What the host knows of one instance.
struct AEffect {
    VstInt32 magic;
    AEffectDispatcher dispatcher;
    AEffectProcess process;  ///< adds to what the outputs hold
    AEffectSetParameter setParameter;
    AEffectGetParameter getParameter;
    VstInt32 numPrograms;
    VstInt32 numParams;
    VstInt32 numInputs;     ///< channels
    VstInt32 numOutputs;    ///< channels
    VstInt32 flags;         ///< VstAEffectFlags
    VstIntPtr resvd1;       ///< the host's
    VstIntPtr resvd2;       ///< the host's
    VstInt32 initialDelay;  ///< samples by which the output comes late
    VstInt32 realQualities;
    VstInt32 offQualities;
    float ioRatio;
    void* object;  ///< the plug-in's
    void* user;    ///< the host's
    VstInt32 uniqueID;
    VstInt32 version;
    AEffectProcess processReplacing;
    AEffectProcessDouble processDoubleReplacing;
    char future[56];
};

struct VstEvent {
    VstInt32 type;  ///< VstEventTypes
    VstInt32 byteSize;
    VstInt32 deltaFrames;  ///< samples from the start of the block
    VstInt32 flags;
    char data[16];
};

/// A list of events; as many pointers follow as `numEvents` says.
struct VstEvents {
    VstInt32 numEvents;
    VstIntPtr reserved;
    VstEvent* events[2];
};

struct VstMidiEvent {
    VstInt32 type;
    VstInt32 byteSize;
    VstInt32 deltaFrames;
    VstInt32 flags;
    VstInt32 noteLength;
    VstInt32 noteOffset;
    char midiData[4];
    char detune;
    char noteOffVelocity;
    char reserved1;
    char reserved2;
};

/// Positions and lengths in quarter notes, but for the first three and the last ones.
struct VstTimeInfo {
    double samplePos;
    double sampleRate;
    double nanoSeconds;
    double ppqPos;
    double tempo;  ///< quarter notes per minute
    double barStartPos;
    double cycleStartPos;
    double cycleEndPos;
    VstInt32 timeSigNumerator;
    VstInt32 timeSigDenominator;
    VstInt32 smpteOffset;
    VstInt32 smpteFrameRate;
    VstInt32 samplesToNextClock;
    VstInt32 flags;  ///< VstTimeInfoFlags
};

struct VstPinProperties {
    char label[64];
    VstInt32 flags;            ///< VstPinPropertiesFlags
    VstInt32 arrangementType;  ///< VstSpeakerArrangementType
    char shortLabel[8];
    char future[48];
};

struct VstSpeakerProperties {
    float azimuth;
    float elevation;
    float radius;
    float reserved;
    char name[64];
    VstInt32 type;
    char future[28];
};

struct VstSpeakerArrangement {
    VstInt32 type;  ///< VstSpeakerArrangementType
    VstInt32 numChannels;
    VstSpeakerProperties speakers[8];
};

struct VstKeyCode {
    VstInt32 character;
    unsigned char virt;
    unsigned char modifier;
};

/// Steps are distances between positions, which go from 0 to 1.
struct VstParameterProperties {
    float stepFloat;
    float smallStepFloat;
    float largeStepFloat;
    char label[64];
    VstInt32 flags;  ///< VstParameterFlags
    VstInt32 minInteger;
    VstInt32 maxInteger;
    VstInt32 stepInteger;
    VstInt32 largeStepInteger;
    char shortLabel[8];
    std::int16_t displayIndex;
    std::int16_t category;
    std::int16_t numParametersInCategory;
    std::int16_t reserved;
    char categoryLabel[24];
    char future[16];
};

/// An editor's place, in pixels.
struct ERect {
    std::int16_t top;
    std::int16_t left;
    std::int16_t bottom;
    std::int16_t right;
};

static_assert(sizeof(void*) == 8, "the layouts below are those of 64-bit machines");
static_assert(sizeof(AEffect) == 192);
static_assert(offsetof(AEffect, dispatcher) == 8 && offsetof(AEffect, process) == 16);
static_assert(offsetof(AEffect, setParameter) == 24 && offsetof(AEffect, getParameter) == 32);
static_assert(offsetof(AEffect, numPrograms) == 40 && offsetof(AEffect, numParams) == 44);
static_assert(offsetof(AEffect, numInputs) == 48 && offsetof(AEffect, numOutputs) == 52);
static_assert(offsetof(AEffect, flags) == 56 && offsetof(AEffect, resvd1) == 64);
static_assert(offsetof(AEffect, resvd2) == 72 && offsetof(AEffect, initialDelay) == 80);
static_assert(offsetof(AEffect, realQualities) == 84 && offsetof(AEffect, offQualities) == 88);
static_assert(offsetof(AEffect, ioRatio) == 92 && offsetof(AEffect, object) == 96);
static_assert(offsetof(AEffect, user) == 104 && offsetof(AEffect, uniqueID) == 112);
static_assert(offsetof(AEffect, version) == 116 && offsetof(AEffect, processReplacing) == 120);
static_assert(offsetof(AEffect, processDoubleReplacing) == 128 && offsetof(AEffect, future) == 136);

static_assert(sizeof(VstEvent) == 32 && offsetof(VstEvent, data) == 16);
static_assert(offsetof(VstEvent, byteSize) == 4 && offsetof(VstEvent, deltaFrames) == 8);
static_assert(sizeof(VstEvents) == 32 && offsetof(VstEvents, reserved) == 8);
static_assert(offsetof(VstEvents, events) == 16);
static_assert(sizeof(VstMidiEvent) == 32 && offsetof(VstMidiEvent, flags) == 12);
static_assert(offsetof(VstMidiEvent, noteLength) == 16 && offsetof(VstMidiEvent, noteOffset) == 20);
static_assert(offsetof(VstMidiEvent, midiData) == 24 && offsetof(VstMidiEvent, detune) == 28);
static_assert(offsetof(VstMidiEvent, noteOffVelocity) == 29);

static_assert(sizeof(VstTimeInfo) == 88 && offsetof(VstTimeInfo, ppqPos) == 24);
static_assert(offsetof(VstTimeInfo, tempo) == 32 && offsetof(VstTimeInfo, barStartPos) == 40);
static_assert(offsetof(VstTimeInfo, cycleStartPos) == 48 &&
              offsetof(VstTimeInfo, cycleEndPos) == 56);
static_assert(offsetof(VstTimeInfo, timeSigNumerator) == 64);
static_assert(offsetof(VstTimeInfo, timeSigDenominator) == 68);
static_assert(offsetof(VstTimeInfo, smpteOffset) == 72 && offsetof(VstTimeInfo, flags) == 84);

static_assert(sizeof(VstPinProperties) == 128 && offsetof(VstPinProperties, flags) == 64);
static_assert(offsetof(VstPinProperties, arrangementType) == 68);
static_assert(offsetof(VstPinProperties, shortLabel) == 72);
static_assert(sizeof(VstSpeakerProperties) == 112 && offsetof(VstSpeakerProperties, name) == 16);
static_assert(offsetof(VstSpeakerProperties, type) == 80);
static_assert(sizeof(VstSpeakerArrangement) == 904 &&
              offsetof(VstSpeakerArrangement, speakers) == 8);
static_assert(sizeof(VstParameterProperties) == 152);
static_assert(offsetof(VstParameterProperties, flags) == 76);
static_assert(offsetof(VstParameterProperties, shortLabel) == 96);
static_assert(offsetof(VstParameterProperties, categoryLabel) == 112);
static_assert(sizeof(VstKeyCode) == 8 && offsetof(VstKeyCode, virt) == 4);
static_assert(sizeof(ERect) == 8 && offsetof(ERect, bottom) == 4);

}  // namespace Vst2
