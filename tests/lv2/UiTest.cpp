// The bundle's UI library as an LV2 host drives it, under Xvfb: described
// for hosts, embedded in the host's window, showing for the same settings
// exactly what the VST edition's editor shows, and turning a user's edits
// into port writes the DSP reads as the very values the editor showed.
#include <cmath>
#include <set>

#include "EditorWindow.h"
#include "PanelPlaces.h"
#include "Plugin.h"
#include "PortConversions.h"
#include "UiHost.h"

using namespace lv2_test;
using panel_places::placeOf;
using panel_places::probePoint;
using sorvane::kParameters;
using sorvane::lv2::normalisedValue;
using sorvane::lv2::portValue;

namespace {

constexpr int kWidth = 578, kHeight = 502;

class Lv2Ui : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(display) << "these tests need an X server (run them under xvfb-run)";
        binary = UiHost::binaryOf(bundle);
        ASSERT_FALSE(binary.empty()) << "the plug-in names no UI " << ports::kUiUri;
    }
    void TearDown() override {
        if (display) XCloseDisplay(display);
    }
    std::set<std::string> objects(const char* subject, const char* property) {
        LilvNode *s = bundle.node(subject), *p = bundle.node(property);
        LilvNodes* found = lilv_world_find_nodes(bundle.world, s, p, nullptr);
        std::set<std::string> texts;
        LILV_FOREACH(nodes, i, found) texts.insert(lilv_node_as_string(lilv_nodes_get(found, i)));
        lilv_nodes_free(found);
        lilv_node_free(s);
        lilv_node_free(p);
        return texts;
    }

    Bundle bundle;
    Display* display = XOpenDisplay(nullptr);
    std::string binary;
};

int differing(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b) {
    if (a.size() != b.size() || a.empty()) return -1;
    int count = 0;
    for (std::size_t i = 0; i < a.size(); ++i) count += a[i] != b[i];
    return count;
}

}  // namespace

// What a host reads before loading anything: an X11 UI of this plug-in that
// needs a parent window and idle calls, may be told its size and the user's
// gestures, and hears of every control port.
TEST_F(Lv2Ui, DescribedForHosts) {
    const LilvUIs* uis = lilv_plugin_get_uis(bundle.plugin);
    ASSERT_EQ(lilv_uis_size(uis), 1u);
    const LilvUI* ui = lilv_uis_get(uis, lilv_uis_begin(uis));
    LilvNode* x11 = bundle.node(LV2_UI__X11UI);
    EXPECT_TRUE(lilv_ui_is_a(ui, x11));
    lilv_node_free(x11);
    EXPECT_EQ(binary, SORVANE_LV2_BUNDLE "/Sorvane_ui.so");

    EXPECT_EQ(objects(ports::kUiUri, LV2_CORE__requiredFeature),
              (std::set<std::string>{LV2_UI__idleInterface, LV2_UI__parent}));
    const auto optional = objects(ports::kUiUri, LV2_CORE__optionalFeature);
    for (const char* feature : {LV2_UI__resize, LV2_UI__touch, LV2_UI__noUserResize})
        EXPECT_TRUE(optional.count(feature)) << feature;
    EXPECT_EQ(objects(ports::kUiUri, LV2_CORE__extensionData), std::set<std::string>{LV2_UI__idleInterface});

    LilvNode* notification = bundle.node(LV2_UI__portNotification);
    LilvNode* ui_uri = bundle.node(ports::kUiUri);
    LilvNodes* notes = lilv_world_find_nodes(bundle.world, ui_uri, notification, nullptr);
    std::set<std::string> symbols;
    LILV_FOREACH(nodes, i, notes) {
        LilvNode* symbol = bundle.node(LV2_CORE__symbol);
        LilvNode* plugin = bundle.node(LV2_UI__plugin);
        LilvNode* found = lilv_world_get(bundle.world, lilv_nodes_get(notes, i), symbol, nullptr);
        LilvNode* of = lilv_world_get(bundle.world, lilv_nodes_get(notes, i), plugin, nullptr);
        EXPECT_STREQ(of ? lilv_node_as_uri(of) : "", ports::kPluginUri);
        if (found) symbols.insert(lilv_node_as_string(found));
        for (LilvNode* n : {symbol, plugin, found, of}) lilv_node_free(n);
    }
    lilv_nodes_free(notes);
    lilv_node_free(notification);
    lilv_node_free(ui_uri);
    EXPECT_EQ(symbols, std::set<std::string>(std::begin(ports::kControlSymbols), std::end(ports::kControlSymbols)));
}

// No parent window, a parent that does not exist or another plug-in: no UI.
// Otherwise a child of the parent at the editor's size, idling as open until
// the host destroys the parent; and every close leaves the parent empty.
TEST_F(Lv2Ui, EmbedsInTheHostsWindow) {
    UiHost host(binary, display);
    ASSERT_TRUE(host.descriptor);
    EXPECT_STREQ(host.descriptor->URI, ports::kUiUri);
    EXPECT_EQ(host.descriptor->extension_data(LV2_UI__showInterface), nullptr);
    EXPECT_FALSE(host.instantiate({&host.resizeFeature}));
    LV2_Feature noWindow{LV2_UI__parent, reinterpret_cast<void*>(host.parent + 0x1000)};
    EXPECT_FALSE(host.instantiate({&noWindow}));
    EXPECT_FALSE(host.instantiate({&host.parentFeature}, "urn:another:plugin"));

    const auto children = [&] {
        Window root, parentOfParent, *list = nullptr;
        unsigned count = 0;
        XQueryTree(display, host.parent, &root, &parentOfParent, &list, &count);
        std::vector<Window> found(list, list + count);
        if (list) XFree(list);
        return found;
    };
    for (int cycle = 0; cycle < 20; ++cycle) {
        ASSERT_TRUE(children().empty()) << "cycle " << cycle;
        host.open();
        ASSERT_EQ(children(), std::vector<Window>{reinterpret_cast<Window>(host.widget)}) << "cycle " << cycle;
        EXPECT_EQ(host.width, kWidth);
        EXPECT_EQ(host.height, kHeight);
        EXPECT_EQ(host.idle(), 0);
        host.close();
        XSync(display, False);
    }
    // Touch is optional: without it a gesture only writes.
    host.handle = host.instantiate({&host.parentFeature});
    ASSERT_TRUE(host.handle);
    host.settle();
    dragThereAndBack(host.parent, probePoint(placeOf(kRotate)), -10);
    host.settle();
    EXPECT_FALSE(host.writes.empty());
    EXPECT_TRUE(host.touches.empty());

    XDestroyWindow(display, host.parent);
    XSync(display, False);
    host.parent = 0;
    host.idleInterface =
        static_cast<const LV2UI_Idle_Interface*>(host.descriptor->extension_data(LV2_UI__idleInterface));
    host.settle();
    EXPECT_NE(host.idle(), 0) << "the window went with the host's";
}

// For the same settings, port values in the UI and normalised values in the
// VST edition, the two editors show the same pixels: the starting values,
// every layout's panel, the fixed matrices' overlay from the five_decoder
// port, and every knob, switch and value text.
TEST_F(Lv2Ui, ShowsWhatTheVstEditorShows) {
    struct Case {
        int layout;
        int program;
        std::vector<std::pair<int, float>> settings;  // normalised
    };
    const Case cases[] = {
        {0, -1, {}},  // both fresh: the UI before any port value arrives
        {sorvane::kTwoOneLayout, 2, {{kRotate, 0.1f}, {kZoom, 0.7f}, {kZoomMethod, 0.6f}, {kSubCrossover, 0.7f}}},
        {sorvane::kQuadLayout, 1, {{kTilt, 0.375f}, {kChannelOrder, 0}, {kSurroundGain, 0.3f}}},
        {sorvane::kFiveOneLayout, 3, {{kTumble, 0.75f}}},  // the first fixed matrix
        {sorvane::kFiveLayout, 4, {}},                     // the second
        {sorvane::kFiveLayout, 0, {{kCentreGain, 0.5f}, {kRearVerb, 0.25f}}},
    };
    for (const Case& c : cases) {
        std::string error;
        auto fx = vsthost::Plugin::load(SORVANE_PLUGIN_PATH, error);
        ASSERT_TRUE(fx) << error;
        fx->open();
        fx->resume();
        if (c.program >= 0) {
            fx->setParameter(kDecodeMode, sorvane::layoutValue(c.layout));
            fx->setProgram(c.program);
        }
        for (const auto& [index, value] : c.settings) fx->setParameter(index, value);
        auto window = vsthost::EditorWindow::open(*fx, error);
        ASSERT_TRUE(window) << error;
        for (int i = 0; i < 4; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(15));
            window->idle();
        }
        const auto vst = capture(display, window->windowId(), kWidth, kHeight);
        window.reset();

        UiHost host(binary, display);
        host.open();
        if (c.program >= 0) {
            for (int i = 0; i < kNumParams; ++i) host.port(i, portValue(i, fx->getParameter(i)));
            host.port(ports::kFiveDecoderControl, fx->getParameter(kFiveDecoderType));
        }
        host.settle();
        EXPECT_EQ(differing(host.capture(), vst), 0) << "layout " << c.layout << " program " << c.program;
    }

    // The fixed matrix's overlay goes again when the port returns to the microphones.
    UiHost host(binary, display);
    host.open();
    host.port(kDecodeMode, 4);
    host.settle();
    const auto microphones = host.capture();
    host.port(ports::kFiveDecoderControl, 2);
    host.settle();
    EXPECT_GT(differing(host.capture(), microphones), 1000);
    host.port(ports::kFiveDecoderControl, 0);
    host.settle();
    EXPECT_EQ(differing(host.capture(), microphones), 0);
}

// A knob dragged out and back writes its port on the way and, at the end,
// exactly the value the host gave it (the value the DSP reads, where the
// port held more than the engine takes); a switch writes the position
// clicked; each gesture is bracketed by touch on its port. Knobs of a
// layout's panel are there once the layout port names the layout.
TEST_F(Lv2Ui, EditsReachThePorts) {
    UiHost host(binary, display);
    host.open();
    struct Knob {
        int layout;
        int control;
        float given, written;
    };
    const Knob knobs[] = {
        {0, kRotate, 144, 144},
        {0, kTilt, -90, -90},
        {0, kZoom, 40, 40},
        {0, kFrontWidth, 45, 45},
        {0, kFrontPattern, 0.25f, 0.25f},
        {0, kRearVerb, -36, -36},  // off
        {0, kHiVerb, -27, -27},
        {1, kSubGain, -12, -12},
        {1, kSubCrossover, 174.6f, 174},  // whole hertz
        {3, kCentreGain, -6, -6},
        {3, kSurroundWidth, 45, 45},
        {4, kSurroundPattern, 0.625f, 0.625f},
        {4, kCentrePattern, 0.8f, 0.8f},
    };
    for (const Knob& k : knobs) {
        host.port(kDecodeMode, static_cast<float>(k.layout));
        host.port(k.control, k.given);
        host.settle();
        host.writes.clear();
        host.touches.clear();
        const bool rising = portValue(k.control, 1) > portValue(k.control, 0);
        dragThereAndBack(host.parent, probePoint(placeOf(k.control, sorvane::kStereoLayout + k.layout)), -10);
        host.settle();
        const std::uint32_t port = ports::controlPort(k.control);
        ASSERT_GE(host.writes.size(), 2u) << ports::kControlSymbols[k.control];
        for (const auto& w : host.writes) EXPECT_EQ(w.port, port);
        EXPECT_EQ(rising, host.writes.front().value > k.written) << ports::kControlSymbols[k.control];
        EXPECT_EQ(host.writes.back().value, k.written) << ports::kControlSymbols[k.control];
        ASSERT_EQ(host.touches.size(), 2u);
        EXPECT_TRUE(host.touches[0].port == port && host.touches[0].grabbed);
        EXPECT_TRUE(host.touches[1].port == port && !host.touches[1].grabbed);
    }

    struct Switch {
        int control;
        int position;
    };
    host.port(kDecodeMode, 0);
    host.settle();
    for (const Switch s : {Switch{kZoomMethod, 2}, {kFrontMode, 1}, {kChannelOrder, 0}, {kDecodeMode, 3}}) {
        host.writes.clear();
        const auto place = placeOf(s.control);
        const CRect& area = place.control;
        const int positions = s.control == kZoomMethod ? 4 : s.control == kDecodeMode ? 5 : 2;
        clickAt(host.parent, CPoint(area.left + (s.position + 0.5) * area.getWidth() / positions, probePoint(place).y));
        host.settle();
        ASSERT_EQ(host.writes.size(), 1u) << ports::kControlSymbols[s.control];
        EXPECT_EQ(host.writes[0].port, ports::controlPort(s.control));
        EXPECT_EQ(host.writes[0].value, static_cast<float>(s.position));
    }
    // The editor's own layout switch brought the 5.0 panel.
    host.writes.clear();
    dragThereAndBack(host.parent, probePoint(placeOf(kCentrePattern, sorvane::kFiveLayout)), -10);
    host.settle();
    ASSERT_FALSE(host.writes.empty());
    EXPECT_EQ(host.writes.back().port, ports::controlPort(kCentrePattern));
}

// Every port value maps to the normalised value whose engine field, as the
// VST edition derives it, is nearest the one the DSP takes from the port;
// every value the VST edition can reach comes back through it unchanged.
TEST(Lv2UiConversions, InverseOfTheDsp) {
    for (int i = 0; i < kNumParams; ++i) {
        const float low = std::min(portValue(i, 0), portValue(i, 1)), high = std::max(portValue(i, 0), portValue(i, 1));
        for (int k = 0; k <= 4096; ++k) {
            const float v = static_cast<float>(k) / 4096.0f;
            const float reached = portValue(i, v);
            ASSERT_EQ(portValue(i, normalisedValue(i, reached)), reached) << kParameters[i].name << " " << v;
            const float port = low + (high - low) * static_cast<float>(k) / 4096.0f;
            const float n = normalisedValue(i, port);
            ASSERT_TRUE(n >= 0.0f && n <= 1.0f);
            if (sorvane::isSelector(kParameters[i].kind)) continue;
            const double field = sorvane::lv2::realField(kParameters[i].kind, port);
            const auto distance = [&](float m) {
                return std::fabs(sorvane::realValue(kParameters[i].kind, m) - field);
            };
            EXPECT_LE(distance(n), distance(std::nextafter(n, 2.0f))) << i << " " << port;
            EXPECT_LE(distance(n), distance(std::nextafter(n, -1.0f))) << i << " " << port;
        }
    }
    // Choices land on the editor's switch positions; values beyond a range on its end.
    EXPECT_EQ(normalisedValue(kZoomMethod, 2), 2.0f / 3.0f);
    EXPECT_EQ(normalisedValue(kDecodeMode, 3), sorvane::layoutValue(sorvane::kFiveLayout));
    EXPECT_EQ(normalisedValue(kRotate, 500), 0.0f);
    EXPECT_EQ(normalisedValue(kSubCrossover, 1000), 1.0f);
}
