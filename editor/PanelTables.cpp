// The places of the panels' pieces. A row's first control, caption and
// value label are set down at fixed offsets with the sizes of the artwork;
// each further one moves right by the width of its kind plus 12, and across
// the gap between a row's two groups by the gap's own step. The settings
// strip is the exception: each of its columns stands at its own place.
#include "PanelTables.h"

namespace panels {
namespace {

struct RowStart {
    CRect control, caption, value;
    double controlStep, captionStep, valueStep;
};

// A rectangle is made at the origin with its size, then moved into place.
CRect placed(double width, double height, double left, double top) {
    CRect rect(0, 0, width, height);
    rect.offset(left, top);
    return rect;
}

RowStart rowStart(RowShape shape, const ArtSizes& sizes) {
    const double wrb = sizes[kRedBlueKnob].width;
    const double knobCell = sizes[kRedBlueKnob].height / kKnobFrames;
    const double wm = sizes[kMode2Switch].width;
    const double switchCell = sizes[kMode2Switch].height / 2;
    switch (shape) {
    case RowShape::Transforms:
        return {placed(wrb, knobCell, 24, 50),
                CRect(24, 32, 24 + wrb, 47),
                CRect(24, 117, 24 + wrb, 132),
                wrb + 12,
                wrb + 12,
                wrb + 12};
    case RowShape::Zoom: {
        // The method switch takes the size of one knob frame; it and its
        // caption step by the switch's own width.
        const double w4 = sizes[kMode4Switch].width;
        return {placed(wrb, knobCell, 414, 50),
                CRect(414, 32, 414 + wrb, 47),
                CRect(414, 117, 414 + wrb, 132),
                w4 + 12,
                w4 + 12,
                wrb + 12};
    }
    case RowShape::Settings: {
        const double w5 = sizes[kMode5Switch].width;
        const double cell5 = sizes[kMode5Switch].height / 5;
        return {placed(w5, cell5, 414, 188),
                CRect(414, 170, 414 + w5, 185),
                CRect(414, 255, 414 + w5, 270),
                w5 + 12,
                w5 + 12,
                w5 + 12};
    }
    case RowShape::Main:
        return {placed(wm, switchCell, 24, 326),
                CRect(24, 308, 24 + wrb, 323),
                CRect(24, 393, 24 + wrb, 408),
                wm + 12,
                wrb + 12,
                wrb + 12};
    case RowShape::SettingsStrip: break;  // see stripPlace
    case RowShape::UpperAfterSwitch:
    case RowShape::UpperFromEdge: {
        // Four columns start further left than two.
        const double left = shape == RowShape::UpperFromEdge ? 61 : wm + 73;
        return {placed(wm, switchCell, left, 188),
                CRect(left, 170, left + wm, 185),
                CRect(left, 255, left + wm, 270),
                wm + 12,
                wrb + 12,
                wrb + 12};
    }
    }
    return {};
}

// The step across a gap, the same in all three rows of pieces.
double gapStep(Gap gap, const ArtSizes& sizes) {
    const double wm = sizes[kMode2Switch].width;
    return gap == Gap::Ambience ? 2 * wm + 34 : wm + 22;
}

void placeRow(const Row& row, const ArtSizes& sizes, std::vector<ColumnPlaces>& out) {
    if (row.shape == RowShape::SettingsStrip) {
        forEachColumn(row, [&](const Column& column) {
            const PiecePlaces at = stripPlace(stripPlaceOf(column), sizes);
            out.push_back({column, at.control, at.caption, at.value});
        });
        return;
    }
    RowStart at = rowStart(row.shape, sizes);
    const double gap = gapStep(row.gap, sizes);
    const std::size_t firstCount = row.first.size();
    for (std::size_t i = 0; i < firstCount + row.second.size(); ++i) {
        if (i == firstCount) {
            at.control.offset(gap, 0);
            at.caption.offset(gap, 0);
            at.value.offset(gap, 0);
        } else if (i > 0) {
            at.control.offset(at.controlStep, 0);
            at.caption.offset(at.captionStep, 0);
            at.value.offset(at.valueStep, 0);
        }
        const Column& column = i < firstCount ? row.first[i] : row.second[i - firstCount];
        out.push_back({column, at.control, at.caption, at.value});
    }
}

CRect pictureAt(const Size& size, double left, double top) {
    return CRect(left, top, left + size.width, top + size.height);
}

}  // namespace

PanelPlaces placesOf(const Panel& panel, const ArtSizes& sizes) {
    PanelPlaces places;
    const Size& art = sizes[panel.art];
    switch (panel.place) {
    case Place::Transforms:
        places.background = pictureAt(art, 12, 12);
        places.title = CRect(12, 12, 12 + art.width, 32);
        break;
    case Place::Zoom:
        places.background = pictureAt(art, 402, 12);
        places.title = CRect(402, 12, 402 + art.width, 32);
        break;
    case Place::Settings:
        places.background = pictureAt(art, 402, 150);
        places.title = CRect(402, 150, 402 + art.width, 170);
        break;
    case Place::Name:
        // No title: the strip's columns have captions of their own.
        places.background = pictureAt(art, 12, 426);
        break;
    case Place::Stereo:
    case Place::Layout:
        // Stereo keeps its literal top; the others follow the picture's height.
        places.background = pictureAt(art, 12, panel.place == Place::Stereo ? 288 : 2 * art.height + 36);
        places.title = CRect(12, 288, 12 + art.width, 308);
        if (hasUpperRow(panel)) {
            const Size& art2 = sizes[kControls2Art];
            places.background2 = pictureAt(art2, 49, 150);
            places.title = CRect(49, 150, 49 + art2.width, 170);
        }
        break;
    }
    placeRow(panel.main, sizes, places.columns);
    if (hasUpperRow(panel)) placeRow(panel.upper, sizes, places.columns);
    return places;
}

CRect plotArea(const ArtSizes& sizes) { return pictureAt(sizes[kPlotArt], 264, 12); }
// Between the text lines (x 24..112) and the product's mark (from x 479):
// the switch under its caption with 1 pixel between them, the value label 2
// pixels under the switch; the places 6 pixels apart.
PiecePlaces stripPlace(int place, const ArtSizes& sizes) {
    const double width = sizes[kInputSwitch].width;
    const double cell = sizes[kInputSwitch].height / switchPositions(kInputSwitch);
    const double left = 120 + place * (width + 6);
    const CRect control = placed(width, cell, left, 444);
    return {control, CRect(left, 428, left + width, 443),
            CRect(left, control.bottom + 2, left + width, control.bottom + 17)};
}

NameLines nameLines() {
    return {CRect(24, 438, 112, 453), CRect(24, 463, 112, 478), CRect(24, 483, 112, 498)};
}

}  // namespace panels
