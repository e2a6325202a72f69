// A VST 2.4 plug-in loaded from its shared library, as a host drives it:
// the record's fields, typed calls for the dispatcher requests, parameters,
// speaker arrangements and block processing. Only the binary interface is
// used, so any VST 2.4 effect can be loaded.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "HostLog.h"
#include "SpeakerArrangement.h"
#include "VstAbi.h"

namespace vsthost {

class Plugin {
public:
    // Loads the library, calls its entry and checks the record. On failure
    // gives null and a readable reason in `error`. The host answers the
    // version request with `hostVersion` (0 plays a host too old for 2.4).
    static std::unique_ptr<Plugin> load(const std::string& path, std::string& error,
                                        VstIntPtr hostVersion = kVstVersion);
    ~Plugin();  // effClose, then the library is released

    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    AEffect* effect() const { return aeffect; }
    const std::string& path() const { return libraryPath; }
    HostLog& log() { return hostLog; }
    std::vector<Automation> automation() const { return hostLog.automation(); }
    int displayUpdates() const { return hostLog.displayUpdates(); }

    // The record
    VstInt32 numPrograms() const { return aeffect->numPrograms; }
    VstInt32 numParams() const { return aeffect->numParams; }
    VstInt32 numInputs() const { return aeffect->numInputs; }
    VstInt32 numOutputs() const { return aeffect->numOutputs; }
    VstInt32 flags() const { return aeffect->flags; }
    bool hasFlag(VstInt32 flag) const { return (aeffect->flags & flag) != 0; }
    VstInt32 uniqueID() const { return aeffect->uniqueID; }
    VstInt32 version() const { return aeffect->version; }
    VstInt32 initialDelay() const { return aeffect->initialDelay; }

    // Any request, passed as it is.
    VstIntPtr dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr, float opt = 0.0f);

    // Lifecycle
    void open();
    // effClose: the plug-in deletes itself; its answer is returned. Only the
    // library is left, released by the destructor.
    VstIntPtr close();
    void setSampleRate(float rate);
    void setBlockSize(VstInt32 size);
    void resume();
    void suspend();

    // Parameters
    void setParameter(VstInt32 index, float value);
    float getParameter(VstInt32 index);
    std::string parameterName(VstInt32 index);
    std::string parameterLabel(VstInt32 index);
    std::string parameterDisplay(VstInt32 index);
    bool canBeAutomated(VstInt32 index);
    bool string2parameter(VstInt32 index, const std::string& text);
    VstIntPtr parameterProperties(VstInt32 index, void* properties);

    // Programs
    void setProgram(VstIntPtr program);
    VstInt32 program();
    void setProgramName(const std::string& name);
    std::string programName();
    std::string programNameIndexed(VstInt32 index, VstInt32 category = 0);
    VstIntPtr programNameIndexedAnswer(VstInt32 index, VstInt32 category, char* text);
    VstIntPtr getChunk(void** data, bool isPreset);
    VstIntPtr setChunk(void* data, VstInt32 size, bool isPreset);

    // Identity and capabilities
    VstIntPtr identify();
    std::string effectName();
    std::string vendorString();
    std::string productString();
    VstIntPtr vendorVersion();
    VstIntPtr vstVersion();
    VstIntPtr plugCategory();
    VstIntPtr canDo(const std::string& capability);
    VstIntPtr tailSize();
    VstIntPtr setBypass(bool bypass);
    VstIntPtr setProcessPrecision(VstInt32 precision);
    VstIntPtr inputProperties(VstInt32 index, void* properties);
    VstIntPtr outputProperties(VstInt32 index, void* properties);
    VstIntPtr currentMidiProgram(VstInt32 channel = 0);
    VstIntPtr numMidiInputChannels();
    VstIntPtr numMidiOutputChannels();

    // Speaker arrangements
    bool setSpeakerArrangement(SpeakerArrangement& input, SpeakerArrangement& output);
    // Pointers to the plug-in's own records; the plug-in may leave either untouched.
    bool getSpeakerArrangement(VstSpeakerArrangement*& input, VstSpeakerArrangement*& output);

    // Editor
    bool editorRect(ERect& rect);  // false when the plug-in gives none
    bool openEditor(void* parentWindow, VstIntPtr value = 0);
    void closeEditor();
    void idleEditor();
    VstIntPtr editorKeyDown(VstInt32 character, VstInt32 virtualKey, VstInt32 modifiers);
    VstIntPtr editorKeyUp(VstInt32 character, VstInt32 virtualKey, VstInt32 modifiers);
    VstIntPtr setEditorKnobMode(VstInt32 mode);
    // Tells the editor the screen's scale as Linux hosts do (effVendorSpecific 'PreS' 'AeCs').
    VstIntPtr setEditorScaleFactor(float factor);
    // Who answers the editor's audioMasterSizeWindow (width, height); without one it is refused.
    void onSizeWindow(std::function<bool(int width, int height)> handler) { sizeWindow = std::move(handler); }

    // Audio: the channel-pointer arrays as the plug-in gets them (it may move
    // the entries), or copies of them so the caller's arrays stay as they are.
    void processFloatRaw(float** inputs, float** outputs, VstInt32 frames);
    void processDoubleRaw(double** inputs, double** outputs, VstInt32 frames);
    void processFloat(std::vector<float*> inputs, std::vector<float*> outputs, VstInt32 frames);
    void processDouble(std::vector<double*> inputs, std::vector<double*> outputs, VstInt32 frames);

    // What the host callback answers; the log is what it heard.
    VstIntPtr hostCallback(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);

private:
    Plugin(void* library, std::string path, VstIntPtr hostVersion);
    std::string text(VstInt32 opcode, VstInt32 index = 0);

    void* library;
    std::string libraryPath;
    VstIntPtr hostVersion;
    AEffect* aeffect = nullptr;
    HostLog hostLog;
    float hostSampleRate = 44100.0f;
    VstInt32 hostBlockSize = 1024;
    std::function<bool(int, int)> sizeWindow;
};

}  // namespace vsthost
