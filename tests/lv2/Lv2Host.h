// The bundle as an LV2 host meets it: loaded through liblilv from the build
// tree by its URI, instantiated, every port connected, run block by block.
#pragma once

#include <gtest/gtest.h>
#include <lilv/lilv.h>
#include <lv2/atom/atom.h>
#include <lv2/urid/urid.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "AudioBuffer.h"
#include "Lv2Ports.h"

namespace lv2_test {

using vsthost::AudioBuffer;
namespace ports = sorvane::lv2;

// URIDs for the state lilv reads presets into.
class UridMap {
public:
    UridMap() : feature{LV2_URID__map, &map} { map = {this, &UridMap::id}; }
    LV2_URID_Map map;
    LV2_Feature feature;

private:
    static LV2_URID id(LV2_URID_Map_Handle handle, const char* uri) {
        auto& uris = static_cast<UridMap*>(handle)->uris;
        const auto found = std::find(uris.begin(), uris.end(), uri);
        if (found != uris.end()) return static_cast<LV2_URID>(found - uris.begin() + 1);
        uris.emplace_back(uri);
        return static_cast<LV2_URID>(uris.size());
    }
    std::vector<std::string> uris;
};

class Bundle {
public:
    Bundle() : world(lilv_world_new(), lilv_world_free) {
        LilvNode* path = lilv_new_file_uri(world.get(), nullptr, SORVANE_LV2_BUNDLE "/");
        lilv_world_load_bundle(world.get(), path);
        lilv_node_free(path);
        LilvNode* uri = node(ports::kPluginUri);
        plugin = lilv_plugins_get_by_uri(lilv_world_get_all_plugins(world.get()), uri);
        lilv_node_free(uri);
    }
    LilvWorld* get() const { return world.get(); }
    // A new node the caller frees.
    LilvNode* node(const std::string& uri) const { return lilv_new_uri(world.get(), uri.c_str()); }

    const LilvPlugin* plugin = nullptr;

private:
    std::unique_ptr<LilvWorld, void (*)(LilvWorld*)> world;
};

// One instance with its ports at their defaults; outputs are planar floats.
class Instance {
public:
    Instance(const Bundle& bundle, double rate)
        : bundle(bundle), controls(ports::kPortCount), instance(lilv_plugin_instantiate(bundle.plugin, rate, nullptr)) {
        lilv_plugin_get_port_ranges_float(bundle.plugin, nullptr, nullptr, controls.data());
        for (std::uint32_t p = ports::kFirstControl; p < ports::kPortCount; ++p)
            lilv_instance_connect_port(instance, p, &controls[p]);
        lilv_instance_activate(instance);
    }
    ~Instance() {
        lilv_instance_deactivate(instance);
        lilv_instance_free(instance);
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    void set(int control, float value) { controls[ports::controlPort(control)] = value; }
    float get(std::uint32_t port) const { return controls[port]; }

    // What a host does with a preset: every port value it holds, by symbol.
    void applyPreset(const LilvNode* preset) {
        lilv_world_load_resource(bundle.get(), preset);
        LilvState* state = lilv_state_new_from_world(bundle.get(), &urids.map, preset);
        ASSERT_TRUE(state);
        lilv_state_emit_port_values(state, &Instance::setBySymbol, this);
        lilv_state_free(state);
    }

    // Runs `in` (four channels) in blocks of the given sizes, cycling through
    // them; the outputs start as NaN so an unwritten one shows.
    AudioBuffer<float> process(AudioBuffer<float>& in, const std::vector<std::size_t>& blocks) {
        AudioBuffer<float> out(ports::kOutputs, in.frames());
        out.fill(std::nanf(""));
        for (std::size_t done = 0, b = 0; done < in.frames(); ++b) {
            const std::size_t n = std::min(blocks[b % blocks.size()], in.frames() - done);
            for (std::uint32_t c = 0; c < ports::kInputs; ++c)
                lilv_instance_connect_port(instance, ports::kFirstInput + c, in[c].data() + done);
            for (std::uint32_t c = 0; c < ports::kOutputs; ++c)
                lilv_instance_connect_port(instance, ports::kFirstOutput + c, out[c].data() + done);
            lilv_instance_run(instance, static_cast<std::uint32_t>(n));
            done += n;
        }
        return out;
    }

private:
    static void setBySymbol(const char* symbol, void* self, const void* value, std::uint32_t size, std::uint32_t type) {
        auto& me = *static_cast<Instance*>(self);
        ASSERT_EQ(type, me.urids.map.map(me.urids.map.handle, LV2_ATOM__Float)) << symbol;
        ASSERT_EQ(size, sizeof(float));
        LilvNode* name = lilv_new_string(me.bundle.get(), symbol);
        const LilvPort* port = lilv_plugin_get_port_by_symbol(me.bundle.plugin, name);
        lilv_node_free(name);
        ASSERT_TRUE(port) << symbol;
        std::memcpy(&me.controls[lilv_port_get_index(me.bundle.plugin, port)], value, sizeof(float));
    }

    const Bundle& bundle;
    UridMap urids;
    std::vector<float> controls;  // indexed by port; the audio entries go unused
    LilvInstance* instance;
};

}  // namespace lv2_test
