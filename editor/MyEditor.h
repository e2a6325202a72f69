// The plug-in's editor: a 578 x 502 frame holding the transforms, zoom,
// plot, settings and name panels (the name panel with the strip of the
// track's settings and the editor's size switch), and the panel of the
// current speaker layout, rebuilt whenever the layout changes. On screen
// the frame is drawn at a scale (EditorScale.cpp). Controls carry the parameter index as their
// tag; a user's change goes to the effect as automation and comes back
// through setParameter, which also updates the polar plot.
//
// The views belong to the thread that opened the editor. setParameter from
// any other thread is queued without lock or allocation and applied in
// order at the next idle.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

#include "AEffGUIEditor.h"
#include "CColor.h"
#include "CControlListener.h"
#include "CRect.h"
#include "Desktop.h"
#include "EditorLink.h"
#include "PanelTables.h"
#include "PendingChanges.h"
#include "SorvaneProtocol.h"

class CAnimKnob;
class CBitmap;
class CControl;
class CHorizontalSwitch;
class CTextLabel;
class CView;
class polarPlot;

class MyEditor : public AEffGUIEditor, public CControlListener {
public:
    // The editor talks to the effect only through `link`, which outlives it.
    explicit MyEditor(sorvane::EditorLink* link);
    ~MyEditor() override;

    bool open(void* ptr) override;
    void close() override;
    // The window's size at the editor's scale.
    bool getRect(ERect** rect) override;
    void setParameter(VstInt32 index, float value) override;
    void valueChanged(CControl* control) override;
    // A user's gesture on a control, bracketed for the host; the size switch
    // is no parameter, so the host hears nothing of it.
    bool beginEdit(int32_t index) override { return sorvane::isParameter(index) ? link->beginEdit(index) : true; }
    bool endEdit(int32_t index) override { return sorvane::isParameter(index) ? link->endEdit(index) : true; }

    // Fills text from the effect and shows it in the value label of index.
    void getParameterDisplay(VstInt32 index, char* text);
    // Tears down the previous layout's panel and builds the current one.
    void modeChange();

    void nameDisplay(CFrame* newFrame);
    void suspendDisplay();

    void transformsDisplay(CFrame* newFrame);
    void zoomDisplay(CFrame* newFrame);
    void plotDisplay(CFrame* newFrame);
    void settingsDisplay(CFrame* newFrame);
    void scaleDisplay(CFrame* newFrame);

    void stereoDisplay();
    void twooneDisplay();
    void fourDisplay();
    void fiveDisplay();
    void fiveoneDisplay();
    void hellerDisplay();

    void clearStereo();
    void clearTwoOne();
    void clearFour();
    void clearFive();
    void clearFiveOne();

protected:
    // Applies what other threads queued before the frame handles its events.
    void doIdleStuff() override;

private:
    static constexpr int kNumControls = kNumParams;
    static constexpr int kNumCaptions = 13;

    // The synchronous path: what setParameter does on the editor's thread.
    void applyParameter(VstInt32 index, float value);
    bool onEditorThread() const;
    void applyQueued();
    void loadFromEffect(VstInt32 index);
    // The editor's scale (EditorScale.cpp): what its sources make it now,
    // the host's rectangle for a scale, the size switch's position and text,
    // a user's choice, the frame and the host's window following a change.
    double currentScale() const;
    void sizeRectFor(double scale);
    void showScaleChoice();
    void scaleChosen(float value);
    void applyScale();
    void followScaleSources();

    // The value label standing for a parameter index, null for none.
    CTextLabel* valueLabelOf(VstInt32 index) const;

    // Pieces of the panels (see PanelPieces.cpp).
    void addToFrame(CFrame* target, CView* view);
    void handToFrame(CFrame* target, CView* view);
    // Takes a view out of the frame (which releases it) and forgets the field,
    // so no field ever points at a released view.
    template <class View>
    void removeFromFrame(View*& view) {
        dropView(view);
        view = nullptr;
    }
    void dropView(CView* view);
    CAnimKnob* makeKnob(int32_t tag, CBitmap* strip, CBitmap* heightStrip);
    CHorizontalSwitch* makeSwitch(int32_t tag, CBitmap* strip, int positions);
    CTextLabel* makeCaption(const char* text);
    CTextLabel* makeTitle(const char* text, const CRect& where);
    CTextLabel* makeValueLabel();
    CView* makeBackground(CBitmap* bitmap, const CRect& where);

    // The walk over a panel's table (see PanelWalk.cpp): where each column's
    // pieces are kept, the sizes its places follow, building and clearing.
    struct ColumnFields {
        CAnimKnob* MyEditor::*knob;
        CHorizontalSwitch* MyEditor::*toggle;
        CTextLabel* MyEditor::*valueLabel;
    };
    // By parameter index, which is the column's tag.
    static const ColumnFields& fieldsOf(int32_t tag);
    CBitmap* stripOf(panels::Art strip) const;
    panels::ArtSizes artSizes(const panels::Panel& panel, const CBitmap* art, const CBitmap* art2 = nullptr) const;
    void addColumns(CFrame* target, const panels::Panel& panel, const panels::PanelPlaces& places);
    void buildLayoutPanel(const panels::Panel& panel);
    void clearLayoutPanel(const panels::Panel& panel);
    void clearControl(const panels::Column& column);

    sorvane::EditorLink* link;
    CControl* paramControl[kNumControls] = {};
    char displayText[64] = {};

    CAnimKnob* rotateKnob = nullptr;
    CAnimKnob* tiltKnob = nullptr;
    CAnimKnob* tumbleKnob = nullptr;
    CHorizontalSwitch* zoomMethodSwitch = nullptr;
    CAnimKnob* zoomKnob = nullptr;
    CAnimKnob* widthKnob = nullptr;
    CAnimKnob* patternKnob = nullptr;
    CHorizontalSwitch* modeSwitch = nullptr;
    CAnimKnob* rearVerbKnob = nullptr;
    CAnimKnob* hiVerbKnob = nullptr;
    CAnimKnob* ctrPatternKnob = nullptr;
    CAnimKnob* ctrGainKnob = nullptr;
    CAnimKnob* subGainKnob = nullptr;
    CAnimKnob* xOverKnob = nullptr;
    CHorizontalSwitch* surModeSwitch = nullptr;
    CAnimKnob* surPatternKnob = nullptr;
    CAnimKnob* surWidthKnob = nullptr;
    CAnimKnob* surGainKnob = nullptr;
    CHorizontalSwitch* decModeSwitch = nullptr;
    CHorizontalSwitch* chOrderSwitch = nullptr;
    CHorizontalSwitch* inputSwitch = nullptr;
    CHorizontalSwitch* smoothingSwitch = nullptr;
    CHorizontalSwitch* outputSwitch = nullptr;
    CHorizontalSwitch* trackingSwitch = nullptr;
    CHorizontalSwitch* scaleSwitch = nullptr;

    CView* panelBackground = nullptr;
    CView* panelBackground2 = nullptr;
    CTextLabel* captionLabels[kNumCaptions] = {};
    CTextLabel* modeValueLabel = nullptr;
    CTextLabel* widthValueLabel = nullptr;
    CTextLabel* patternValueLabel = nullptr;
    CTextLabel* rotateValueLabel = nullptr;
    CTextLabel* tiltValueLabel = nullptr;
    CTextLabel* tumbleValueLabel = nullptr;
    CTextLabel* zoomValueLabel = nullptr;
    CTextLabel* zoomMethodValueLabel = nullptr;
    CTextLabel* rearVerbValueLabel = nullptr;
    CTextLabel* hiVerbValueLabel = nullptr;
    CTextLabel* surModeValueLabel = nullptr;
    CTextLabel* surWidthValueLabel = nullptr;
    CTextLabel* surPatternValueLabel = nullptr;
    CTextLabel* surGainValueLabel = nullptr;
    CTextLabel* ctrPatternValueLabel = nullptr;
    CTextLabel* ctrGainValueLabel = nullptr;
    CTextLabel* subGainValueLabel = nullptr;
    CTextLabel* xOverValueLabel = nullptr;
    CTextLabel* decModeValueLabel = nullptr;
    CTextLabel* chOrderValueLabel = nullptr;
    CTextLabel* inputValueLabel = nullptr;
    CTextLabel* smoothingValueLabel = nullptr;
    CTextLabel* outputValueLabel = nullptr;
    CTextLabel* trackingValueLabel = nullptr;  // also the tracker's port, followed at each idle
    CTextLabel* scaleValueLabel = nullptr;
    CTextLabel* panelTitle = nullptr;
    polarPlot* plot = nullptr;

    CRect frameSize;
    CRect valueRect;
    CRect captionRect;
    CRect controlRect;

    CColor whiteColor;
    CColor greyColor;
    CColor blueColor;
    CColor clearColor;

    CBitmap* knob360Bitmap = nullptr;
    CBitmap* redKnobBitmap = nullptr;
    CBitmap* blueKnobBitmap = nullptr;
    CBitmap* redBlueKnobBitmap = nullptr;
    CBitmap* blueRedKnobBitmap = nullptr;
    CBitmap* mode2KnobBitmap = nullptr;
    CBitmap* mode2bKnobBitmap = nullptr;
    CBitmap* mode4KnobBitmap = nullptr;
    CBitmap* mode5KnobBitmap = nullptr;
    CBitmap* inputSwitchBitmap = nullptr;
    CBitmap* onOffSwitchBitmap = nullptr;
    CBitmap* scaleSwitchBitmap = nullptr;
    CBitmap* transformsBitmap = nullptr;
    CBitmap* zoomBitmap = nullptr;
    CBitmap* panelBitmap = nullptr;
    CBitmap* panelBitmap2 = nullptr;
    CBitmap* nameBitmap = nullptr;
    CBitmap* plotBitmap = nullptr;
    CBitmap* settingsBitmap = nullptr;

    CTextLabel* suspendedLabel = nullptr;
    CTextLabel* hellerLabel1 = nullptr;
    CTextLabel* hellerLabel2 = nullptr;

    // Views whose builder keeps its own reference until close.
    CView* transformsBackground = nullptr;
    CView* zoomBackground = nullptr;
    CView* plotBackground = nullptr;

    // Cross-thread delivery: the thread that opened the editor, whether it
    // takes changes, and what other threads sent meanwhile.
    std::atomic<std::thread::id> editorThread{};
    std::atomic<bool> accepting{false};
    PendingChanges pending;
    static constexpr int kDecoderTypeSlot = kNumParams;  // the 5.x decoder type's slot in `pending`
    static_assert(kDecoderTypeSlot < PendingChanges::kSlots);
    std::uint64_t appliedRunState = 0;  // editor thread: the suspend or resume shown last

    // The desktop the editor opened on, read at getRect and open; the
    // host's factor and the user's choice as the editor last followed them.
    Desktop desktop;
    double lastHostFactor = 0.0;
    int lastChoice = 0;
};
