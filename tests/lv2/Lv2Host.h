// The bundle as an LV2 host meets it: loaded through liblilv from the build
// tree by its URI, instantiated, every port connected, run block by block.
#pragma once

#include <gtest/gtest.h>
#include <dlfcn.h>
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/presets/presets.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "AudioBuffer.h"
#include "Lv2Ports.h"
#include "RealtimeHooks.h"

namespace lv2_test {

using vsthost::AudioBuffer;
namespace ports = sorvane::lv2;

struct Bundle {
    Bundle() {
#if defined(__SANITIZE_ADDRESS__)
        // As the host library does in a leak-checking build: the DSP library
        // stays mapped after lilv closes it, or what only its static data
        // (and that of the libraries it brought, FFTW's planner, liblo)
        // still points to would be reported as leaked, without a module to name.
        dlopen(SORVANE_LV2_BUNDLE "/Sorvane_dsp.so", RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
#endif
        LilvNode* path = lilv_new_file_uri(world, nullptr, SORVANE_LV2_BUNDLE "/");
        lilv_world_load_bundle(world, path);
        LilvNode* uri = node(ports::kPluginUri);
        plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world), uri);
        LilvNodes* related = lilv_plugin_get_related(plugin, presetClass);
        LILV_FOREACH(nodes, i, related) {
            const LilvNode* preset = lilv_nodes_get(related, i);
            lilv_world_load_resource(world, preset);
            LilvNode* label = lilv_world_get(world, preset, labelProperty, nullptr);
            if (label) presets[lilv_node_as_string(label)] = lilv_node_duplicate(preset);
            lilv_node_free(label);
        }
        for (LilvNode* n : {path, uri}) lilv_node_free(n);
        lilv_nodes_free(related);
    }
    ~Bundle() {
        for (auto& [label, preset] : presets) lilv_node_free(preset);
        for (LilvNode* n : {presetClass, labelProperty}) lilv_node_free(n);
        lilv_world_free(world);
    }
    // A new node the caller frees.
    LilvNode* node(const char* uri) const { return lilv_new_uri(world, uri); }

    LilvWorld* world = lilv_world_new();
    LilvNode* presetClass = node(LV2_PRESETS__Preset);
    LilvNode* labelProperty = node(LILV_NS_RDFS "label");
    const LilvPlugin* plugin = nullptr;
    std::map<std::string, LilvNode*> presets;  // by label
};

// One instance with its control ports at their defaults.
class Instance {
public:
    Instance(const Bundle& bundle, double rate)
        : bundle(bundle), values(ports::kPortCount), instance(lilv_plugin_instantiate(bundle.plugin, rate, nullptr)) {
        lilv_plugin_get_port_ranges_float(bundle.plugin, nullptr, nullptr, values.data());
        for (std::uint32_t p = ports::kFirstControl; p < ports::kPortCount; ++p)
            lilv_instance_connect_port(instance, p, &values[p]);
        lilv_instance_activate(instance);
    }
    ~Instance() {
        lilv_instance_deactivate(instance);
        lilv_instance_free(instance);
    }

    void set(int control, float value) { values[ports::controlPort(control)] = value; }
    float get(std::uint32_t port) const { return values[port]; }

    // What a host does with a preset: sets every port value it holds, by symbol.
    void applyPreset(const std::string& label) {
        ASSERT_TRUE(bundle.presets.count(label)) << label;
        LilvState* state = lilv_state_new_from_world(bundle.world, &map, bundle.presets.at(label));
        ASSERT_TRUE(state) << label;
        lilv_state_emit_port_values(state, &Instance::setBySymbol, this);
        lilv_state_free(state);
    }

    // Runs `in` (four channels) in blocks of the given sizes, cycling through
    // them; the outputs start as NaN, so one left unwritten shows.
    AudioBuffer<float> process(AudioBuffer<float>& in, const std::vector<std::size_t>& blocks) {
        AudioBuffer<float> out(ports::kOutputs, in.frames());
        out.fill(std::nanf(""));
        for (std::size_t done = 0, b = 0; done < in.frames(); done += blocks[b++ % blocks.size()]) {
            for (std::uint32_t c = 0; c < ports::kInputs; ++c)
                lilv_instance_connect_port(instance, ports::kFirstInput + c, in[c].data() + done);
            for (std::uint32_t c = 0; c < ports::kOutputs; ++c)
                lilv_instance_connect_port(instance, ports::kFirstOutput + c, out[c].data() + done);
            const auto frames = static_cast<std::uint32_t>(std::min(blocks[b % blocks.size()], in.frames() - done));
            // Every run is watched for what has no place on an audio thread.
            validate::realtime::start();
            lilv_instance_run(instance, frames);
            const validate::realtime::Counts calls = validate::realtime::stop();
            EXPECT_EQ(calls.total(), 0) << "run() of " << frames << " frames allocated, freed, locked or slept";
        }
        return out;
    }

private:
    static LV2_URID mapUri(LV2_URID_Map_Handle handle, const char* uri) {
        auto& uris = static_cast<Instance*>(handle)->uris;
        if (std::find(uris.begin(), uris.end(), uri) == uris.end()) uris.emplace_back(uri);
        return static_cast<LV2_URID>(std::find(uris.begin(), uris.end(), uri) - uris.begin() + 1);
    }
    static void setBySymbol(const char* symbol, void* self, const void* value, std::uint32_t size, std::uint32_t type) {
        auto& me = *static_cast<Instance*>(self);
        ASSERT_TRUE(type == mapUri(&me, LV2_ATOM__Float) && size == sizeof(float)) << symbol;
        LilvNode* name = lilv_new_string(me.bundle.world, symbol);
        const LilvPort* port = lilv_plugin_get_port_by_symbol(me.bundle.plugin, name);
        lilv_node_free(name);
        ASSERT_TRUE(port) << symbol;
        std::memcpy(&me.values[lilv_port_get_index(me.bundle.plugin, port)], value, sizeof(float));
    }

    const Bundle& bundle;
    std::vector<std::string> uris;
    LV2_URID_Map map{this, &Instance::mapUri};
    std::vector<float> values;  // by port; the audio entries go unused
    LilvInstance* instance;
};

}  // namespace lv2_test
