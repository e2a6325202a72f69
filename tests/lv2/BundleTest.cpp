// The LV2 bundle driven through liblilv against the VST edition (Sorvane.so
// through the host library) and against the engine: presets against
// programs, port values against parameter values and engine fields, bit for
// bit at block sizes from 1 to 4096.
#include <bit>
#include <cmath>
#include <map>
#include <set>

#include <lv2/presets/presets.h>
#include <lv2/units/units.h>

#include "Decoder.h"
#include "FloatModeGuard.h"
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
            const float v = static_cast<float>(static_cast<double>(seed >> 8) / 16777216.0 - 0.5);
            buffer[c][i] = i >= 600 && i < 700 ? v * 1e-38f : v;
        }
    return buffer;
}

std::unique_ptr<vsthost::Plugin> loadVst(float rate) {
    std::string error;
    auto fx = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
    EXPECT_TRUE(fx) << error;
    if (fx) {
        fx->setSampleRate(rate);
        fx->resume();
    }
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
        for (std::size_t i = 0; i < want.frames(); ++i)
            if (!std::isnan(got[c][i]) || !std::isnan(want[c][i]))
                ASSERT_EQ(std::bit_cast<std::uint32_t>(got[c][i]), std::bit_cast<std::uint32_t>(want[c][i]))
                << what << ": output " << c + 1 << " frame " << i << ": " << got[c][i] << " vs " << want[c][i];
}

// The bundle's presets by label.
std::map<std::string, const LilvNode*> presetsByLabel(const Bundle& bundle) {
    std::map<std::string, const LilvNode*> presets;
    LilvNode* presetClass = bundle.node(LV2_PRESETS__Preset);
    LilvNode* label = bundle.node(LILV_NS_RDFS "label");
    LilvNodes* related = lilv_plugin_get_related(bundle.plugin, presetClass);
    LILV_FOREACH(nodes, i, related) {
        const LilvNode* preset = lilv_nodes_get(related, i);
        lilv_world_load_resource(bundle.get(), preset);
        if (LilvNode* text = lilv_world_get(bundle.get(), preset, label, nullptr)) {
            presets[lilv_node_as_string(text)] = lilv_node_duplicate(preset);
            lilv_node_free(text);
        }
    }
    lilv_nodes_free(related);
    lilv_node_free(label);
    lilv_node_free(presetClass);
    return presets;
}

// "5.1: MS Microphones" for the VST program "5.1 MS Microphones".
std::string presetLabel(std::string programName) { return programName.replace(programName.find(' '), 1, ": "); }

class Lv2Bundle : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(bundle.plugin) << "no plug-in " << ports::kPluginUri << " in the bundle"; }
    Bundle bundle;
};

}  // namespace

TEST_F(Lv2Bundle, PortsUnitsAndChoices) {
    const LilvPlugin* p = bundle.plugin;
    ASSERT_EQ(lilv_plugin_get_num_ports(p), ports::kPortCount);
    const std::map<std::string, std::string> units = {
        {"rotate", "degree"},         {"tilt", "degree"},           {"tumble", "degree"},   {"zoom", "pc"},
        {"front_width", "degree"},    {"front_pattern", "coef"},    {"rear_verb", "db"},    {"hi_verb", "db"},
        {"centre_pattern", "coef"},   {"centre_gain", "db"},        {"sub_gain", "db"},     {"sub_crossover", "hz"},
        {"surround_pattern", "coef"}, {"surround_width", "degree"}, {"surround_gain", "db"}};
    const std::set<std::string> choices = {"zoom_method", "front_mode",    "surround_mode",
                                           "layout",      "channel_order", "five_decoder"};
    LilvNode* unit = bundle.node(LV2_UNITS__unit);
    LilvNode* enumeration = bundle.node(LV2_CORE__enumeration);
    LilvNode* control = bundle.node(LV2_CORE__ControlPort);
    LilvNode* input = bundle.node(LV2_CORE__InputPort);
    for (std::uint32_t i = ports::kFirstControl; i < ports::kLatencyPort; ++i) {
        const LilvPort* port = lilv_plugin_get_port_by_index(p, i);
        const std::string symbol = lilv_node_as_string(lilv_port_get_symbol(p, port));
        EXPECT_TRUE(lilv_port_is_a(p, port, control) && lilv_port_is_a(p, port, input)) << symbol;
        LilvNodes* unitNodes = lilv_port_get_value(p, port, unit);
        const std::string got = unitNodes ? lilv_node_as_uri(lilv_nodes_get_first(unitNodes)) : "";
        lilv_nodes_free(unitNodes);
        const auto want = units.find(symbol);
        EXPECT_EQ(got, want == units.end() ? "" : "http://lv2plug.in/ns/extensions/units#" + want->second) << symbol;
        EXPECT_EQ(lilv_port_has_property(p, port, enumeration), choices.count(symbol) == 1) << symbol;
    }
    for (LilvNode* n : {unit, enumeration, control, input}) lilv_node_free(n);

    // The layout's choices in the protocol's words, by index.
    LilvNode* layoutSymbol = lilv_new_string(bundle.get(), "layout");
    LilvScalePoints* points = lilv_port_get_scale_points(p, lilv_plugin_get_port_by_symbol(p, layoutSymbol));
    std::map<float, std::string> layouts;
    LILV_FOREACH(scale_points, i, points) {
        const LilvScalePoint* point = lilv_scale_points_get(points, i);
        layouts[lilv_node_as_float(lilv_scale_point_get_value(point))] =
            lilv_node_as_string(lilv_scale_point_get_label(point));
    }
    lilv_scale_points_free(points);
    lilv_node_free(layoutSymbol);
    EXPECT_EQ(layouts, (std::map<float, std::string>{{0, "Stereo"}, {1, "2.1"}, {2, "Quad"}, {3, "5.0"}, {4, "5.1"}}));

    EXPECT_TRUE(lilv_plugin_has_latency(p));
    EXPECT_EQ(lilv_plugin_get_latency_port_index(p), ports::kLatencyPort);
    LilvNode* hardRT = bundle.node(LV2_CORE__hardRTCapable);
    EXPECT_TRUE(lilv_plugin_has_feature(p, hardRT));
    lilv_node_free(hardRT);
}

// Every preset is its program: named after it with its layout, and sounding
// exactly like the VST edition after selecting the layout and the program.
TEST_F(Lv2Bundle, EveryPresetSoundsLikeItsProgram) {
    const auto presets = presetsByLabel(bundle);
    EXPECT_EQ(presets.size(), 25u);
    AudioBuffer<float> in = noise(5000, 7);
    for (int layout = sorvane::kStereoLayout; layout <= sorvane::kFiveOneLayout; ++layout) {
        for (int program = 0; program < 5; ++program) {
            auto fx = loadVst(48000);
            ASSERT_TRUE(fx);
            fx->setParameter(kDecodeMode, sorvane::layoutValue(layout));
            fx->setProgram(program);
            const std::string label = presetLabel(fx->programName());
            const auto preset = presets.find(label);
            ASSERT_NE(preset, presets.end()) << label;

            Instance lv2(bundle, 48000);
            lv2.applyPreset(preset->second);
            auto blocks = kBlocks;
            std::rotate(blocks.begin(), blocks.begin() + program, blocks.end());
            expectSameBits(lv2.process(in, blocks), vstProcess(*fx, in), label);
        }
    }
    for (auto& [label, node] : presets) lilv_node_free(const_cast<LilvNode*>(node));
}

namespace {

struct Setting {
    std::int32_t index;
    float normalised;  // the VST edition's value
    float port;        // the LV2 edition's, in the units a user reads
};

// Values inside the ranges and at their ends, each reached exactly by both editions.
const std::vector<Setting> kInside = {
    {kRotate, 0.1f, 144},           {kTilt, 0.375f, 45},
    {kTumble, 0.75f, -90},          {kZoom, 0.7f, 40},
    {kZoomMethod, 0.6f, 2},         {kFrontMode, 1, 1},
    {kFrontWidth, 0.5f, 45},        {kFrontPattern, 0.25f, 0.25f},
    {kRearVerb, 0.75f, -9},         {kHiVerb, 0.25f, -27},
    {kCentrePattern, 0.75f, 0.75f}, {kCentreGain, 0.5f, -6},
    {kSubGain, 0.25f, -12},         {kSubCrossover, 0.7f, 174},
    {kSurroundMode, 1, 1},          {kSurroundPattern, 0.625f, 0.625f},
    {kSurroundWidth, 0.5f, 45},     {kSurroundGain, 1, 6},
};
const std::vector<Setting> kEnds = {
    {kRotate, 1, -180},     {kTilt, 0, 180},        {kTumble, 1, -180},      {kZoom, 0, -100},
    {kZoomMethod, 1, 3},    {kFrontWidth, 1, 90},   {kFrontPattern, 1, 1},   {kRearVerb, 0, -36},
    {kHiVerb, 1, 0},        {kCentrePattern, 0, 0}, {kCentreGain, 0, -18},   {kSubGain, 1, 6},
    {kSubCrossover, 0, 20}, {kSurroundWidth, 0, 0}, {kSurroundGain, 0, -18}, {kSurroundPattern, 1, 1},
};

}  // namespace

// A fresh instance of each edition sounds the same (the ports' defaults are
// where a new VST instance starts); so do both, in every layout and channel
// order, once a layout is chosen (its first program: what the VST edition
// loads) and the same settings are made.
TEST_F(Lv2Bundle, SettingsSoundLikeTheVstEdition) {
    AudioBuffer<float> in = noise(3000, 11);
    {
        auto fx = loadVst(44100);
        Instance lv2(bundle, 44100);
        expectSameBits(lv2.process(in, kBlocks), vstProcess(*fx, in), "fresh instances");
    }
    const auto presets = presetsByLabel(bundle);
    for (int layout = sorvane::kStereoLayout; layout <= sorvane::kFiveOneLayout; ++layout)
        for (int order : {0, 1})
            for (const auto* settings : {&kInside, &kEnds}) {
                auto fx = loadVst(44100);
                fx->setParameter(kDecodeMode, sorvane::layoutValue(layout));
                fx->setParameter(kChannelOrder, static_cast<float>(order));
                Instance lv2(bundle, 44100);
                lv2.applyPreset(presets.at(presetLabel(fx->programName())));
                lv2.set(kChannelOrder, static_cast<float>(order));
                for (const Setting& s : *settings) {
                    fx->setParameter(s.index, s.normalised);
                    lv2.set(s.index, s.port);
                }
                expectSameBits(lv2.process(in, kBlocks), vstProcess(*fx, in),
                               fx->parameterDisplay(kDecodeMode) + " order " + std::to_string(order) +
                                   (settings == &kEnds ? " ends" : " inside"));
            }
    for (auto& [label, node] : presets) lilv_node_free(const_cast<LilvNode*>(node));
}

// Port values straight into the engine's fields, checked against the
// per-frame engine; unused outputs are written silent.
TEST_F(Lv2Bundle, MatchesTheEngineFrameByFrame) {
    struct Case {
        const char* what;
        std::vector<std::pair<int, float>> ports;
        void (*fields)(Decoder&);
    };
    const Case cases[] = {
        // Each case also sets the front width the ports start from (the first program's).
        {"5.1, 5.1 order, Focus zoom",
         {{kDecodeMode, 4},
          {kRotate, -30},
          {kTilt, 12.5f},
          {kZoom, 40},
          {kZoomMethod, 3},
          {kSubCrossover, 80.9f},
          {kSubGain, -6},
          {kSurroundMode, 1},
          {kRearVerb, -9}},
         [](Decoder& d) {
             d.decodeMode = 6, d.rotateAngle = -30, d.tiltAngle = 12.5, d.zoomAmount = 40, d.zoomMethod = 3;
             d.crossoverFrequency = 80, d.subGain = -6, d.surroundMode = 1, d.rearVerbGain = -9;
             d.frontWidth = 30;
         }},
        {"quad, natural order, Press zoom",
         {{kDecodeMode, 2},
          {kChannelOrder, 0},
          {kZoom, -25},
          {kZoomMethod, 1},
          {kSurroundWidth, 70},
          {kSurroundPattern, 0.3f}},
         [](Decoder& d) {
             d.decodeMode = 4, d.channelOrder = 0, d.zoomAmount = -25, d.zoomMethod = 1, d.surroundWidth = 70;
             d.surroundPattern = static_cast<double>(0.3f), d.frontWidth = 30;
         }},
        {"5.0, second fixed matrix, natural order",
         {{kDecodeMode, 3}, {sorvane::lv2::kFiveDecoderControl, 2}, {kChannelOrder, 0}, {kTumble, 100}},
         [](Decoder& d) {
             d.decodeMode = 5, d.fiveDecoderType = 2, d.channelOrder = 0, d.tumbleAngle = 100, d.frontWidth = 30;
         }},
        {"stereo, ambience below the floor is off, hiverb on",
         {{kRearVerb, -50}, {kHiVerb, -3}, {kFrontPattern, 0.9f}},
         [](Decoder& d) {
             d.rearVerbGain = -100, d.hiVerbGain = -3, d.frontPattern = static_cast<double>(0.9f), d.frontWidth = 30;
         }},
    };
    AudioBuffer<float> in = noise(9000, 3);
    for (const Case& c : cases) {
        Instance lv2(bundle, 48000);
        for (auto [control, value] : c.ports) lv2.set(control, value);
        const AudioBuffer<float> got = lv2.process(in, kBlocks);

        Decoder d;
        d.sampleRate = 48000;
        c.fields(d);
        d.filterCoefs();
        AudioBuffer<float> want(ports::kOutputs, in.frames());
        const FloatModeGuard flushDenormals;  // as the plug-in runs the engine
        for (std::size_t i = 0; i < in.frames(); ++i) {
            double W = in[0][i], X = in[1][i], Y = in[2][i], Z = in[3][i];
            const int produced = d.processDecoder(W, X, Y, Z);
            for (int o = 0; o < 6; ++o) want[o][i] = o < produced ? static_cast<float>(d.speakerFeeds[o]) : 0.0f;
        }
        expectSameBits(got, want, c.what);
    }
}

// After a block with a NaN the output is finite again, and at a rate far
// below the crossover the filters stay finite: both as in the VST edition.
TEST_F(Lv2Bundle, RecoversAndStaysFiniteLikeTheVstEdition) {
    const auto presets = presetsByLabel(bundle);
    for (float rate : {200.0f, 48000.0f}) {
        auto fx = loadVst(rate);
        fx->setParameter(kDecodeMode, sorvane::layoutValue(sorvane::kFiveOneLayout));
        Instance lv2(bundle, rate);
        lv2.applyPreset(presets.at("5.1: XY Microphones"));
        for (int round = 0; round < 3; ++round) {
            AudioBuffer<float> in = noise(2000, 5 + round);
            if (round == 1) in[1][1500] = std::nanf("");
            const AudioBuffer<float> got = lv2.process(in, kBlocks);
            expectSameBits(got, vstProcess(*fx, in),
                           "rate " + std::to_string(rate) + " round " + std::to_string(round));
            if (round == 2) {
                for (std::size_t c = 0; c < ports::kOutputs; ++c) EXPECT_TRUE(std::isfinite(got[c].back())) << c;
            }
        }
        EXPECT_EQ(lv2.get(ports::kLatencyPort), 0.0f);
    }
    for (auto& [label, node] : presets) lilv_node_free(const_cast<LilvNode*>(node));
}
