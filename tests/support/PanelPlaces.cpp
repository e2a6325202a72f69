#include "PanelPlaces.h"

#include <gtest/gtest.h>

#include "CBitmap.h"

namespace panel_places {

const panels::ArtSizes& artSizes() {
    static const panels::ArtSizes sizes = [] {
        panels::ArtSizes read{};
        for (int art = 0; art < panels::kArtCount; ++art) {
            const CBitmap bitmap(panels::kArtFiles[art]);
            read[art] = {bitmap.getWidth(), bitmap.getHeight()};
        }
        return read;
    }();
    return sizes;
}

panels::ColumnPlaces placeOf(std::int32_t tag, int layout) {
    for (const panels::Panel* panel :
         {panels::kFixedPanels[0], panels::kFixedPanels[1], panels::kFixedPanels[2], panels::layoutPanel(layout)})
        for (const panels::ColumnPlaces& place : panels::placesOf(*panel, artSizes()).columns)
            if (place.column.tag == tag) return place;
    ADD_FAILURE() << "no column of parameter " << tag << " in layout " << layout;
    return {};
}

CPoint probePoint(const panels::ColumnPlaces& place) {
    const CRect& c = place.control;
    const double x = place.column.kind == panels::Control::Knob ? (c.left + c.right) / 2 : c.left + c.getWidth() / 4;
    return CPoint(x, (c.top + c.bottom) / 2);
}

}  // namespace panel_places
