// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "hosts/vst2/VstTypes.h"

/// The numbers of the published VST 2.4 interface. What a host of that version no longer sends, or
/// a plug-in no longer asks, is listed only where this plug-in answers or needs it.
namespace Vst2 {

/// What a host asks of a plug-in.
enum VstEffectOpcode : VstInt32 {
    effOpen = 0,
    effClose = 1,
    effSetProgram = 2,      // value
    effGetProgram = 3,      //
    effSetProgramName = 4,  // pointer: text
    effGetProgramName = 5,  // pointer: text, 24 bytes
    effGetParamLabel = 6,   // index, pointer: text
    effGetParamDisplay = 7,
    effGetParamName = 8,
    effSetSampleRate = 10,  // number
    effSetBlockSize = 11,   // value
    effMainsChanged = 12,   // value: 1 resume, 0 suspend
    effEditGetRect = 13,    // pointer: ERect**
    effEditOpen = 14,       // pointer: the window to open in
    effEditClose = 15,
    effEditIdle = 19,
    effIdentify = 22,
    effGetChunk = 23,  // index: whether one program, pointer: where the bytes' address goes
    effSetChunk = 24,  // index: as above, value: byte count, pointer: bytes

    effProcessEvents = 25,     // pointer: VstEvents
    effCanBeAutomated = 26,    // index
    effString2Parameter = 27,  // index, pointer: text
    effGetProgramNameIndexed = 29,
    effGetInputProperties = 33,  // index, pointer: VstPinProperties
    effGetOutputProperties = 34,
    effGetPlugCategory = 35,
    effOfflineNotify = 38,
    effOfflinePrepare = 39,
    effOfflineRun = 40,
    effProcessVarIo = 41,
    effSetSpeakerArrangement = 42,  // value and pointer: VstSpeakerArrangement, inputs and outputs
    effSetBypass = 44,              // value: on or off
    effGetEffectName = 45,          // pointer: text, 32 bytes
    effGetVendorString = 47,        // pointer: text, 64 bytes
    effGetProductString = 48,       // pointer: text, 64 bytes
    effGetVendorVersion = 49,
    effVendorSpecific = 50,
    effCanDo = 51,                   // pointer: text
    effGetTailSize = 52,             // answers samples: 1 for no tail, 0 for what is not known
    effGetParameterProperties = 56,  // index, pointer: VstParameterProperties
    effGetVstVersion = 58,

    effEditKeyDown = 59,  // index: character, value: virtual key, number: modifiers
    effEditKeyUp = 60,
    effSetEditKnobMode = 61,
    effGetMidiProgramName = 62,
    effGetCurrentMidiProgram = 63,
    effGetMidiProgramCategory = 64,
    effHasMidiProgramsChanged = 65,
    effGetMidiKeyName = 66,
    effBeginSetProgram = 67,
    effEndSetProgram = 68,

    effGetSpeakerArrangement = 69,  // value and pointer: VstSpeakerArrangement**
    effShellGetNextPlugin = 70,
    effStartProcess = 71,
    effStopProcess = 72,
    effSetTotalSampleToProcess = 73,
    effSetPanLaw = 74,
    effBeginLoadBank = 75,
    effBeginLoadProgram = 76,

    effSetProcessPrecision = 77,
    effGetNumMidiInputChannels = 78,
    effGetNumMidiOutputChannels = 79,
};

/// What a plug-in asks of its host.
enum VstHostOpcode : VstInt32 {
    audioMasterAutomate = 0,  // index, number
    audioMasterVersion = 1,
    audioMasterCurrentId = 2,
    audioMasterIdle = 3,
    audioMasterWantMidi = 6,  // value: 1
    audioMasterGetTime = 7,   // value: the fields that are wanted; answers a VstTimeInfo*
    audioMasterProcessEvents = 8,
    audioMasterIOChanged = 13,
    audioMasterSizeWindow = 15,  // index: width, value: height
    audioMasterGetSampleRate = 16,
    audioMasterGetBlockSize = 17,
    audioMasterGetInputLatency = 18,
    audioMasterGetOutputLatency = 19,
    audioMasterGetCurrentProcessLevel = 23,
    audioMasterGetAutomationState = 24,
    audioMasterGetVendorString = 32,
    audioMasterGetProductString = 33,
    audioMasterGetVendorVersion = 34,
    audioMasterVendorSpecific = 35,
    audioMasterCanDo = 37,
    audioMasterGetLanguage = 38,
    audioMasterGetDirectory = 41,
    audioMasterUpdateDisplay = 42,
    audioMasterBeginEdit = 43,  // index
    audioMasterEndEdit = 44,    // index
};

enum VstAEffectFlags : VstInt32 {
    effFlagsHasEditor = 1 << 0,
    effFlagsCanReplacing = 1 << 4,
    effFlagsProgramChunks = 1 << 5,
    effFlagsIsSynth = 1 << 8,
    effFlagsNoSoundInStop = 1 << 9,
    effFlagsCanDoubleReplacing = 1 << 12,
};

enum VstTimeInfoFlags : VstInt32 {
    kVstTransportChanged = 1 << 0,
    kVstTransportPlaying = 1 << 1,
    kVstTransportCycleActive = 1 << 2,
    kVstTransportRecording = 1 << 3,
    kVstAutomationWriting = 1 << 6,
    kVstAutomationReading = 1 << 7,
    kVstNanosValid = 1 << 8,
    kVstPpqPosValid = 1 << 9,
    kVstTempoValid = 1 << 10,
    kVstBarsValid = 1 << 11,
    kVstCyclePosValid = 1 << 12,
    kVstTimeSigValid = 1 << 13,
    kVstSmpteValid = 1 << 14,
    kVstClockValid = 1 << 15,
};

enum VstEventTypes : VstInt32 { kVstMidiType = 1, kVstSysExType = 6 };

enum VstPinPropertiesFlags : VstInt32 {
    kVstPinIsActive = 1 << 0,
    kVstPinIsStereo = 1 << 1,
    kVstPinUseSpeaker = 1 << 2,
};

enum VstParameterFlags : VstInt32 {
    kVstParameterIsSwitch = 1 << 0,
    kVstParameterUsesIntegerMinMax = 1 << 1,
    kVstParameterUsesFloatStep = 1 << 2,
    kVstParameterUsesIntStep = 1 << 3,
};

enum VstSpeakerArrangementType : VstInt32 {
    kSpeakerArrEmpty = -1,
    kSpeakerArrMono = 0,
    kSpeakerArrStereo = 1,
    kSpeakerArr80Music = 25,  // eight channels
};

enum VstPlugCategory : VstInt32 {
    kPlugCategUnknown = 0,
    kPlugCategEffect = 1,
    kPlugCategSynth = 2,
};

inline constexpr VstInt32 kVstVersion = 2400;
/// What effIdentify is answered with.
inline constexpr VstInt32 kEffectIdentity = FourCharacters("NvEf");

}  // namespace Vst2
