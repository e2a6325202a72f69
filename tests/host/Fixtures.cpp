// Small plug-in libraries for the host library's own tests, one per
// FIXTURE_KIND: a library without the entry, an entry that gives null, a
// record without the magic, and a probe that calls the host back on request
// and copies its inputs to its outputs.
#include <cstring>

#include "VstAbi.h"

#define EXPORT extern "C" __attribute__((visibility("default")))

#if FIXTURE_KIND == 0
EXPORT int notTheEntry() { return 0; }

#elif FIXTURE_KIND == 1
EXPORT AEffect* VSTPluginMain(audioMasterCallback) { return nullptr; }

#elif FIXTURE_KIND == 2
EXPORT AEffect* VSTPluginMain(audioMasterCallback) {
    static AEffect record{};  // magic left 0
    return &record;
}

#else
namespace {
audioMasterCallback master = nullptr;
int closes = 0;

// Opcode 50 (vendor specific) asks the probe to call its host back.
VstIntPtr dispatcher(AEffect* e, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
    switch (opcode) {
    case effClose: ++closes; return 1;
    case effVendorSpecific:
        master(e, audioMasterBeginEdit, index, 0, nullptr, 0);
        master(e, audioMasterAutomate, index, 0, nullptr, opt);
        master(e, audioMasterEndEdit, index, 0, nullptr, 0);
        master(e, audioMasterUpdateDisplay, 0, 0, nullptr, 0);
        return master(e, audioMasterGetSampleRate, 0, 0, nullptr, 0);
    case effGetEffectName: std::strcpy(static_cast<char*>(ptr), "Probe"); return 1;
    case effGetVendorVersion: return closes;
    default: return value;
    }
}

template <typename T>
void copy(AEffect*, T** in, T** out, VstInt32 frames) {
    for (int c = 0; c < 2; ++c)
        for (VstInt32 i = 0; i < frames; ++i) *out[c]++ = *in[c]++ * 2;
}

void setParameter(AEffect*, VstInt32, float) {}
float getParameter(AEffect*, VstInt32 index) { return static_cast<float>(index); }
}  // namespace

EXPORT AEffect* VSTPluginMain(audioMasterCallback host) {
    if (host(nullptr, audioMasterVersion, 0, 0, nullptr, 0) == 0) return nullptr;
    master = host;
    static AEffect record{};
    record.magic = kEffectMagic;
    record.dispatcher = dispatcher;
    record.process = copy<float>;
    record.setParameter = setParameter;
    record.getParameter = getParameter;
    record.numInputs = 2;
    record.numOutputs = 2;
    record.flags = effFlagsCanReplacing | effFlagsCanDoubleReplacing;
    record.processReplacing = copy<float>;
    record.processDoubleReplacing = copy<double>;
    return &record;
}
#endif
