// The LV2 edition's UI: the VST edition's editor in a child window of the
// window the host passes (ui:parent), driven by the host's idle calls
// (ui:idleInterface). The editor's link to the effect is a PortLink: port
// values come in through port_event, the editor's changes go out through the
// host's write function, its gestures through ui:touch when the host offers it.
// The host's scale for the editor comes as the option ui:scaleFactor, at
// instantiation and later through the options interface.
#include <lv2/atom/atom.h>
#include <lv2/core/lv2.h>
#include <lv2/options/options.h>
#include <lv2/ui/ui.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <cstring>
#include <memory>

#include "CFrame.h"
#include "Lv2Ports.h"
#include "MyEditor.h"
#include "PortLink.h"

namespace {

using namespace sorvane::lv2;

struct Ui {
    Ui(LV2UI_Write_Function write, LV2UI_Controller controller, const LV2UI_Touch* touch)
        : link(write, controller, touch), editor(&link) {
        link.setEditor(&editor);
    }

    // Takes ui:scaleFactor from options the host sets, if it names it as a float.
    void takeOptions(const LV2_Options_Option* options) {
        for (; options && options->key; ++options)
            if (options->key == scaleFactorKey && options->type == floatType && options->size == sizeof(float) &&
                options->value)
                link.setHostScaleFactor(*static_cast<const float*>(options->value));
    }

    PortLink link;
    MyEditor editor;  // closed, if still open, as it goes
    LV2_URID scaleFactorKey = 0, floatType = 0;  // 0 without the host's URID map
};

template <typename T>
const T* feature(const LV2_Feature* const* features, const char* uri) {
    for (; features && *features; ++features)
        if (std::strcmp((*features)->URI, uri) == 0) return static_cast<const T*>((*features)->data);
    return nullptr;
}

LV2UI_Handle instantiate(const LV2UI_Descriptor*, const char* pluginUri, const char*, LV2UI_Write_Function write,
                         LV2UI_Controller controller, LV2UI_Widget* widget, const LV2_Feature* const* features) {
    if (!pluginUri || std::strcmp(pluginUri, kPluginUri) != 0 || !widget) return nullptr;
    // The parent's data is the window id itself, and no window has id 0.
    const void* parent = feature<void>(features, LV2_UI__parent);
    if (!parent) return nullptr;

    auto ui = std::make_unique<Ui>(write, controller, feature<LV2UI_Touch>(features, LV2_UI__touch));
    const auto* resize = feature<LV2UI_Resize>(features, LV2_UI__resize);
    ui->link.setResize(resize);
    if (const auto* map = feature<LV2_URID_Map>(features, LV2_URID__map)) {
        ui->scaleFactorKey = map->map(map->handle, LV2_UI__scaleFactor);
        ui->floatType = map->map(map->handle, LV2_ATOM__Float);
        ui->takeOptions(feature<LV2_Options_Option>(features, LV2_OPTIONS__options));
    }
    ui->editor.open(const_cast<void*>(parent));
    // No display, or no such parent: the host gets no UI rather than an empty one.
    const CFrame* frame = ui->editor.getFrame();
    if (!frame || !frame->isOpen()) return nullptr;
    *widget = reinterpret_cast<LV2UI_Widget>(static_cast<std::uintptr_t>(frame->getWindowId()));

    ERect* rect = nullptr;
    if (resize && ui->editor.getRect(&rect))
        resize->ui_resize(resize->handle, rect->right - rect->left, rect->bottom - rect->top);
    return ui.release();
}

void cleanup(LV2UI_Handle handle) { delete static_cast<Ui*>(handle); }

// Some hosts go on calling with a null handle after cleanup (jalv through
// suil, whose GTK socket cleans the UI up when its window goes, while jalv
// still sends the latency port's value at each update): nothing to do then.
void portEvent(LV2UI_Handle handle, std::uint32_t port, std::uint32_t size, std::uint32_t format, const void* buffer) {
    // Control ports only speak the float protocol (format 0).
    if (!handle || format != 0 || size != sizeof(float) || !buffer) return;
    float value;
    std::memcpy(&value, buffer, sizeof value);
    static_cast<Ui*>(handle)->link.portChanged(port, value);
}

// Non-zero once the editor's window is gone: the host dropped its parent.
int idle(LV2UI_Handle handle) {
    if (!handle) return 1;
    MyEditor& editor = static_cast<Ui*>(handle)->editor;
    editor.idle();
    const CFrame* frame = editor.getFrame();
    return frame && frame->isOpen() ? 0 : 1;
}

const LV2UI_Idle_Interface kIdleInterface = {idle};

// A new factor reaches the editor at its next idle.
std::uint32_t setOptions(LV2_Handle handle, const LV2_Options_Option* options) {
    if (handle) static_cast<Ui*>(handle)->takeOptions(options);
    return LV2_OPTIONS_SUCCESS;
}
// The UI has nothing to tell about its options.
std::uint32_t getOptions(LV2_Handle, LV2_Options_Option*) { return LV2_OPTIONS_ERR_BAD_KEY; }

const LV2_Options_Interface kOptionsInterface = {getOptions, setOptions};

const void* extensionData(const char* uri) {
    if (uri && std::strcmp(uri, LV2_UI__idleInterface) == 0) return &kIdleInterface;
    if (uri && std::strcmp(uri, LV2_OPTIONS__interface) == 0) return &kOptionsInterface;
    return nullptr;
}

const LV2UI_Descriptor kDescriptor = {kUiUri, instantiate, cleanup, portEvent, extensionData};

}  // namespace

LV2_SYMBOL_EXPORT const LV2UI_Descriptor* lv2ui_descriptor(std::uint32_t index) {
    return index == 0 ? &kDescriptor : nullptr;
}
