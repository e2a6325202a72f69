// The LV2 bundle driven through liblilv against the VST edition (Sorvane.so
// through the host library) and against the engine: presets against
// programs, port values against parameter values, bit for bit at block
// sizes from 1 to 4096. The outputs start as NaN, so an unwritten one shows.
#include <lv2/units/units.h>

#include <bit>
#include <set>

#include "Lv2Host.h"
#include "Plugin.h"
#include "SorvaneProtocol.h"

using namespace lv2_test;

namespace {

const std::vector<std::size_t> kBlocks = {1, 4096, 37, 256, 1000, 3};

// Deterministic noise in [-0.5, 0.5), with a stretch of subnormal samples
// that only flushing to zero silences.
AudioBuffer<float> noise(std::size_t frames, std::uint32_t seed) {
    AudioBuffer<float> buffer(ports::kInputs, frames);
    for (std::size_t c = 0; c < ports::kInputs; ++c)
        for (std::size_t i = 0; i < frames; ++i) {
            seed = seed * 1664525u + 1013904223u;
            buffer[c][i] = static_cast<float>((seed >> 8) / 16777216.0 - 0.5) * (i >= 600 && i < 700 ? 1e-38f : 1);
        }
    return buffer;
}

std::unique_ptr<vsthost::Plugin> loadVst(float rate, int layout = sorvane::kStereoLayout) {
    std::string error;
    auto fx = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
    EXPECT_TRUE(fx) << error;
    fx->setSampleRate(rate);
    fx->resume();
    if (layout != sorvane::kStereoLayout) fx->setParameter(kDecodeMode, sorvane::layoutValue(layout));
    return fx;
}

AudioBuffer<float> vstProcess(vsthost::Plugin& fx, AudioBuffer<float>& in) {
    AudioBuffer<float> out(ports::kOutputs, in.frames());
    fx.processFloat(in.pointers(), out.pointers(), static_cast<VstInt32>(in.frames()));
    return out;
}

// Any NaN matches any NaN: which operand's sign a NaN keeps depends on how a
// vector loop pairs them, and means nothing.
void expectSameBits(const AudioBuffer<float>& got, const AudioBuffer<float>& want, const std::string& what) {
    for (std::size_t c = 0; c < want.channels(); ++c)
        for (std::size_t i = 0; i < want.frames(); ++i) {
            if (std::isnan(got[c][i]) && std::isnan(want[c][i])) continue;
            ASSERT_EQ(std::bit_cast<std::uint32_t>(got[c][i]), std::bit_cast<std::uint32_t>(want[c][i]))
                << what << ": output " << c + 1 << " frame " << i << ": " << got[c][i] << " vs " << want[c][i];
        }
}

// "5.1: MS Microphones" for the VST program "5.1 MS Microphones".
std::string presetLabel(std::string programName) { return programName.replace(programName.find(' '), 1, ": "); }

class Lv2Bundle : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(bundle.plugin) << "no plug-in " << ports::kPluginUri << " in the bundle";
#if !defined(__SANITIZE_ADDRESS__)
        // Every run() is watched (Lv2Host.h): the plug-in must bind to the counting hooks.
        ASSERT_TRUE(validate::realtime::available());
#endif
    }
    Bundle bundle;
};

}  // namespace

TEST_F(Lv2Bundle, UnitsAndChoices) {
    const std::map<std::string, std::string> units = {
        {"rotate", "degree"},         {"tilt", "degree"},           {"tumble", "degree"},   {"zoom", "pc"},
        {"front_width", "degree"},    {"front_pattern", "coef"},    {"rear_verb", "db"},    {"hi_verb", "db"},
        {"centre_pattern", "coef"},   {"centre_gain", "db"},        {"sub_gain", "db"},     {"sub_crossover", "hz"},
        {"surround_pattern", "coef"}, {"surround_width", "degree"}, {"surround_gain", "db"}};
    const std::set<std::string> choices = {"zoom_method", "front_mode",    "surround_mode",
                                           "layout",      "channel_order", "five_decoder"};
    const LilvPlugin* p = bundle.plugin;
    ASSERT_EQ(lilv_plugin_get_num_ports(p), ports::kPortCount);
    LilvNode* unit = bundle.node(LV2_UNITS__unit);
    LilvNode* enumeration = bundle.node(LV2_CORE__enumeration);
    for (std::uint32_t i = ports::kFirstControl; i < ports::kLatencyPort; ++i) {
        const LilvPort* port = lilv_plugin_get_port_by_index(p, i);
        const std::string symbol = lilv_node_as_string(lilv_port_get_symbol(p, port));
        LilvNodes* found = lilv_port_get_value(p, port, unit);
        const auto want = units.find(symbol);
        EXPECT_EQ(found ? lilv_node_as_uri(lilv_nodes_get_first(found)) : "",
                  want == units.end() ? "" : LV2_UNITS_PREFIX + want->second)
            << symbol;
        EXPECT_EQ(lilv_port_has_property(p, port, enumeration), choices.count(symbol) == 1) << symbol;
        lilv_nodes_free(found);
    }
    lilv_node_free(unit);
    lilv_node_free(enumeration);
}

// Every preset is its program: named after it with its layout, and sounding
// exactly like the VST edition after selecting the layout and the program.
TEST_F(Lv2Bundle, EveryPresetSoundsLikeItsProgram) {
    EXPECT_EQ(bundle.presets.size(), 25u);
    AudioBuffer<float> in = noise(5000, 7);
    for (int layout = sorvane::kStereoLayout; layout <= sorvane::kFiveOneLayout; ++layout)
        for (int program = 0; program < 5; ++program) {
            auto fx = loadVst(48000, layout);
            fx->setProgram(program);
            Instance lv2(bundle, 48000);
            lv2.applyPreset(presetLabel(fx->programName()));
            auto blocks = kBlocks;
            std::rotate(blocks.begin(), blocks.begin() + program, blocks.end());
            expectSameBits(lv2.process(in, blocks), vstProcess(*fx, in), fx->programName());
        }
}

namespace {

struct Setting {
    std::int32_t index;
    float normalised;  // the VST edition's value
    float port;        // the LV2 edition's, in the units a user reads
};

// Values inside the ranges and at their ends, each reached exactly by both
// editions: the ports hand the engine these very numbers, so this also pins
// the VST edition's conversions to the bit.
const std::vector<Setting> kInside = {
    {kRotate, 0.1f, 144},           {kTilt, 0.375f, 45},
    {kTumble, 0.75f, -90},          {kZoom, 0.7f, 40},
    {kZoomMethod, 0.6f, 2},         {kFrontMode, 1, 1},
    {kFrontWidth, 0.5f, 45},        {kFrontPattern, 0.25f, 0.25f},
    {kRearVerb, 0.75f, -9},         {kHiVerb, 0.25f, -27},
    {kCentrePattern, 0.75f, 0.75f}, {kCentreGain, 0.5f, -6},
    {kSubGain, 0.25f, -12},         {kSubCrossover, 0.7f, 174.6f},  // the port truncates to whole hertz
    {kSurroundMode, 1, 1},          {kSurroundPattern, 0.625f, 0.625f},
    {kSurroundWidth, 0.5f, 45},     {kSurroundGain, 1, 6},
};
const std::vector<Setting> kEnds = {
    {kRotate, 1, -180},     {kTilt, 0, 180},        {kTumble, 1, -180},      {kZoom, 0, -100},
    {kZoomMethod, 1, 3},    {kFrontWidth, 1, 90},   {kFrontPattern, 1, 1},   {kRearVerb, 0, -36},
    {kHiVerb, 1, 0},        {kCentrePattern, 0, 0}, {kCentreGain, 0, -18},   {kSubGain, 1, 6},
    {kSubCrossover, 0, 20}, {kSurroundWidth, 0, 0}, {kSurroundGain, 0, -18}, {kSurroundPattern, 1, 1},
};
// Past the ends, as hosts may write them: each acts as the end it passed.
const std::vector<Setting> kBeyond = {
    {kRotate, 1, -1e9f},      {kTilt, 0, INFINITY},         {kZoom, 1, 500},           {kZoomMethod, 0, -2},
    {kFrontWidth, 1, 1e3f},   {kFrontPattern, 1, 5},        {kRearVerb, 0, -INFINITY}, {kHiVerb, 1, 40},
    {kCentrePattern, 0, -3},  {kCentreGain, 0, -1e30f},     {kSubGain, 1, 1e3f},       {kSubCrossover, 0, -5},
    {kSurroundWidth, 0, -90}, {kSurroundGain, 1, INFINITY}, {kSurroundPattern, 1, 2},
};

}  // namespace

// Fresh instances of both editions sound the same (the ports start where a
// new VST instance starts), and so does one whose every port holds NaN; so
// do both, in every layout and channel order, once the layout is chosen
// (with its first program, as the VST edition loads it) and the same
// settings made, a port past its range acting as the end it passed.
TEST_F(Lv2Bundle, SettingsSoundLikeTheVstEdition) {
    AudioBuffer<float> in = noise(3000, 11);
    expectSameBits(Instance(bundle, 44100).process(in, kBlocks), vstProcess(*loadVst(44100), in), "fresh");
    Instance unset(bundle, 44100);
    for (int c = 0; c < static_cast<int>(ports::kControls); ++c) unset.set(c, std::nanf(""));
    expectSameBits(unset.process(in, kBlocks), vstProcess(*loadVst(44100), in), "NaN in every port");
    for (int layout = sorvane::kStereoLayout; layout <= sorvane::kFiveOneLayout; ++layout)
        for (int order : {0, 1})
            for (const auto& [settings, which] :
                 {std::pair{&kInside, ""}, {&kEnds, ", ends"}, {&kBeyond, ", past the ends"}}) {
                auto fx = loadVst(44100, layout);
                Instance lv2(bundle, 44100);
                lv2.applyPreset(presetLabel(fx->programName()));
                fx->setParameter(kChannelOrder, static_cast<float>(order));
                lv2.set(kChannelOrder, static_cast<float>(order));
                for (const Setting& s : *settings) {
                    fx->setParameter(s.index, s.normalised);
                    lv2.set(s.index, s.port);
                }
                expectSameBits(lv2.process(in, kBlocks), vstProcess(*fx, in),
                               fx->programName() + (order ? ", 5.1 order" : "") + which);
            }
}

// After a block with a NaN the output is finite again, and at a rate far
// below the crossover the filters stay finite: both as in the VST edition.
TEST_F(Lv2Bundle, RecoversAndStaysFiniteLikeTheVstEdition) {
    for (float rate : {200.0f, 48000.0f}) {
        auto fx = loadVst(rate, sorvane::kFiveOneLayout);
        Instance lv2(bundle, rate);
        lv2.applyPreset("5.1: XY Microphones");
        for (int round = 0; round < 3; ++round) {
            AudioBuffer<float> in = noise(2000, 5 + round);
            if (round == 1) in[1][1500] = std::nanf("");
            const AudioBuffer<float> got = lv2.process(in, kBlocks);
            expectSameBits(got, vstProcess(*fx, in),
                           "rate " + std::to_string(rate) + " round " + std::to_string(round));
            for (std::size_t c = 0; c < ports::kOutputs && round == 2; ++c) EXPECT_TRUE(std::isfinite(got[c].back()));
        }
        EXPECT_EQ(lv2.get(ports::kLatencyPort), 0.0f);
    }
}
