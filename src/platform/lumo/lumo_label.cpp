#include "platform/lumo/lumo_label.h"

#include "platform/lumo/lumo_paint.h"

LumoLabel::LumoLabel() = default;

void LumoLabel::setText(const std::string& text) {
    if (m_text == text) return;
    m_text = text;
    invalidate();
}

void LumoLabel::setFont(const LumoFont& font) {
    if (m_font == font) return;
    m_font = font;
    invalidate();
}

void LumoLabel::setColor(const LumoColor& color) {
    if (m_color == color) return;
    m_color = color;
    invalidate();
}

bool LumoLabel::isElided() const {
    return lumoLayoutHelper().measureText(m_text, m_font).width > getRect().size.width;
}

void LumoLabel::paint(LumoPaintConfig* config, LumoRect rect) {
    LumoPainter painter(config, this);
    painter.setColor(m_color);
    painter.drawText(m_text, m_font, LumoAlignLeft | LumoAlignElide,
                     LumoDoubleRect(getBoundingRect()));
    LumoObject::paint(config, rect);
}

bool LumoLabel::shouldTriggerMouseDown(LumoEvent) {
    return false;
}

bool LumoLabel::shouldTriggerMouseMove(LumoEvent) {
    return false;
}

bool LumoLabel::shouldTriggerMouseUp(LumoEvent) {
    return false;
}

bool LumoLabel::shouldTriggerMouseDoubleClick(LumoEvent) {
    return false;
}
