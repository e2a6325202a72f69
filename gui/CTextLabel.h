// One line of text over a back colour (or a background bitmap), with an
// optional one-pixel frame. Style bit kShadowText adds a soft drop shadow.
#pragma once

#include <string>

#include "CColor.h"
#include "CDrawContext.h"
#include "CFont.h"
#include "CView.h"

enum CTextLabelStyle : int32_t { kShadowText = 1 << 0 };

class CTextLabel : public CView {
public:
    CTextLabel(const CRect& size, const char* text = nullptr, CBitmap* background = nullptr, int32_t style = 0);

    void setText(const char* text);
    const char* getText() const { return text.c_str(); }

    void setFont(CFontRef newFont);
    CFontRef getFont() const { return font; }
    void setFontColor(const CColor& color);
    const CColor& getFontColor() const { return fontColor; }
    void setBackColor(const CColor& color);
    const CColor& getBackColor() const { return backColor; }
    void setFrameColor(const CColor& color);
    const CColor& getFrameColor() const { return frameColor; }
    void setHoriAlign(CHoriTxtAlign align);
    CHoriTxtAlign getHoriAlign() const { return horiAlign; }
    void setStyle(int32_t newStyle);
    int32_t getStyle() const { return style; }

    void draw(CDrawContext* context) override;

private:
    std::string text;
    CFontRef font = kNormalFontSmall;
    CColor fontColor = kWhiteCColor;
    CColor backColor = kBlackCColor;
    CColor frameColor = kBlackCColor;
    CHoriTxtAlign horiAlign = kCenterText;
    int32_t style;
};
