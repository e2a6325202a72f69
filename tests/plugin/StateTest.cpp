// The state as a chunk, the way hosts save and restore sessions and presets.
#include <cmath>
#include <cstring>
#include <random>

#include "SorvaneHost.h"
#include "StateChunk.h"

using namespace sorvane_test;

namespace {

using Bytes = std::vector<unsigned char>;

Bytes chunkOf(vsthost::Plugin& fx, bool isPreset) {
    void* data = nullptr;
    const auto size = fx.getChunk(&data, isPreset);
    EXPECT_GT(size, 0);
    const auto* bytes = static_cast<const unsigned char*>(data);
    return size > 0 && bytes ? Bytes(bytes, bytes + size) : Bytes{};
}

// Empty bytes are offered as a null pointer.
VstIntPtr restore(vsthost::Plugin& fx, Bytes bytes, bool isPreset) {
    return fx.setChunk(bytes.empty() ? nullptr : bytes.data(), static_cast<VstInt32>(bytes.size()), isPreset);
}

// Everything a host or user can observe of the state, read through the
// host's requests; it leaves the plug-in switched around.
struct Observed {
    std::vector<float> values;
    std::vector<std::string> texts;
    bool operator==(const Observed&) const = default;
    friend void PrintTo(const Observed& o, std::ostream* out) {
        for (float v : o.values) *out << v << ' ';
        for (const auto& t : o.texts) *out << '"' << t << "\" ";
    }
};

void readCurrent(vsthost::Plugin& fx, Observed& seen) {
    for (VstInt32 i = 0; i < kNumParams; ++i) seen.values.push_back(fx.getParameter(i));
    seen.values.push_back(fx.getParameter(kFiveDecoderType));
    seen.values.push_back(static_cast<float>(fx.program()));
    seen.texts.push_back(fx.programName());
}

Observed observeEverything(vsthost::Plugin& fx) {
    Observed seen;
    readCurrent(fx, seen);
    for (float layout : {kStereo, kTwoOne, kQuad, kFive, kFiveOne}) {
        fx.setParameter(kDecodeMode, layout);
        for (VstInt32 p = 0; p < fx.numPrograms(); ++p) {
            fx.setProgram(p);
            readCurrent(fx, seen);
        }
    }
    return seen;
}

// Edits every record of every layout, then leaves 5.1 program 2 with moved transforms.
void editEverything(vsthost::Plugin& fx, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> unit(0.0f, 1.0f);
    for (float layout : {kStereo, kTwoOne, kQuad, kFive, kFiveOne}) {
        fx.setParameter(kDecodeMode, layout);
        for (VstInt32 p = 0; p < fx.numPrograms(); ++p) {
            fx.setProgram(p);
            for (VstInt32 i = kFrontMode; i <= kSurroundGain; ++i) fx.setParameter(i, unit(random));
            fx.setProgramName("Edit " + std::to_string(random() % 1000));
        }
    }
    fx.setProgram(2);
    for (VstInt32 i : {kRotate, kTilt, kTumble, kZoom, kZoomMethod, kChannelOrder}) fx.setParameter(i, unit(random));
}

// Output from cleared filters, so two instances in the same state give the same bits.
std::vector<float> render(vsthost::Plugin& fx) {
    fx.suspend();
    fx.setSampleRate(48000.0f);
    fx.resume();
    vsthost::AudioBuffer<float> in(4, 256), out(6, 256);
    std::mt19937 random(7);
    std::uniform_real_distribution<float> sample(-0.5f, 0.5f);
    for (std::size_t c = 0; c < 4; ++c)
        for (float& s : in[c]) s = sample(random);
    fx.processFloatRaw(in.pointers().data(), out.pointers().data(), 256);
    std::vector<float> all;
    for (std::size_t c = 0; c < 6; ++c) all.insert(all.end(), out[c].begin(), out[c].end());
    return all;
}

}  // namespace

// A session: the bank chunk brings back every record, the layout, the
// program and the current values, whether the host restores in one pass or
// sets parameters, layout and program before the chunk as some hosts do.
TEST_F(SorvaneTest, BankChunkBringsBackTheWholeState) {
    editEverything(fx(), 1);
    const Bytes saved = chunkOf(fx(), false);
    auto twin = loadSorvane();
    auto stale = loadSorvane();
    ASSERT_TRUE(twin && stale);
    EXPECT_EQ(restore(*twin, saved, false), 1);

    // Parameters first, with the layout still stereo, then layout, program and chunk.
    for (VstInt32 i = 0; i < kNumParams; ++i) stale->setParameter(i, fx().getParameter(i));
    stale->setProgram(fx().program());
    EXPECT_EQ(restore(*stale, saved, false), 1);

    for (auto* restored : {twin.get(), stale.get()}) EXPECT_EQ(render(*restored), render(fx()));
    const Observed original = observeEverything(fx());
    EXPECT_EQ(observeEverything(*twin), original);
    EXPECT_EQ(observeEverything(*stale), original);
}

// A host preset: the layout, the current program's name and values, the
// transforms and channel order, into whatever program the other instance has.
TEST_F(SorvaneTest, ProgramChunkBringsBackTheCurrentSettings) {
    editEverything(fx(), 2);
    fx().setProgram(3);  // 5.1's first fixed matrix
    fx().setParameter(kRotate, 0.3f);
    const Bytes preset = chunkOf(fx(), true);
    auto other = loadSorvane();
    ASSERT_TRUE(other);
    EXPECT_EQ(restore(*other, preset, true), 1);
    for (VstInt32 i = 0; i < kNumParams; ++i) EXPECT_EQ(other->getParameter(i), fx().getParameter(i)) << i;
    EXPECT_EQ(other->getParameter(kFiveDecoderType), 1.0f);
    EXPECT_EQ(other->programName(), fx().programName());
    EXPECT_EQ(other->program(), 0);
}

// Every damaged chunk is refused whole: the answer is 0 and nothing changes.
TEST_F(SorvaneTest, DamagedChunksChangeNothing) {
    editEverything(fx(), 3);
    const Bytes bank = chunkOf(fx(), false);
    const Bytes preset = chunkOf(fx(), true);
    const float nan = std::nanf("");
    const auto patched = [](Bytes b, std::size_t at, const void* what, std::size_t n) {
        std::memcpy(b.data() + at, what, n);
        return b;
    };
    const float two = 2.0f, negative = -0.5f;
    const std::uint32_t version3 = 3, layout7 = 7, stereo = 2;
    const std::string unterminated(24, 'a');
    const std::size_t bankValues = 4 * 9, firstBankName = 4 * (9 + sorvane::kFirstSetting), presetName = 4 * 6;
    std::vector<std::pair<Bytes, bool>> damaged = {
        {patched(bank, 0, "SrvX", 4), false},
        {patched(bank, 4, &version3, 4), false},
        {patched(bank, 24, &layout7, 4), false},
        {patched(bank, 24, &stereo, 4), false},  // the layout word contradicts the layout value
        {patched(bank, bankValues + 4 * kRotate, &nan, 4), false},
        {patched(bank, bankValues + 4 * kZoom, &two, 4), false},
        {patched(bank, firstBankName + 24 + 4, &negative, 4), false},
        {patched(bank, firstBankName, unterminated.data(), 24), false},
        {patched(preset, presetName, unterminated.data(), 24), true},
        {preset, false},  // a program chunk offered as a bank
        {bank, true},
    };
    // Cut short at every length, and one byte too long.
    for (const auto& [whole, isPreset] : {std::pair{bank, false}, {preset, true}})
        for (std::size_t size = 0; size <= whole.size(); ++size) {
            damaged.push_back({Bytes(whole.begin(), whole.begin() + size), isPreset});
            if (size == whole.size()) damaged.back().first.push_back(0);
        }

    const int updates = fx().displayUpdates();
    for (const auto& [bytes, isPreset] : damaged)
        EXPECT_EQ(restore(fx(), bytes, isPreset), 0) << bytes.size() << (isPreset ? " preset" : " bank");
    EXPECT_EQ(chunkOf(fx(), false), bank);
    EXPECT_EQ(fx().displayUpdates(), updates);
}

// The input dialect describes the track: a session (bank chunk) keeps it, a
// preset (program chunk, and the .fxp files made of one) leaves it alone, and
// a session saved before the setting existed (version 1) plays as it did then.
TEST_F(SorvaneTest, InputTravelsWithTheSessionNotWithPresets) {
    auto other = loadSorvane();
    ASSERT_TRUE(other);
    for (float position : {0.0f, 0.5f, 1.0f}) {
        fx().setParameter(kInput, position);
        const Bytes bank = chunkOf(fx(), false), preset = chunkOf(fx(), true);
        other->setParameter(kInput, 1.0f - position);
        ASSERT_EQ(restore(*other, preset, true), 1);
        EXPECT_EQ(other->getParameter(kInput), 1.0f - position) << "a preset leaves the input alone";
        ASSERT_EQ(restore(*other, bank, false), 1);
        EXPECT_EQ(other->getParameter(kInput), position);
        EXPECT_EQ(other->parameterDisplay(kInput), sorvane::kInputWords[sorvane::inputFormatOf(position)]);
    }
    // Version 1: the same bytes without the settings' pairs (and the editor scale's).
    fx().setParameter(kInput, 1.0f);
    Bytes bank = chunkOf(fx(), false);
    Bytes first(bank.begin(),
                bank.end() - long(4 + 8 * (kNumParams - sorvane::kFirstSetting + sorvane::kSavedEditorSettings)));
    first[4] = 1;  // the version word, little-endian
    ASSERT_EQ(restore(*other, first, false), 1);
    EXPECT_EQ(other->getParameter(kInput), 0.0f) << "B-Format, as every session before the setting";
    EXPECT_EQ(other->getParameter(kSmoothing), 0.0f) << "and every change at once";
    EXPECT_EQ(other->getParameter(kFrontWidth), fx().getParameter(kFrontWidth));

    // A setting of a later version is skipped; a known one out of range refuses the chunk.
    const auto withPair = [&](std::uint32_t index, float value) {
        Bytes b = bank;
        const std::uint32_t count = 1 + kNumParams - sorvane::kFirstSetting + sorvane::kSavedEditorSettings;
        std::memcpy(b.data() + first.size(), &count, 4);
        b.insert(b.end(), reinterpret_cast<unsigned char*>(&index), reinterpret_cast<unsigned char*>(&index) + 4);
        b.insert(b.end(), reinterpret_cast<unsigned char*>(&value), reinterpret_cast<unsigned char*>(&value) + 4);
        return b;
    };
    other->setParameter(kInput, 0.0f);
    EXPECT_EQ(restore(*other, withPair(1002, 0.25f), false), 1);
    EXPECT_EQ(other->getParameter(kInput), 1.0f);
    EXPECT_EQ(restore(*other, withPair(kInput, 2.0f), false), 0);
}
