#include "canvas/links/join_link_adaptor.h"

#include <algorithm>
#include <vector>

#include "canvas/base/canvas_style.h"
#include "canvas/controls/list_view.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_virtual_scroll_view.h"

namespace QB::DiagramLumo {
namespace {

constexpr int reach = 3;  // beyond the body, and above and below the middle of a row
constexpr int dirtyMargin = 4;
constexpr int adaptorHeight = 2 * reach;
constexpr double markerLineWidth = 2.0;
constexpr double haloWidth = 6.0;

bool isSelected(const QBLumoJoinLink* link) {
    return link->getSelected();
}

}  // namespace

int relationModeOf(const LumoObject* object) {
    const auto* const diagram = dynamic_cast<const QBLumoDiagram*>(object->diagram());
    return diagram ? diagram->getRelationMode() : 0;
}

bool QBLumoJoinLinkAdaptor::LinkOrder::operator()(const QBLumoJoinLink* a,
                                                  const QBLumoJoinLink* b) const {
    return a->serial() < b->serial();
}

QBLumoJoinLinkAdaptor::~QBLumoJoinLinkAdaptor() {
    leaveLinks();
}

void QBLumoJoinLinkAdaptor::removedFromDiagram() {
    leaveLinks();
    QBLumoObject::removedFromDiagram();
}

/// Links detach themselves while this walks, so it walks a copy; and nothing is asked of this
/// object meanwhile, which may be half destroyed.
void QBLumoJoinLinkAdaptor::leaveLinks() {
    const std::map<QBLumoJoinLink*, Sides, LinkOrder> left = std::move(m_links);
    m_links.clear();
    for (const auto& entry : left)
        entry.first->removeAdaptorPairs([this](const QBLumoJoinLink::AdaptorPair& pair) {
            return pair.first == this || pair.second == this;
        });
}

void QBLumoJoinLinkAdaptor::attachLink(QBLumoJoinLink* link) {
    m_links.emplace(link, Sides());
}

void QBLumoJoinLinkAdaptor::detachLink(QBLumoJoinLink* link) {
    if (m_links.erase(link) > 0) invalidate();
}

void QBLumoJoinLinkAdaptor::setLinkSides(QBLumoJoinLink* link, bool left, bool right) {
    const auto found = m_links.find(link);
    if (found == m_links.end()) return;
    if (found->second.left == left && found->second.right == right) return;
    found->second = {left, right};
    invalidate();
}

LumoPoint QBLumoJoinLinkAdaptor::leftConnectionPoint() const {
    return {0, getBoundingRect().size.height / 2};
}

LumoPoint QBLumoJoinLinkAdaptor::rightConnectionPoint() const {
    const LumoSize size = getBoundingRect().size;
    return {size.width, size.height / 2};
}

bool QBLumoJoinLinkAdaptor::isShownInMode() const {
    const int mode = relationModeOf(this);
    return mode == 0 || isVisibleInRelationMode(mode);
}

bool QBLumoJoinLinkAdaptor::getVisible() const {
    return QBLumoObject::getVisible() && isShownInMode();
}

bool QBLumoJoinLinkAdaptor::getSelectable() const {
    return QBLumoObject::getSelectable() && isShownInMode();
}

LumoRect QBLumoJoinLinkAdaptor::customDirtyRect() const {
    return lumoInflateRect(getBoundingRect(), dirtyMargin, dirtyMargin);
}

std::vector<QBLumoJoinLink*> QBLumoJoinLinkAdaptor::links() const {
    std::vector<QBLumoJoinLink*> all;
    for (const auto& entry : m_links)
        all.push_back(entry.first);
    return all;
}

std::pair<bool, bool> QBLumoJoinLinkAdaptor::usedSides() const {
    std::pair<bool, bool> used;
    for (const auto& entry : m_links) {
        used.first = used.first || entry.second.left;
        used.second = used.second || entry.second.right;
    }
    return used;
}

void QBLumoJoinLinkAdaptor::requireLayoutMarked() {
    QBLumoObject::requireLayoutMarked();
    for (QBLumoJoinLink* link : links())
        link->setRequireToVerifyLayout(true, true);
}

void QBLumoJoinLinkAdaptor::paint(LumoPaintConfig* config, LumoRect rect) {
    paintMarker(config, true);
    paintMarker(config, false);
    QBLumoObject::paint(config, rect);
}

void QBLumoJoinLinkAdaptor::paintMarker(LumoPaintConfig* config, bool isLeft) const {
    bool isUsed = false;
    bool isLit = false;
    for (const auto& entry : m_links) {
        if (!(isLeft ? entry.second.left : entry.second.right)) continue;
        isUsed = true;
        isLit = isLit || isSelected(entry.first);
    }
    if (!isUsed) return;

    const LumoSize size = getBoundingRect().size;
    const LumoPoint place{isLeft ? reach : size.width - reach, size.height / 2};
    LumoPainter painter(config, this);
    if (isLit) {
        painter.setLineJoin(LumoJoinMiter);
        painter.setColor(Style::accentHalf);
        painter.setLineWidth(haloWidth);
        addMarker(&painter, place, isLeft);
        painter.stroke();
    }
    painter.setColor(themePalette().itemBackground);
    addMarker(&painter, place, isLeft);
    painter.fillPreserve();
    painter.setLineJoin(LumoJoinRound);
    painter.setLineCap(LumoCapRound);
    painter.setColor(Style::linkGrey);
    painter.setLineWidth(markerLineWidth);
    painter.stroke();
}

// ---- table relations ----

bool QBLumoItemJoinLinkAdaptor::isVisibleInRelationMode(int mode) const {
    return mode == TableRelation;
}

/// A disc: half of it over the edge of the body, half outside.
void QBLumoItemJoinLinkAdaptor::addMarker(LumoPainter* painter, LumoPoint point, bool) const {
    painter->addArc(point.x, point.y, reach, 0, 360);
}

// ---- field relations ----

bool QBLumoFieldJoinLinkAdaptor::isVisibleInRelationMode(int mode) const {
    return mode == FieldRelation;
}

/// An arrow into the body.
void QBLumoFieldJoinLinkAdaptor::addMarker(LumoPainter* painter, LumoPoint point,
                                           bool isLeft) const {
    const double inwards = isLeft ? 1 : -1;
    const double outside = point.x - inwards * reach;
    painter->moveTo(outside, point.y - reach);
    painter->lineTo(point.x, point.y - reach);
    painter->lineTo(point.x + inwards * 2 * reach, point.y);
    painter->lineTo(point.x, point.y + reach);
    painter->lineTo(outside, point.y + reach);
    painter->closePath();
}

const std::string* QBLumoFieldJoinLinkAdaptor::fieldName() const {
    const auto* const cell = dynamic_cast<const QBLumoListView::Cell*>(m_fieldView);
    if (!cell || cell->rowIndex() < 0) return nullptr;
    const QBLumoListView::Row& row = cell->getListView()->getRowData(size_t(cell->rowIndex()));
    const auto name = row.find("FieldName");
    return name == row.end() ? nullptr : &name->second.toString();
}

void QBLumoFieldJoinLinkAdaptor::setFieldView(LumoObject* view) {
    if (m_fieldView == view) return;
    m_fieldView = view;
    setRequireToVerifyLayout(true);
}

void QBLumoFieldJoinLinkAdaptor::customLayout() {
    QBLumoObject::customLayout();
    if (!getParent()) return setRect(LumoRect());
    const LumoRect body = bodyRect();
    setRect({body.origin.x - reach, dockedY(), body.size.width + 2 * reach, adaptorHeight});
}

/// What the adaptor spans, in the space of its parent: the body of the item; outside of an item the
/// row that it docks at, or the parent.
LumoRect QBLumoFieldJoinLinkAdaptor::bodyRect() const {
    const LumoObject* const parent = getParent();
    const auto* const item = findParent<QBLumoItem>();
    if (item && item->getBody())
        return item->getBody()->translateRect(item->getBody()->getBoundingRect(), parent);
    if (m_fieldView) return m_fieldView->translateRect(m_fieldView->getBoundingRect(), parent);
    return parent->getBoundingRect();
}

int32_t QBLumoFieldJoinLinkAdaptor::dockedY() const {
    if (!m_fieldView) return bodyRect().origin.y + Style::titleHeight / 2 - reach;
    const LumoRect row = m_fieldView->translateRect(m_fieldView->getBoundingRect(), getParent());
    const auto y = int32_t(row.origin.y + row.size.height / 2.0 - reach);
    const auto* const scroll = m_fieldView->findParent<LumoVirtualScrollView>();
    if (!scroll) return y;
    const LumoRect list = scroll->translateRect(scroll->getBoundingRect(), getParent());
    return std::clamp(y, lumoMinY(list) - reach, lumoMaxY(list) - reach);
}

}  // namespace QB::DiagramLumo
