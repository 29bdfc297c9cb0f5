#include "canvas/controls/check_box.h"

#include "canvas/base/canvas_style.h"
#include "canvas/controls/press.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

constexpr LumoColor emptyFill{255, 255, 255, 0.3};
constexpr LumoColor overlay{136, 136, 136, 0.3};
constexpr LumoColor border{148, 148, 148, 1.0};
constexpr int side = 14;
constexpr double corner = 2;

LumoRect boxIn(const LumoRect& bounds) {
    return {(bounds.size.width - side) / 2, (bounds.size.height - side) / 2, side, side};
}

void paintMark(LumoPainter* painter, const LumoRect& box) {
    const int w = box.size.width;
    const int h = box.size.height;
    painter->save();
    painter->translate(box.origin.x, box.origin.y);
    painter->setColor(themePalette().canvas);
    painter->addLine(w / 6, h / 2, w * 5 / 12, h * 10 / 12);
    painter->lineTo(w * 10 / 12, h / 4);
    painter->setLineWidth(1.5);
    painter->stroke();
    painter->restore();
}

}  // namespace

QBLumoCheckBox::QBLumoCheckBox() {
    makeClickable(
        this, [this](LumoEvent event) { return responderMouseDown(event); },
        [this](LumoEvent event) { return responderMouseUp(event); });
}

void QBLumoCheckBox::setChecked(bool checked) {
    if (checked == m_checked) return;
    m_checked = checked;
    invalidate();
}

void QBLumoCheckBox::setCheckedByUser(bool checked) {
    if (checked == m_checked) return;
    setChecked(checked);
    // A copy: the handler may set another one, or destroy the box.
    const auto changed = m_changed;
    if (changed) changed(this);
}

void QBLumoCheckBox::setChangeHandler(std::function<void(QBLumoCheckBox*)> handler) {
    m_changed = std::move(handler);
}

void QBLumoCheckBox::paint(LumoPaintConfig* config, LumoRect rect) {
    const LumoRect box = boxIn(getBoundingRect());
    LumoPainter painter(config, this);
    // The mark has the colour of the canvas: on the pale fill alone nobody would see it.
    painter.setColor(m_checked ? Style::symbolAccent : emptyFill);
    painter.addRoundedRect(LumoDoubleRect(box), corner);
    painter.fillPreserve();
    if (isMouseOver() || isMousePressed()) {
        painter.setColor(overlay);
        painter.fillPreserve();
    }
    painter.clearPath();
    painter.setColor(border);
    painter.addRoundedRect(
        lumoMakeDoubleRect(box.origin.x + 0.5, box.origin.y + 0.5, side - 1, side - 1), corner);
    painter.stroke();
    if (m_checked) paintMark(&painter, box);
    QBLumoObject::paint(config, rect);
}

bool QBLumoCheckBox::responderMouseDown(LumoEvent event) {
    return respondToPress(this, event);
}

bool QBLumoCheckBox::responderMouseUp(LumoEvent event) {
    return respondToRelease(this, event, [this] { setCheckedByUser(!m_checked); });
}

}  // namespace QB::DiagramLumo
