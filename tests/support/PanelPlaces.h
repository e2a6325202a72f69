// Where the editor puts its controls, for suites that click on them: the
// panels' tables laid out for the embedded artwork.
#pragma once

#include <cstdint>

#include "CPoint.h"
#include "PanelTables.h"
#include "SorvaneProtocol.h"

namespace panel_places {

const panels::ArtSizes& artSizes();
// The places of the column of tag, in a fixed panel or the layout's panel.
panels::ColumnPlaces placeOf(std::int32_t tag, int layout = sorvane::kStereoLayout);
// Where a click finds a control: a knob's centre, a switch's first position.
CPoint probePoint(const panels::ColumnPlaces& place);

}  // namespace panel_places
