// Binary definitions of the VST 2.4 plug-in interface (Linux x86_64).
//
// Written from the published facts of the interface: natural alignment, the
// System V calling convention, four-character codes with the first character
// in the most significant byte. Every size and offset a host relies on is
// checked at compile time at the end of this file.
#pragma once

#include <cstddef>
#include <cstdint>

using VstInt16 = std::int16_t;
using VstInt32 = std::int32_t;
using VstIntPtr = std::intptr_t;

constexpr VstInt32 fourCharCode(char a, char b, char c, char d) {
    return static_cast<VstInt32>((static_cast<std::uint32_t>(static_cast<unsigned char>(a)) << 24) |
                                 (static_cast<std::uint32_t>(static_cast<unsigned char>(b)) << 16) |
                                 (static_cast<std::uint32_t>(static_cast<unsigned char>(c)) << 8) |
                                 static_cast<std::uint32_t>(static_cast<unsigned char>(d)));
}

constexpr VstInt32 kEffectMagic = fourCharCode('V', 's', 't', 'P');
constexpr VstInt32 kEffectIdentify = fourCharCode('N', 'v', 'E', 'f');
constexpr VstInt32 kVstVersion = 2400;

struct AEffect;

using audioMasterCallback = VstIntPtr (*)(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                                          float opt);
using AEffectDispatcherProc = VstIntPtr (*)(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value,
                                            void* ptr, float opt);
using AEffectProcessProc = void (*)(AEffect* effect, float** inputs, float** outputs, VstInt32 sampleFrames);
using AEffectProcessDoubleProc = void (*)(AEffect* effect, double** inputs, double** outputs, VstInt32 sampleFrames);
using AEffectSetParameterProc = void (*)(AEffect* effect, VstInt32 index, float value);
using AEffectGetParameterProc = float (*)(AEffect* effect, VstInt32 index);

// The record a plug-in hands to its host.
struct AEffect {
    VstInt32 magic;
    AEffectDispatcherProc dispatcher;
    AEffectProcessProc process;  // old accumulating entry
    AEffectSetParameterProc setParameter;
    AEffectGetParameterProc getParameter;
    VstInt32 numPrograms;
    VstInt32 numParams;
    VstInt32 numInputs;
    VstInt32 numOutputs;
    VstInt32 flags;
    VstIntPtr resvd1;
    VstIntPtr resvd2;
    VstInt32 initialDelay;
    VstInt32 realQualities;
    VstInt32 offQualities;
    float ioRatio;
    void* object;
    void* user;
    VstInt32 uniqueID;
    VstInt32 version;
    AEffectProcessProc processReplacing;
    AEffectProcessDoubleProc processDoubleReplacing;
    char future[56];
};

enum VstAEffectFlags : VstInt32 {
    effFlagsHasEditor = 1 << 0,
    effFlagsHasClip = 1 << 1,
    effFlagsHasVu = 1 << 2,
    effFlagsCanMono = 1 << 3,
    effFlagsCanReplacing = 1 << 4,
    effFlagsProgramChunks = 1 << 5,
    effFlagsIsSynth = 1 << 8,
    effFlagsNoSoundInStop = 1 << 9,
    effFlagsExtIsAsync = 1 << 10,
    effFlagsExtHasBuffer = 1 << 11,
    effFlagsCanDoubleReplacing = 1 << 12,
};

// Host to plug-in requests.
enum AEffectOpcodes : VstInt32 {
    effOpen = 0,
    effClose,
    effSetProgram,
    effGetProgram,
    effSetProgramName,
    effGetProgramName,
    effGetParamLabel,
    effGetParamDisplay,
    effGetParamName,
    effGetVu,
    effSetSampleRate,
    effSetBlockSize,
    effMainsChanged,
    effEditGetRect,
    effEditOpen,
    effEditClose,
    effEditDraw,
    effEditMouse,
    effEditKey,
    effEditIdle,
    effEditTop,
    effEditSleep,
    effIdentify,
    effGetChunk,
    effSetChunk,
    effProcessEvents,
    effCanBeAutomated,
    effString2Parameter,
    effGetNumProgramCategories,
    effGetProgramNameIndexed,
    effCopyProgram,
    effConnectInput,
    effConnectOutput,
    effGetInputProperties,
    effGetOutputProperties,
    effGetPlugCategory,
    effGetCurrentPosition,
    effGetDestinationBuffer,
    effOfflineNotify,
    effOfflinePrepare,
    effOfflineRun,
    effProcessVarIo,
    effSetSpeakerArrangement,
    effSetBlockSizeAndSampleRate,
    effSetBypass,
    effGetEffectName,
    effGetErrorText,
    effGetVendorString,
    effGetProductString,
    effGetVendorVersion,
    effVendorSpecific,
    effCanDo,
    effGetTailSize,
    effIdle,
    effGetIcon,
    effSetViewPosition,
    effGetParameterProperties,
    effKeysRequired,
    effGetVstVersion,
    effEditKeyDown,
    effEditKeyUp,
    effSetEditKnobMode,
    effGetMidiProgramName,
    effGetCurrentMidiProgram,
    effGetMidiProgramCategory,
    effHasMidiProgramsChanged,
    effGetMidiKeyName,
    effBeginSetProgram,
    effEndSetProgram,
    effGetSpeakerArrangement,
    effShellGetNextPlugin,
    effStartProcess,
    effStopProcess,
    effSetTotalSampleToProcess,
    effSetPanLaw,
    effBeginLoadBank,
    effBeginLoadProgram,
    effSetProcessPrecision,
    effGetNumMidiInputChannels,
    effGetNumMidiOutputChannels,
};
static_assert(effGetNumMidiOutputChannels == 79);

// Plug-in to host requests.
enum AudioMasterOpcodes : VstInt32 {
    audioMasterAutomate = 0,
    audioMasterVersion,
    audioMasterCurrentId,
    audioMasterIdle,
    audioMasterPinConnected,
    audioMasterUnused5,
    audioMasterWantMidi,
    audioMasterGetTime,
    audioMasterProcessEvents,
    audioMasterSetTime,
    audioMasterTempoAt,
    audioMasterGetNumAutomatableParameters,
    audioMasterGetParameterQuantization,
    audioMasterIOChanged,
    audioMasterNeedIdle,
    audioMasterSizeWindow,
    audioMasterGetSampleRate,
    audioMasterGetBlockSize,
    audioMasterGetInputLatency,
    audioMasterGetOutputLatency,
    audioMasterGetPreviousPlug,
    audioMasterGetNextPlug,
    audioMasterWillReplaceOrAccumulate,
    audioMasterGetCurrentProcessLevel,
    audioMasterGetAutomationState,
    audioMasterOfflineStart,
    audioMasterOfflineRead,
    audioMasterOfflineWrite,
    audioMasterOfflineGetCurrentPass,
    audioMasterOfflineGetCurrentMetaPass,
    audioMasterSetOutputSampleRate,
    audioMasterGetOutputSpeakerArrangement,
    audioMasterGetVendorString,
    audioMasterGetProductString,
    audioMasterGetVendorVersion,
    audioMasterVendorSpecific,
    audioMasterSetIcon,
    audioMasterCanDo,
    audioMasterGetLanguage,
    audioMasterOpenWindow,
    audioMasterCloseWindow,
    audioMasterGetDirectory,
    audioMasterUpdateDisplay,
    audioMasterBeginEdit,
    audioMasterEndEdit,
    audioMasterOpenFileSelector,
    audioMasterCloseFileSelector,
    audioMasterEditFile,
    audioMasterGetChunkFile,
    audioMasterGetInputSpeakerArrangement,
};
static_assert(audioMasterUpdateDisplay == 42 && audioMasterGetInputSpeakerArrangement == 49);

enum VstPlugCategory : VstInt32 {
    kPlugCategUnknown = 0,
    kPlugCategEffect,
    kPlugCategSynth,
    kPlugCategAnalysis,
    kPlugCategMastering,
    kPlugCategSpacializer,
    kPlugCategRoomFx,
    kPlugSurroundFx,
    kPlugCategRestoration,
    kPlugCategOfflineProcess,
    kPlugCategShell,
    kPlugCategGenerator,
    kPlugCategMaxCount,
};

enum VstProcessPrecision : VstInt32 {
    kVstProcessPrecision32 = 0,
    kVstProcessPrecision64 = 1,
};

enum VstStringConstants : VstInt32 {
    kVstMaxProgNameLen = 24,
    kVstMaxParamStrLen = 8,
    kVstMaxVendorStrLen = 64,
    kVstMaxProductStrLen = 64,
    kVstMaxEffectNameLen = 32,
    kVstMaxNameLen = 64,
    kVstMaxLabelLen = 64,
    kVstMaxShortLabelLen = 8,
    kVstMaxCategLabelLen = 24,
    kVstMaxFileNameLen = 100,
};

// The host's transport, as audioMasterGetTime answers.
struct VstTimeInfo {
    double samplePos, sampleRate, nanoSeconds, ppqPos, tempo, barStartPos, cycleStartPos, cycleEndPos;
    VstInt32 timeSigNumerator, timeSigDenominator, smpteOffset, smpteFrameRate, samplesToNextClock, flags;
};
static_assert(sizeof(VstTimeInfo) == 88);
enum VstTimeInfoFlags : VstInt32 {
    kVstTransportChanged = 1,  // the transport jumped or started since the last call
};

// Editor rectangle: width = right - left, height = bottom - top.
struct ERect {
    VstInt16 top;
    VstInt16 left;
    VstInt16 bottom;
    VstInt16 right;
};

struct VstKeyCode {
    VstInt32 character;
    unsigned char virt;      // virtual key, VstVirtualKey
    unsigned char modifier;  // VstModifierKey bits
};

enum VstModifierKey : unsigned char {
    MODIFIER_SHIFT = 1 << 0,
    MODIFIER_ALTERNATE = 1 << 1,
    MODIFIER_COMMAND = 1 << 2,
    MODIFIER_CONTROL = 1 << 3,
};

enum VstVirtualKey : unsigned char {
    VKEY_BACK = 1,
    VKEY_TAB,
    VKEY_CLEAR,
    VKEY_RETURN,
    VKEY_PAUSE,
    VKEY_ESCAPE,
    VKEY_SPACE,
    VKEY_NEXT,
    VKEY_END,
    VKEY_HOME,
    VKEY_LEFT,
    VKEY_UP,
    VKEY_RIGHT,
    VKEY_DOWN,
    VKEY_PAGEUP,
    VKEY_PAGEDOWN,
    VKEY_SELECT,
    VKEY_PRINT,
    VKEY_ENTER,
    VKEY_SNAPSHOT,
    VKEY_INSERT,
    VKEY_DELETE,
    VKEY_HELP,
    VKEY_NUMPAD0,
    VKEY_NUMPAD1,
    VKEY_NUMPAD2,
    VKEY_NUMPAD3,
    VKEY_NUMPAD4,
    VKEY_NUMPAD5,
    VKEY_NUMPAD6,
    VKEY_NUMPAD7,
    VKEY_NUMPAD8,
    VKEY_NUMPAD9,
    VKEY_MULTIPLY,
    VKEY_ADD,
    VKEY_SEPARATOR,
    VKEY_SUBTRACT,
    VKEY_DECIMAL,
    VKEY_DIVIDE,
    VKEY_F1,
    VKEY_F2,
    VKEY_F3,
    VKEY_F4,
    VKEY_F5,
    VKEY_F6,
    VKEY_F7,
    VKEY_F8,
    VKEY_F9,
    VKEY_F10,
    VKEY_F11,
    VKEY_F12,
    VKEY_NUMLOCK,
    VKEY_SCROLL,
    VKEY_SHIFT,
    VKEY_CONTROL,
    VKEY_ALT,
    VKEY_EQUALS,
};
static_assert(VKEY_EQUALS == 57);

struct VstSpeakerProperties {
    float azimuth;    // radians, 10.0 for LFE
    float elevation;  // radians, 10.0 for LFE
    float radius;     // metres, 0 for LFE
    float reserved;
    char name[kVstMaxNameLen];
    VstInt32 type;  // VstSpeakerType
    char future[28];
};

// Declared with eight speakers; records for more channels are allocated longer.
struct VstSpeakerArrangement {
    VstInt32 type;  // VstSpeakerArrangementType
    VstInt32 numChannels;
    VstSpeakerProperties speakers[8];
};

enum VstSpeakerArrangementType : VstInt32 {
    kSpeakerArrUserDefined = -2,
    kSpeakerArrEmpty = -1,
    kSpeakerArrMono = 0,
    kSpeakerArrStereo,
    kSpeakerArrStereoSurround,
    kSpeakerArrStereoCenter,
    kSpeakerArrStereoSide,
    kSpeakerArrStereoCLfe,
    kSpeakerArr30Cine,
    kSpeakerArr30Music,
    kSpeakerArr31Cine,
    kSpeakerArr31Music,
    kSpeakerArr40Cine,
    kSpeakerArr40Music,
    kSpeakerArr41Cine,
    kSpeakerArr41Music,
    kSpeakerArr50,
    kSpeakerArr51,
    kSpeakerArr60Cine,
    kSpeakerArr60Music,
    kSpeakerArr61Cine,
    kSpeakerArr61Music,
    kSpeakerArr70Cine,
    kSpeakerArr70Music,
    kSpeakerArr71Cine,
    kSpeakerArr71Music,
    kSpeakerArr80Cine,
    kSpeakerArr80Music,
    kSpeakerArr81Cine,
    kSpeakerArr81Music,
    kSpeakerArr102,
    kNumSpeakerArr,
};
static_assert(kSpeakerArr31Cine == 8 && kSpeakerArr50 == 14 && kNumSpeakerArr == 29);

enum VstSpeakerType : VstInt32 {
    kSpeakerUndefined = 0x7fffffff,
    kSpeakerM = 0,
    kSpeakerL,
    kSpeakerR,
    kSpeakerC,
    kSpeakerLfe,
    kSpeakerLs,
    kSpeakerRs,
    kSpeakerLc,
    kSpeakerRc,
    kSpeakerS,
    kSpeakerCs = kSpeakerS,
    kSpeakerSl,
    kSpeakerSr,
    kSpeakerTm,
    kSpeakerTfl,
    kSpeakerTfc,
    kSpeakerTfr,
    kSpeakerTrl,
    kSpeakerTrc,
    kSpeakerTrr,
    kSpeakerLfe2,
};
static_assert(kSpeakerLfe2 == 19);

// Bytes of an arrangement record able to describe numChannels speakers.
constexpr std::size_t speakerArrangementSize(VstInt32 numChannels) {
    const std::size_t speakers = numChannels > 8 ? static_cast<std::size_t>(numChannels) : 8;
    return offsetof(VstSpeakerArrangement, speakers) + speakers * sizeof(VstSpeakerProperties);
}

// Layout checks against the published binary interface.
static_assert(sizeof(void*) == 8, "these definitions describe the 64-bit interface");
static_assert(sizeof(AEffect) == 192);
static_assert(offsetof(AEffect, magic) == 0);
static_assert(offsetof(AEffect, dispatcher) == 8);
static_assert(offsetof(AEffect, process) == 16);
static_assert(offsetof(AEffect, setParameter) == 24);
static_assert(offsetof(AEffect, getParameter) == 32);
static_assert(offsetof(AEffect, numPrograms) == 40);
static_assert(offsetof(AEffect, numParams) == 44);
static_assert(offsetof(AEffect, numInputs) == 48);
static_assert(offsetof(AEffect, numOutputs) == 52);
static_assert(offsetof(AEffect, flags) == 56);
static_assert(offsetof(AEffect, resvd1) == 64);
static_assert(offsetof(AEffect, resvd2) == 72);
static_assert(offsetof(AEffect, initialDelay) == 80);
static_assert(offsetof(AEffect, realQualities) == 84);
static_assert(offsetof(AEffect, offQualities) == 88);
static_assert(offsetof(AEffect, ioRatio) == 92);
static_assert(offsetof(AEffect, object) == 96);
static_assert(offsetof(AEffect, user) == 104);
static_assert(offsetof(AEffect, uniqueID) == 112);
static_assert(offsetof(AEffect, version) == 116);
static_assert(offsetof(AEffect, processReplacing) == 120);
static_assert(offsetof(AEffect, processDoubleReplacing) == 128);
static_assert(offsetof(AEffect, future) == 136);
static_assert(sizeof(ERect) == 8 && offsetof(ERect, left) == 2 && offsetof(ERect, bottom) == 4 &&
              offsetof(ERect, right) == 6);
static_assert(sizeof(VstKeyCode) == 8 && offsetof(VstKeyCode, virt) == 4 && offsetof(VstKeyCode, modifier) == 5);
static_assert(sizeof(VstSpeakerProperties) == 112);
static_assert(offsetof(VstSpeakerProperties, name) == 16);
static_assert(offsetof(VstSpeakerProperties, type) == 80);
static_assert(offsetof(VstSpeakerProperties, future) == 84);
static_assert(sizeof(VstSpeakerArrangement) == 904);
static_assert(offsetof(VstSpeakerArrangement, numChannels) == 4);
static_assert(offsetof(VstSpeakerArrangement, speakers) == 8);
static_assert(kEffectMagic == 0x56737450 && kEffectIdentify == 0x4E764566);
