// The plug-in's one exported entry, and the factory behind it.
#include <new>

#include "SorvaneDecoder.h"

AudioEffect* createEffectInstance(audioMasterCallback audioMaster) {
    return new (std::nothrow) SorvaneDecoder(audioMaster);
}

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback audioMaster) {
    // A host that does not tell its version is too old for us.
    if (!audioMaster || audioMaster(nullptr, audioMasterVersion, 0, 0, nullptr, 0) == 0) return nullptr;
    AudioEffect* effect = createEffectInstance(audioMaster);
    return effect ? effect->getAeffect() : nullptr;
}
