#include "Plugin.h"

#include <dlfcn.h>

#include <cstring>

namespace vsthost {

namespace {

using EntryProc = AEffect* (*)(audioMasterCallback);

// The plug-in calls back before its record exists (the version request from
// its entry, and anything its constructor asks); those calls belong to the
// plug-in being loaded on this thread.
thread_local Plugin* loadingPlugin = nullptr;

VstIntPtr hostCallbackEntry(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    Plugin* plugin = e && e->user ? static_cast<Plugin*>(e->user) : loadingPlugin;
    if (!plugin) return opcode == audioMasterVersion ? kVstVersion : 0;
    return plugin->hostCallback(e, opcode, index, value, ptr, opt);
}

// Room for any text a plug-in writes: hosts give far more than the nominal limits.
constexpr std::size_t kTextRoom = 256;

// In a leak-checking build the library stays mapped after dlclose: memory that
// only its static data still points to would otherwise be reported as leaked,
// without a module to name.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kLoadFlags = RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE;
#else
constexpr int kLoadFlags = RTLD_NOW | RTLD_LOCAL;
#endif

}  // namespace

Plugin::Plugin(void* library, std::string path, VstIntPtr hostVersion)
    : library(library), libraryPath(std::move(path)), hostVersion(hostVersion) {}

std::unique_ptr<Plugin> Plugin::load(const std::string& path, std::string& error, VstIntPtr hostVersion) {
    void* library = dlopen(path.c_str(), kLoadFlags);
    if (!library) {
        const char* reason = dlerror();
        error = "cannot load " + path + ": " + (reason ? reason : "unknown reason");
        return nullptr;
    }
    auto entry = reinterpret_cast<EntryProc>(dlsym(library, "VSTPluginMain"));
    if (!entry) {
        dlclose(library);
        error = path + " is not a VST 2.4 plug-in: it has no VSTPluginMain entry";
        return nullptr;
    }

    std::unique_ptr<Plugin> plugin(new Plugin(library, path, hostVersion));
    loadingPlugin = plugin.get();
    AEffect* aeffect = entry(hostCallbackEntry);
    loadingPlugin = nullptr;
    if (!aeffect) {
        error = path + ": VSTPluginMain gave no effect";
        return nullptr;  // the destructor releases the library
    }
    if (aeffect->magic != kEffectMagic) {
        // Not a record we understand: nothing of it can be called, not even close.
        error = path + ": VSTPluginMain gave a record without the VST magic";
        return nullptr;
    }
    aeffect->user = plugin.get();
    plugin->aeffect = aeffect;
    error.clear();
    return plugin;
}

Plugin::~Plugin() {
    close();
    if (library) dlclose(library);
}

VstIntPtr Plugin::dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    // After effClose the effect is gone; a late request (an editor window
    // closing after its plug-in) reaches nothing.
    if (!aeffect) return 0;
    return aeffect->dispatcher(aeffect, opcode, index, value, ptr, opt);
}

VstIntPtr Plugin::hostCallback(AEffect* /*e*/, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    switch (opcode) {
    case audioMasterVersion: return hostVersion;
    case audioMasterAutomate: hostLog.recordAutomation(index, opt); return 0;
    case audioMasterUpdateDisplay: hostLog.recordDisplayUpdate(); return 1;
    case audioMasterBeginEdit: hostLog.recordBeginEdit(index); return 1;
    case audioMasterEndEdit: hostLog.recordEndEdit(index); return 1;
    case audioMasterGetSampleRate:
        hostLog.recordOther({opcode, index, value, opt});
        return static_cast<VstIntPtr>(hostSampleRate);
    case audioMasterGetBlockSize: hostLog.recordOther({opcode, index, value, opt}); return hostBlockSize;
    // Asked from the audio thread, as in every host: answered at once, and
    // not recorded (the log takes a lock). This host renders files and has
    // no transport to report.
    case audioMasterGetTime: return 0;
    case audioMasterSizeWindow:
        hostLog.recordOther({opcode, index, value, opt});
        return sizeWindow && sizeWindow(index, static_cast<int>(value)) ? 1 : 0;
    case audioMasterGetProductString:
    case audioMasterGetVendorString:
        hostLog.recordOther({opcode, index, value, opt});
        if (ptr) std::strcpy(static_cast<char*>(ptr), "sorvane");
        return ptr ? 1 : 0;
    default: hostLog.recordOther({opcode, index, value, opt}); return 0;
    }
}

std::string Plugin::text(VstInt32 opcode, VstInt32 index) {
    char buffer[kTextRoom] = {};
    dispatch(opcode, index, 0, buffer);
    buffer[kTextRoom - 1] = 0;
    return buffer;
}

void Plugin::open() { dispatch(effOpen); }

VstIntPtr Plugin::close() {
    if (!aeffect) return 0;
    const VstIntPtr answer = dispatch(effClose);
    aeffect = nullptr;
    return answer;
}

void Plugin::setSampleRate(float rate) {
    hostSampleRate = rate;
    dispatch(effSetSampleRate, 0, 0, nullptr, rate);
}

void Plugin::setBlockSize(VstInt32 size) {
    hostBlockSize = size;
    dispatch(effSetBlockSize, 0, size);
}

void Plugin::resume() { dispatch(effMainsChanged, 0, 1); }
void Plugin::suspend() { dispatch(effMainsChanged, 0, 0); }

void Plugin::setParameter(VstInt32 index, float value) { aeffect->setParameter(aeffect, index, value); }
float Plugin::getParameter(VstInt32 index) { return aeffect->getParameter(aeffect, index); }
std::string Plugin::parameterName(VstInt32 index) { return text(effGetParamName, index); }
std::string Plugin::parameterLabel(VstInt32 index) { return text(effGetParamLabel, index); }
std::string Plugin::parameterDisplay(VstInt32 index) { return text(effGetParamDisplay, index); }
bool Plugin::canBeAutomated(VstInt32 index) { return dispatch(effCanBeAutomated, index) != 0; }
bool Plugin::string2parameter(VstInt32 index, const std::string& value) {
    std::vector<char> buffer(value.begin(), value.end());
    buffer.push_back(0);
    return dispatch(effString2Parameter, index, 0, buffer.data()) != 0;
}
VstIntPtr Plugin::parameterProperties(VstInt32 index, void* properties) {
    return dispatch(effGetParameterProperties, index, 0, properties);
}

void Plugin::setProgram(VstIntPtr program) { dispatch(effSetProgram, 0, program); }
VstInt32 Plugin::program() { return static_cast<VstInt32>(dispatch(effGetProgram)); }
void Plugin::setProgramName(const std::string& name) {
    char buffer[kVstMaxProgNameLen] = {};
    std::strncpy(buffer, name.c_str(), kVstMaxProgNameLen - 1);
    dispatch(effSetProgramName, 0, 0, buffer);
}
std::string Plugin::programName() { return text(effGetProgramName); }
std::string Plugin::programNameIndexed(VstInt32 index, VstInt32 category) {
    char buffer[kTextRoom] = {};
    programNameIndexedAnswer(index, category, buffer);
    buffer[kTextRoom - 1] = 0;
    return buffer;
}
VstIntPtr Plugin::programNameIndexedAnswer(VstInt32 index, VstInt32 category, char* text) {
    return dispatch(effGetProgramNameIndexed, index, category, text);
}
VstIntPtr Plugin::getChunk(void** data, bool isPreset) { return dispatch(effGetChunk, isPreset ? 1 : 0, 0, data); }
VstIntPtr Plugin::setChunk(void* data, VstInt32 size, bool isPreset) {
    return dispatch(effSetChunk, isPreset ? 1 : 0, size, data);
}

VstIntPtr Plugin::identify() { return dispatch(effIdentify); }
std::string Plugin::effectName() { return text(effGetEffectName); }
std::string Plugin::vendorString() { return text(effGetVendorString); }
std::string Plugin::productString() { return text(effGetProductString); }
VstIntPtr Plugin::vendorVersion() { return dispatch(effGetVendorVersion); }
VstIntPtr Plugin::vstVersion() { return dispatch(effGetVstVersion); }
VstIntPtr Plugin::plugCategory() { return dispatch(effGetPlugCategory); }
VstIntPtr Plugin::canDo(const std::string& capability) {
    std::vector<char> buffer(capability.begin(), capability.end());
    buffer.push_back(0);
    return dispatch(effCanDo, 0, 0, buffer.data());
}
VstIntPtr Plugin::tailSize() { return dispatch(effGetTailSize); }
VstIntPtr Plugin::setBypass(bool bypass) { return dispatch(effSetBypass, 0, bypass ? 1 : 0); }
VstIntPtr Plugin::setProcessPrecision(VstInt32 precision) { return dispatch(effSetProcessPrecision, 0, precision); }
VstIntPtr Plugin::inputProperties(VstInt32 index, void* properties) {
    return dispatch(effGetInputProperties, index, 0, properties);
}
VstIntPtr Plugin::outputProperties(VstInt32 index, void* properties) {
    return dispatch(effGetOutputProperties, index, 0, properties);
}
VstIntPtr Plugin::currentMidiProgram(VstInt32 channel) { return dispatch(effGetCurrentMidiProgram, channel); }
VstIntPtr Plugin::numMidiInputChannels() { return dispatch(effGetNumMidiInputChannels); }
VstIntPtr Plugin::numMidiOutputChannels() { return dispatch(effGetNumMidiOutputChannels); }

bool Plugin::setSpeakerArrangement(SpeakerArrangement& input, SpeakerArrangement& output) {
    return dispatch(effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(input.get()), output.get()) != 0;
}

bool Plugin::getSpeakerArrangement(VstSpeakerArrangement*& input, VstSpeakerArrangement*& output) {
    return dispatch(effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&input), &output) != 0;
}

bool Plugin::editorRect(ERect& rect) {
    ERect* given = nullptr;
    dispatch(effEditGetRect, 0, 0, &given);
    if (!given) return false;
    rect = *given;
    return true;
}

bool Plugin::openEditor(void* parentWindow, VstIntPtr value) {
    return dispatch(effEditOpen, 0, value, parentWindow) != 0;
}
void Plugin::closeEditor() { dispatch(effEditClose); }
void Plugin::idleEditor() { dispatch(effEditIdle); }
VstIntPtr Plugin::editorKeyDown(VstInt32 character, VstInt32 virtualKey, VstInt32 modifiers) {
    return dispatch(effEditKeyDown, character, virtualKey, nullptr, static_cast<float>(modifiers));
}
VstIntPtr Plugin::editorKeyUp(VstInt32 character, VstInt32 virtualKey, VstInt32 modifiers) {
    return dispatch(effEditKeyUp, character, virtualKey, nullptr, static_cast<float>(modifiers));
}
VstIntPtr Plugin::setEditorKnobMode(VstInt32 mode) { return dispatch(effSetEditKnobMode, 0, mode); }

VstIntPtr Plugin::setEditorScaleFactor(float factor) {
    return dispatch(effVendorSpecific, fourCharCode('P', 'r', 'e', 'S'), fourCharCode('A', 'e', 'C', 's'), nullptr,
                    factor);
}

void Plugin::processFloatRaw(float** inputs, float** outputs, VstInt32 frames) {
    aeffect->processReplacing(aeffect, inputs, outputs, frames);
}

void Plugin::processDoubleRaw(double** inputs, double** outputs, VstInt32 frames) {
    aeffect->processDoubleReplacing(aeffect, inputs, outputs, frames);
}

void Plugin::processFloat(std::vector<float*> inputs, std::vector<float*> outputs, VstInt32 frames) {
    processFloatRaw(inputs.data(), outputs.data(), frames);
}

void Plugin::processDouble(std::vector<double*> inputs, std::vector<double*> outputs, VstInt32 frames) {
    processDoubleRaw(inputs.data(), outputs.data(), frames);
}

}  // namespace vsthost
