#include "CTextLabel.h"

#include "CBitmap.h"

CTextLabel::CTextLabel(const CRect& size, const char* text, CBitmap* background, int32_t style)
    : CView(size), text(text ? text : ""), style(style) {
    if (background) setBackground(background);
}

void CTextLabel::setText(const char* newText) {
    std::string next = newText ? newText : "";
    if (next == text) return;
    text = std::move(next);
    setDirty(true);
}

void CTextLabel::setFont(CFontRef newFont) {
    font = newFont ? newFont : kNormalFontSmall;
    setDirty(true);
}
void CTextLabel::setFontColor(const CColor& color) {
    fontColor = color;
    setDirty(true);
}
void CTextLabel::setBackColor(const CColor& color) {
    backColor = color;
    setDirty(true);
}
void CTextLabel::setFrameColor(const CColor& color) {
    frameColor = color;
    setDirty(true);
}
void CTextLabel::setHoriAlign(CHoriTxtAlign align) {
    horiAlign = align;
    setDirty(true);
}
void CTextLabel::setStyle(int32_t newStyle) {
    style = newStyle;
    setDirty(true);
}

void CTextLabel::draw(CDrawContext* context) {
    if (background) {
        background->draw(context, size);
    } else if (backColor.alpha) {
        context->setFillColor(backColor);
        context->drawRect(size, kDrawFilled);
    }
    if (frameColor.alpha) {
        context->setFrameColor(frameColor);
        context->setLineWidth(1.0);
        context->drawRect(size, kDrawStroked);
    }
    if (!text.empty()) {
        context->setFont(font);
        // Inset so left- and right-aligned text does not touch the frame.
        CRect textRect = size;
        if (horiAlign != kCenterText) textRect.inset(2, 0);
        if (style & kShadowText) {
            CRect shadow = textRect;
            shadow.offset(1, 1);
            context->setFontColor(CColor(0, 0, 0, fontColor.alpha / 2));
            context->drawString(text.c_str(), shadow, horiAlign);
        }
        context->setFontColor(fontColor);
        context->drawString(text.c_str(), textRect, horiAlign);
    }
    setDirty(false);
}
