// Who hears about a control's changes: valueChanged after every change the
// user makes; the other callbacks have empty defaults.
#pragma once

#include <cstdint>

#include "CButtonState.h"

class CControl;

class CControlListener {
public:
    virtual ~CControlListener() = default;
    virtual void valueChanged(CControl* control) = 0;
    // A click with Control or Alt held; a non-zero answer takes the click away from the control.
    virtual int32_t controlModifierClicked(CControl* /*control*/, CButtonState /*buttons*/) { return 0; }
    virtual void controlBeginEdit(CControl* /*control*/) {}
    virtual void controlEndEdit(CControl* /*control*/) {}
    virtual void controlTagWillChange(CControl* /*control*/) {}
    virtual void controlTagDidChange(CControl* /*control*/) {}
};
