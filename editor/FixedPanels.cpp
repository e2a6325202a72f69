// The panels that stay from open to close: transforms (rotate, tilt,
// tumble) at the top left, the polar plot in the middle, zoom at the top
// right and the settings (layout, channel order) below it. Each walks its
// table (PanelTables.h); sizes come from the artwork, so other artwork moves
// the controls with it.
#include "CBitmap.h"
#include "CFrame.h"
#include "CTextLabel.h"
#include "MyEditor.h"
#include "polarPlot.h"

using namespace panels;

// The transforms and zoom panels keep their own reference to their
// background view until close; the settings panel hands its one to the frame.
void MyEditor::transformsDisplay(CFrame* newFrame) {
    transformsBitmap = new CBitmap("transforms.png");
    const PanelPlaces places = placesOf(kTransformsPanel, artSizes(kTransformsPanel, transformsBitmap));
    transformsBackground = makeBackground(transformsBitmap, places.background);
    addToFrame(newFrame, transformsBackground);
    addColumns(newFrame, kTransformsPanel, places);
    transformsBitmap->forget();
    transformsBitmap = nullptr;
}

void MyEditor::zoomDisplay(CFrame* newFrame) {
    zoomBitmap = new CBitmap("zoom.png");
    const PanelPlaces places = placesOf(kZoomPanel, artSizes(kZoomPanel, zoomBitmap));
    zoomBackground = makeBackground(zoomBitmap, places.background);
    addToFrame(newFrame, zoomBackground);
    addColumns(newFrame, kZoomPanel, places);
    zoomBitmap->forget();
    zoomBitmap = nullptr;
}

void MyEditor::plotDisplay(CFrame* newFrame) {
    plotBitmap = new CBitmap("plot.png");
    ArtSizes sizes{};
    sizes[kPlotArt] = {plotBitmap->getWidth(), plotBitmap->getHeight()};
    plotBackground = makeBackground(plotBitmap, plotArea(sizes));
    addToFrame(newFrame, plotBackground);
    // The plot draws over its grid picture and keeps its references until close.
    plot = new polarPlot(plotBackground->getViewSize());
    addToFrame(newFrame, plot);
}

void MyEditor::settingsDisplay(CFrame* newFrame) {
    // The settings panel shows the zoom panel's picture once more.
    settingsBitmap = new CBitmap("zoom.png");
    const PanelPlaces places = placesOf(kSettingsPanel, artSizes(kSettingsPanel, settingsBitmap));
    handToFrame(newFrame, makeBackground(settingsBitmap, places.background));
    addColumns(newFrame, kSettingsPanel, places);
    settingsBitmap->forget();
    settingsBitmap = nullptr;
}
