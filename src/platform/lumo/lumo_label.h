#pragma once

#include "platform/lumo/lumo_object.h"

/// One line of text, cut by "…" where the rectangle ends. Ignores events.
class LumoLabel : public LumoObject {
public:
    LumoLabel();

    const std::string& getText() const { return m_text; }
    void setText(const std::string& text);
    const LumoFont& getFont() const { return m_font; }
    void setFont(const LumoFont& font);
    const LumoColor& getColor() const { return m_color; }
    void setColor(const LumoColor& color);
    /// True if the whole text does not fit.
    bool isElided() const;

    void paint(LumoPaintConfig* config, LumoRect rect) override;
    bool shouldTriggerMouseDown(LumoEvent event) override;
    bool shouldTriggerMouseMove(LumoEvent event) override;
    bool shouldTriggerMouseUp(LumoEvent event) override;
    bool shouldTriggerMouseDoubleClick(LumoEvent event) override;

private:
    std::string m_text;
    LumoFont m_font;
    LumoColor m_color;
};
