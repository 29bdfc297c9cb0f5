#include "canvas/controls/button.h"

#include "canvas/controls/press.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

constexpr LumoColor overlay{136, 136, 136, 0.3};

/// @p size in the middle of @p bounds.
LumoDoubleRect centred(LumoSize size, const LumoRect& bounds) {
    return lumoMakeDoubleRect((bounds.size.width - size.width) / 2.0,
                              (bounds.size.height - size.height) / 2.0, size.width, size.height);
}

}  // namespace

QBLumoButton::QBLumoButton() {
    makeClickable(
        this, [this](LumoEvent event) { return responderMouseDown(event); },
        [this](LumoEvent event) { return responderMouseUp(event); });
}

QBLumoButton::~QBLumoButton() = default;

void QBLumoButton::setImage(const std::string& name) {
    auto image = std::make_unique<LumoImage>();
    image->loadFromFile(name);
    setImage(image.release());
}

void QBLumoButton::setImage(LumoImage* image) {
    m_image.reset(image);
    takeImageSize();
}

void QBLumoButton::takeImageSize() {
    setRect(LumoRect(LumoPoint(), m_image ? m_image->getSize() : LumoSize()));
    invalidate();
}

void QBLumoButton::setClickHandler(std::function<void(QBLumoButton*)> handler) {
    m_clicked = std::move(handler);
}

void QBLumoButton::click() {
    // A copy: the handler may set another one, or destroy the button.
    const auto clicked = m_clicked;
    if (clicked) clicked(this);
}

void QBLumoButton::paint(LumoPaintConfig* config, LumoRect rect) {
    if (m_image) {
        LumoPainter painter(config, this);
        const LumoSize size = m_image->getSize();
        painter.drawImage(*m_image, 1.0, LumoDoubleRect(LumoRect(LumoPoint(), size)));
        if (isMouseOver() || isMousePressed()) {
            painter.setColor(overlay);
            painter.addRect(centred(size, getBoundingRect()));
            painter.fill();
        }
    }
    QBLumoObject::paint(config, rect);
}

bool QBLumoButton::responderMouseDown(LumoEvent event) {
    return respondToPress(this, event);
}

bool QBLumoButton::responderMouseUp(LumoEvent event) {
    return respondToRelease(this, event, [this] { click(); });
}

}  // namespace QB::DiagramLumo
