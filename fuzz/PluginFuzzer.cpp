// Feeds the effect random sequences of what hosts do: dispatcher requests
// (null pointers included), parameter changes in and out of range, programs,
// sample rates, speaker arrangements, suspend/resume and float and double
// processing of any block length. Any crash, sanitizer report, unterminated
// text or non-finite output from a clean session is a finding.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "AEffEditor.h"
#include "AudioEffectX.h"
#include "EditorLink.h"

extern "C" AEffect* VSTPluginMain(audioMasterCallback audioMaster);

namespace {

// An editor that only listens, so the effect's editor messages run too.
class ListeningEditor : public AEffEditor {
public:
    explicit ListeningEditor(AudioEffect* effect) : AEffEditor(effect) {}
    bool getRect(ERect** r) override {
        *r = &rect;
        return true;
    }
    void setParameter(VstInt32 index, float value) override { last = index + value; }
    ERect rect{0, 0, 502, 578};
    float last = 0;
};

VstIntPtr host(AEffect*, VstInt32 opcode, VstInt32, VstIntPtr, void*, float) {
    return opcode == audioMasterVersion ? 2400 : 0;
}

class Input {
public:
    Input(const uint8_t* d, size_t n) : data(d), size(n) {}
    bool empty() const { return pos >= size; }
    uint8_t byte() { return pos < size ? data[pos++] : 0; }
    int32_t int32() {
        uint32_t v = 0;
        for (int i = 0; i < 4; ++i) v = v << 8 | byte();
        return static_cast<int32_t>(v);
    }
    // Mostly ordinary values, sometimes the edges hosts really send.
    float value(bool& wild) {
        switch (byte() % 8) {
        case 0: return 0.0f;
        case 1: return 1.0f;
        case 2: wild = true; return std::nanf("");
        case 3: wild = true; return (byte() & 1) ? INFINITY : -INFINITY;
        case 4: {
            float f;
            uint32_t bits = static_cast<uint32_t>(int32());
            std::memcpy(&f, &bits, sizeof f);
            if (!std::isfinite(f) || std::fabs(f) > 2.0f) wild = true;
            return f;
        }
        default: return byte() / 255.0f * 1.2f - 0.1f;
        }
    }

private:
    const uint8_t* data;
    size_t size;
    size_t pos = 0;
};

// Hosts hand zeroed buffers; a text must end well within them.
void checkText(const char* buffer, size_t capacity) {
    if (!std::memchr(buffer, 0, capacity)) std::abort();
}

constexpr int kMaxFrames = 2048;

}  // namespace

AEffEditor* createEditor(AudioEffectX* effect, sorvane::EditorLink&) { return new ListeningEditor(effect); }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input in(data, size);
    AEffect* effect = VSTPluginMain(host);
    if (!effect) std::abort();

    static std::vector<float> floatBuffers[10];
    static std::vector<double> doubleBuffers[10];
    for (int c = 0; c < 10; ++c) floatBuffers[c].assign(kMaxFrames, 0.0f), doubleBuffers[c].assign(kMaxFrames, 0.0);
    bool clean = true;  // nothing non-finite or far out of range fed so far
    char text[512];

    for (int step = 0; step < 256 && !in.empty(); ++step) {
        const uint8_t op = in.byte();
        switch (op % 17) {
        case 0: {
            const int index = static_cast<int8_t>(in.byte());
            bool wild = false;
            const float v = in.value(wild);
            if (wild) clean = false;
            effect->setParameter(effect, index, v);
            break;
        }
        case 1: effect->getParameter(effect, static_cast<int8_t>(in.byte())); break;
        case 2: {
            static const VstInt32 textOps[] = {effGetParamLabel,   effGetParamDisplay, effGetParamName,
                                               effGetProgramName,  effGetEffectName,   effGetVendorString,
                                               effGetProductString};
            const VstInt32 opcode = textOps[in.byte() % 7];
            std::memset(text, 0, sizeof text);
            effect->dispatcher(effect, opcode, static_cast<int8_t>(in.byte()), 0, text, 0);
            checkText(text, 64);
            break;
        }
        case 3: effect->dispatcher(effect, effSetProgram, 0, in.int32() % 8, nullptr, 0); break;
        case 4: {
            char name[kVstMaxProgNameLen] = {};
            const int length = in.byte() % kVstMaxProgNameLen;
            for (int i = 0; i < length; ++i) name[i] = static_cast<char>(32 + in.byte() % 95);
            effect->dispatcher(effect, effSetProgramName, 0, 0, name, 0);
            break;
        }
        case 5: {
            std::memset(text, 0, sizeof text);
            effect->dispatcher(effect, effGetProgramNameIndexed, static_cast<int8_t>(in.byte()), 0, text, 0);
            checkText(text, kVstMaxProgNameLen + 1);
            break;
        }
        case 6: {
            bool wild = false;
            float rate = in.value(wild);
            if (in.byte() & 1) rate *= 200000.0f;
            effect->dispatcher(effect, effSetSampleRate, 0, 0, nullptr, rate);
            break;
        }
        case 7: effect->dispatcher(effect, effMainsChanged, 0, in.byte() & 1, nullptr, 0); break;
        case 8:
        case 9: {
            const bool useDouble = op % 16 == 9;
            int frames = (in.byte() << 8 | in.byte()) % (kMaxFrames + 1);
            if (in.byte() % 16 == 0) frames = -frames;
            for (int c = 0; c < 4; ++c) {
                const float level = in.byte() / 64.0f;
                for (int f = 0; f < std::max(frames, 0); ++f) {
                    const float x = level * std::sin(0.05f * f * (c + 1));
                    floatBuffers[c][f] = x;
                    doubleBuffers[c][f] = x;
                }
            }
            if (in.byte() % 32 == 0 && frames > 0) {  // a bad sample from the host
                floatBuffers[0][frames / 2] = doubleBuffers[0][frames / 2] = NAN;
                clean = false;
            }
            // Outputs start as a sentinel so unwritten channels show.
            for (int c = 4; c < 10; ++c) {
                std::fill(floatBuffers[c].begin(), floatBuffers[c].end(), 12345.0f);
                std::fill(doubleBuffers[c].begin(), doubleBuffers[c].end(), 12345.0);
            }
            float* fin[4];
            float* fout[6];
            double* din[4];
            double* dout[6];
            for (int c = 0; c < 4; ++c) fin[c] = floatBuffers[c].data(), din[c] = doubleBuffers[c].data();
            for (int c = 0; c < 6; ++c) fout[c] = floatBuffers[4 + c].data(), dout[c] = doubleBuffers[4 + c].data();
            if (useDouble)
                effect->processDoubleReplacing(effect, din, dout, frames);
            else
                effect->processReplacing(effect, fin, fout, frames);
            for (int c = 0; c < 6 && clean; ++c)
                for (int f = 0; f < frames; ++f) {
                    const double y = useDouble ? doubleBuffers[4 + c][f] : floatBuffers[4 + c][f];
                    if (!std::isfinite(y)) std::abort();
                }
            break;
        }
        case 10: {
            // Host-owned arrangements with 0..8 channels of any type.
            VstSpeakerArrangement input{}, output{};
            input.type = in.byte() % 40 - 2;
            input.numChannels = in.byte() % 9;
            output.type = in.byte() % 40 - 2;
            output.numChannels = in.byte() % 7;
            effect->dispatcher(effect, effSetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&input), &output, 0);
            break;
        }
        case 11: {
            VstSpeakerArrangement* a = nullptr;
            VstSpeakerArrangement* b = nullptr;
            effect->dispatcher(effect, effGetSpeakerArrangement, 0, reinterpret_cast<VstIntPtr>(&a), &b, 0);
            if (a && (a->numChannels < 0 || a->numChannels > 8)) std::abort();
            break;
        }
        case 12: {
            // Any request with a null pointer, as careless hosts send them.
            const VstInt32 opcode = in.byte() % 90;
            if (opcode == effClose) break;
            effect->dispatcher(effect, opcode, static_cast<int8_t>(in.byte()), in.byte(), nullptr, 0);
            break;
        }
        case 13: effect->dispatcher(effect, effSetBlockSize, 0, in.int32(), nullptr, 0); break;
        case 14: {
            ERect* rect = nullptr;
            effect->dispatcher(effect, effEditGetRect, 0, 0, &rect, 0);
            effect->dispatcher(effect, effEditIdle, 0, 0, nullptr, 0);
            break;
        }
        case 15: {
            // A saved chunk with some bytes changed, or raw bytes: a refused
            // chunk must leave the whole state exactly as it was.
            const bool preset = in.byte() & 1;
            void* saved = nullptr;
            const auto savedSize = effect->dispatcher(effect, effGetChunk, preset, 0, &saved, 0);
            std::vector<unsigned char> chunk(static_cast<unsigned char*>(saved),
                                             static_cast<unsigned char*>(saved) + (saved ? savedSize : 0));
            if (in.byte() & 1) chunk.assign(in.byte() * 8, 0);
            for (int changes = in.byte() % 4; changes > 0 && !chunk.empty(); --changes)
                chunk[static_cast<std::size_t>(in.int32() & 0x7fffffff) % chunk.size()] = in.byte();
            if (in.byte() & 1 && !chunk.empty()) chunk.resize(static_cast<std::size_t>(in.byte()) % chunk.size());
            void* before = nullptr;
            const auto beforeSize = effect->dispatcher(effect, effGetChunk, 0, 0, &before, 0);
            const std::vector<unsigned char> state(static_cast<unsigned char*>(before),
                                                   static_cast<unsigned char*>(before) + beforeSize);
            if (effect->dispatcher(effect, effSetChunk, preset, static_cast<VstIntPtr>(chunk.size()),
                                   chunk.empty() ? nullptr : chunk.data(), 0) == 0) {
                void* after = nullptr;
                const auto afterSize = effect->dispatcher(effect, effGetChunk, 0, 0, &after, 0);
                if (afterSize != beforeSize || std::memcmp(after, state.data(), state.size()) != 0) std::abort();
            }
            break;
        }
        default: {
            const char* caps[] = {"receiveVstMidiEvent", "bypass", "", "plugAsChannelInsert"};
            effect->dispatcher(effect, effCanDo, 0, 0, const_cast<char*>(caps[in.byte() % 4]), 0);
            break;
        }
        }
    }
    effect->dispatcher(effect, effClose, 0, 0, nullptr, 0);
    return 0;
}
