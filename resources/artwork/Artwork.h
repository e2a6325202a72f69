// The three families of editor artwork; each writes its PNGs into dir.
#pragma once

namespace artwork {
bool drawKnobStrips(const char* dir);    // the five 281-frame knob strips
bool drawSwitchStrips(const char* dir);  // the 2-, 4- and 5-position switches and the settings' ones
bool drawPanels(const char* dir);        // panel backgrounds, plot and name panel
}  // namespace artwork
