#include "canvas/items/field_list.h"

#include <algorithm>

#include "canvas/base/canvas_style.h"
#include "canvas/controls/check_box.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/item.h"
#include "platform/lumo/lumo_context.h"
#include "platform/lumo/lumo_control.h"
#include "platform/lumo/lumo_dispatch.h"
#include "platform/lumo/lumo_label.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_timer.h"

namespace QB::DiagramLumo {

namespace {

constexpr int boxSize = 16;
constexpr int gap = 6;
constexpr int scrollInterval = 30;  // milliseconds

using Cell = QBLumoListView::Cell;
using Row = QBLumoListView::Row;

bool isWildcard(const Row& row) {
    return row.at("IsWildCard").toInt() != 0;
}

/// The field of a row, or null for the wildcard.
const std::string* fieldOf(const Row& row) {
    const auto found = row.find("FieldName");
    return found == row.end() ? nullptr : &found->second.toString();
}

const Row& rowOf(const Cell* cell) {
    return cell->getListView()->getRowData(size_t(cell->rowIndex()));
}

template <typename T>
T* named(Cell* cell, const char* name) {
    return static_cast<T*>(cell->namedObjects().at(name));
}

template <typename T>
T* addNamed(Cell* cell, const char* name) {
    auto object = std::make_unique<T>();
    T* const added = object.get();
    cell->namedObjects()[name] = added;
    cell->addChild(object.release());
    return added;
}

}  // namespace

// ---- the delegate ----

QBLumoBaseItemBody::FieldCellDelegate::FieldCellDelegate(QBLumoBaseItemBody* body) : m_body(body) {}

Row QBLumoBaseItemBody::FieldCellDelegate::wildcardRow(bool selected) {
    return {{"IsWildCard", QBVariant(1)}, {"Selected", QBVariant(int(selected))}};
}

Row QBLumoBaseItemBody::FieldCellDelegate::fieldRow(const std::string& name, bool selected) {
    return {{"FieldName", QBVariant(name)},
            {"IsWildCard", QBVariant(0)},
            {"Selected", QBVariant(int(selected))}};
}

void QBLumoBaseItemBody::FieldCellDelegate::setupCell(QBLumoListView* list, Cell* cell) {
    addNamed<FieldCellBackground>(cell, "Background");
    auto* const box = addNamed<QBLumoCheckBox>(cell, "CheckBox");
    box->setRect({0, 0, boxSize, boxSize});
    // A cell stays at its row, whatever that shows.
    box->setChangeHandler([body = m_body, row = size_t(cell->rowIndex())](QBLumoCheckBox* changed) {
        body->tickRowByUser(row, changed->isChecked());
    });
    addNamed<LumoLabel>(cell, "Label");

    using Operation = bool (FieldCellDelegate::*)(QBLumoListView*, Cell*, LumoEvent);
    const auto respond = [this, list, cell](LumoEventResponderType type, Operation operation) {
        cell->registerEventResponder(type, [this, list, cell, operation](LumoEvent event) {
            return (this->*operation)(list, cell, event);
        });
    };
    respond(LumoMouseDragging, &FieldCellDelegate::cellDragging);
    respond(LumoMouseDrop, &FieldCellDelegate::cellDrop);
    respond(LumoDragEnter, &FieldCellDelegate::cellDragEnter);
    respond(LumoDragLeave, &FieldCellDelegate::cellDragLeave);
    respond(LumoMouseUp, &FieldCellDelegate::cellMouseUp);
}

void QBLumoBaseItemBody::FieldCellDelegate::updateCell(QBLumoListView*, const Row& row,
                                                       Cell* cell) {
    const std::string* const field = fieldOf(row);
    LumoFont font = Style::itemFont;
    font.bold = isWildcard(row);
    auto* const label = named<LumoLabel>(cell, "Label");
    label->setFont(font);
    label->setText(field ? *field : "*");
    label->setColor(themePalette().text);
    named<QBLumoCheckBox>(cell, "CheckBox")->setChecked(row.at("Selected").toInt() != 0);
}

void QBLumoBaseItemBody::FieldCellDelegate::layoutCell(QBLumoListView*, const Row& row,
                                                       Cell* cell) {
    const LumoRect bounds = cell->getBoundingRect();
    const int height = lumoHeight(bounds);
    named<LumoObject>(cell, "Background")->setRect(bounds);

    auto* const box = named<QBLumoCheckBox>(cell, "CheckBox");
    const LumoSize size = box->getRect().size;
    box->setRect({{gap, (height - size.height) / 2}, size});

    auto* const label = named<LumoLabel>(cell, "Label");
    LumoFont font = Style::itemFont;
    font.bold = isWildcard(row);
    const double lineHeight = lumoLayoutHelper().measureText(" ", font).height;
    const int x = lumoMaxX(box->getRect()) + gap;
    label->setRect({x, int((height - lineHeight) * 0.5), std::max(lumoWidth(bounds) - x - gap, 0),
                    int(lineHeight)});
}

void QBLumoBaseItemBody::FieldCellDelegate::paintCell(QBLumoListView*, const Row&, Cell* cell,
                                                      LumoPaintConfig*, LumoRect) {
    auto* const label = named<LumoLabel>(cell, "Label");
    if (label->getColor() != themePalette().text) label->setColor(themePalette().text);
}

bool QBLumoBaseItemBody::FieldCellDelegate::cellDragging(QBLumoListView*, Cell* cell,
                                                         LumoEvent event) {
    QBLumoDiagram* const diagram = m_body->lumoDiagram();
    if (!diagram || !event.containsEventKey(LumoButtonLeft)) return true;
    QBLumoScrollView* const view = m_body->scrollView();
    // A drag stays whose it was when it began, whatever keys come and go meanwhile.
    const bool isOurs = view->isVerticalScrollDisabled();
    const QBLumoItem* const item = m_body->item();
    const bool isItems = item && (item->isMoving() || item->isResizing());
    if (!isOurs && (isItems || !event.containsOnlyEventKeys({LumoButtonLeft}))) return true;
    // A link that was given up meanwhile does not begin anew.
    if (isOurs && !diagram->isLinkDragActive()) return false;
    view->setVerticalScrollDisabled(true);
    if (const std::string* const field = fieldOf(rowOf(cell)))
        diagram->beginLinkDrag(m_body->item(), *field, cell->translatePoint(event.point, diagram));
    return false;
}

bool QBLumoBaseItemBody::FieldCellDelegate::cellDrop(QBLumoListView*, Cell*, LumoEvent) {
    if (!m_body->scrollView()->isVerticalScrollDisabled()) return true;
    m_body->scrollView()->setVerticalScrollDisabled(false);
    // The host may take the item away when it is told of the link: nothing is touched after this.
    if (QBLumoDiagram* const diagram = m_body->lumoDiagram()) diagram->endLinkDrag();
    // The item may have seen the drag, too, before its key was let go.
    return true;
}

bool QBLumoBaseItemBody::FieldCellDelegate::cellDragEnter(QBLumoListView*, Cell* cell, LumoEvent) {
    QBLumoDiagram* const diagram = m_body->lumoDiagram();
    const std::string* const field = fieldOf(rowOf(cell));
    if (diagram && field) diagram->updateLinkDragTarget(m_body->item(), *field);
    return true;
}

bool QBLumoBaseItemBody::FieldCellDelegate::cellDragLeave(QBLumoListView*, Cell*, LumoEvent) {
    if (QBLumoDiagram* const diagram = m_body->lumoDiagram())
        diagram->updateLinkDragTarget(nullptr, "");
    return true;
}

bool QBLumoBaseItemBody::FieldCellDelegate::cellMouseUp(QBLumoListView*, Cell* cell,
                                                        LumoEvent event) {
    QBLumoDiagram* const diagram = m_body->lumoDiagram();
    if (!diagram || diagram->isLinkDragActive()) return true;
    event.point = cell->translatePoint(event.point, m_body);
    const std::string* const field = fieldOf(rowOf(cell));
    diagram->handleItemFieldPressed(m_body, field ? *field : std::string(), event);
    return true;
}

// ---- the background ----

QBLumoBaseItemBody::FieldCellBackground::FieldCellBackground() {
    setHighlightable(true);
    for (const auto type : {LumoMouseEnter, LumoMouseLeave, LumoDragEnter, LumoDragLeave})
        registerEventResponder(type, [this](LumoEvent) {
            invalidate();
            return true;
        });
}

LumoColor QBLumoBaseItemBody::FieldCellBackground::stateColor() const {
    const auto* const canvas = dynamic_cast<QBLumoDiagram*>(diagram());
    if (canvas && canvas->isLinkDragActive() && (isMousePressed() || isMouseOver())) {
        LumoColor shade = themePalette().text;
        shade.alpha = 0.05;
        return shade;
    }
    return getHighlighted() ? Style::hover : LumoColor();
}

void QBLumoBaseItemBody::FieldCellBackground::paint(LumoPaintConfig* config, LumoRect rect) {
    const LumoColor color = stateColor();
    if (color.alpha > 0.0) {
        LumoPainter painter(config, this);
        painter.setColor(color);
        painter.addRect(LumoDoubleRect(getBoundingRect()));
        painter.fill();
    }
    QBLumoObject::paint(config, rect);
}

// ---- scrolling while a link is drawn ----

QBLumoBaseItemBody::ScrollViewExtraActionReceiver::ScrollViewExtraActionReceiver(
    QBLumoScrollView* view, QBLumoListView* list)
    : m_view(view), m_list(list), m_timer(lumoCreateTimer()) {
    registerEventResponder(LumoDragOver,
                           [this](LumoEvent event) { return responderDragOver(event); });
    registerEventResponder(LumoDragLeave,
                           [this](LumoEvent event) { return responderDragLeave(event); });
}

QBLumoBaseItemBody::ScrollViewExtraActionReceiver::~ScrollViewExtraActionReceiver() = default;

bool QBLumoBaseItemBody::ScrollViewExtraActionReceiver::isScrolling() const {
    return m_timer->isRunning();
}

int QBLumoBaseItemBody::ScrollViewExtraActionReceiver::directionAt(LumoPoint point) const {
    const int width = lumoWidth(getRect());
    const int height = lumoHeight(getRect());
    const int zone = m_list->getRowHeight();
    if (lumoPointInRect(point, {0, 0, width, zone})) return -1;
    if (lumoPointInRect(point, {0, height - zone, width, zone})) return 1;
    return 0;
}

bool QBLumoBaseItemBody::ScrollViewExtraActionReceiver::responderDragOver(LumoEvent event) {
    const auto* const canvas = dynamic_cast<QBLumoDiagram*>(diagram());
    const int direction = directionAt(event.point);
    if (!canvas || !canvas->isLinkDragActive() || direction == 0) {
        m_timer->stop();
        return true;
    }
    if (m_timer->isRunning() && direction == m_direction) return true;
    m_direction = direction;
    m_timer->setTimerOwner(event.control);
    m_timer->setTimerFunc([this, direction](LumoTimer*) { scroll(direction); });
    m_timer->startOnce(scrollInterval);
    return true;
}

bool QBLumoBaseItemBody::ScrollViewExtraActionReceiver::responderDragLeave(LumoEvent) {
    m_timer->stop();
    return true;
}

void QBLumoBaseItemBody::ScrollViewExtraActionReceiver::scroll(int direction) {
    auto* const canvas = dynamic_cast<QBLumoDiagram*>(diagram());
    if (!canvas || !canvas->isLinkDragActive()) return;
    const long before = m_view->getContentOffsetY();
    m_view->setContentOffsetY(before + direction);
    if (m_view->getContentOffsetY() == before) return;  // at the end
    m_view->setRequireToVerifyLayout(true);
    m_view->layout();
    m_view->repaint();
    m_timer->startOnce(scrollInterval);
    // Another row lies under the still pointer now.
    if (const LumoControl* const control = canvas->getContext()->getControlWithDiagram(canvas))
        control->dispatcher()->pointerStaysWhileCanvasMoves();
}

}  // namespace QB::DiagramLumo
