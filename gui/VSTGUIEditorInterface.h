// What the toolkit needs from the editor that owns a frame: the brackets
// around a user's gesture on one parameter, so the host records it as one.
#pragma once

#include <cstdint>

class VSTGUIEditorInterface {
public:
    virtual ~VSTGUIEditorInterface() = default;
    virtual bool beginEdit(int32_t /*index*/) { return false; }
    virtual bool endEdit(int32_t /*index*/) { return false; }
};
