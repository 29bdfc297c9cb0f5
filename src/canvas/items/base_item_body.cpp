#include "canvas/items/base_item_body.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "canvas/base/canvas_style.h"
#include "canvas/base/context.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/field_list.h"
#include "canvas/items/item.h"
#include "canvas/items/item_geometry.h"
#include "canvas/links/join_link_adaptor.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

constexpr int titleMargin = 8;  // left and right of the title's text

bool hasMenuOrSelectButton(const LumoEvent& event) {
    return event.containsEventKey(LumoButtonLeft) || event.containsEventKey(LumoButtonRight);
}

}  // namespace

QBLumoBaseItemBody::QBLumoBaseItemBody()
    : m_delegate(std::make_unique<FieldCellDelegate>(this))
    , m_colors(itemColors(false))
    , m_selectedColors(itemColors(true)) {
    // The final size first: margins are kept from what the scroll view is put into.
    setRect(LumoRect({0, 0}, defaultTableBodySize()));
    buildFieldList();
    registerEventResponder(LumoMouseDown,
                           [this](LumoEvent event) { return responderMouseDown(event); });
    registerEventResponder(LumoMouseUp,
                           [this](LumoEvent event) { return responderMouseUp(event); });
    registerEventResponder(LumoMouseDoubleClick,
                           [this](LumoEvent event) { return responderMouseDoubleClick(event); });
}

QBLumoBaseItemBody::~QBLumoBaseItemBody() = default;

// ---- the list of fields ----

void QBLumoBaseItemBody::buildFieldList() {
    m_scroll = new QBLumoScrollView;
    addChild(m_scroll);
    const LumoSize size = getRect().size;
    m_scroll->setRect({fieldListInsets.left, fieldListInsets.top,
                       size.width - fieldListInsets.left - fieldListInsets.right,
                       size.height - fieldListInsets.top - fieldListInsets.bottom});
    m_scroll->setMarginConstraint(MarginAll);
    m_scroll->setEnableHorizontalScrollBar(false, true);
    m_scroll->setEnableVerticalScrollBar(true, true);

    m_list = new QBLumoListView;
    m_list->setRowHeight(fieldRowHeight);
    m_list->setCellDelegate(m_delegate.get());
    m_scroll->getContentObject()->addChild(m_list);
    m_overlay = new ScrollViewExtraActionReceiver(m_scroll, m_list);
    m_scroll->addChild(m_overlay);

    m_scroll->rectChanged()->addListener([this](QBLumoScrollView*, LumoRect) { syncList(); },
                                         guarantor());
    m_scroll->contentOffsetChangedTrigger()->addListener([this](QBLumoScrollView*) { syncList(); },
                                                         guarantor());
    m_list->rectChanged()->addListener(
        [this](QBLumoObject* list, LumoRect) {
            m_scroll->setContentHeight(lumoHeight(list->getRect()));
        },
        guarantor());
    syncList();
}

/// Brings list, scroll view and overlay together. Every step leaves what is right already as it is,
/// so that they do not feed each other for ever.
void QBLumoBaseItemBody::syncList() {
    m_overlay->setRect(m_scroll->getBoundingRect());
    m_list->autoResize();
    // The bar takes room by now, if the height needs one.
    const LumoRect shown = m_scroll->getContentRect();
    m_scroll->setContentWidth(lumoWidth(shown));
    LumoRect rect = m_list->getRect();
    rect.size.width = lumoWidth(shown);
    m_list->setRect(rect);
    m_list->setShownRect(
        {0, int32_t(m_scroll->getContentOffsetY()), lumoWidth(shown), lumoHeight(shown)});
    markAdaptors();
}

void QBLumoBaseItemBody::setFields(const std::vector<std::string>& fields) {
    if (fields == m_fields) return;
    QBLumoDiagram* const diagram = lumoDiagram();
    if (diagram && m_scroll->isVerticalScrollDisabled()) diagram->cancelLinkDrag();
    m_fields = fields;
    undockAdaptors();
    setRowsForFields();
    syncList();
    dockAdaptors();
    fieldsChanged();
    invalidate();
}

void QBLumoBaseItemBody::setRowsForFields() {
    std::vector<QBLumoListView::Row> rows;
    rows.reserve(m_fields.size() + 1);
    m_rowOf.clear();
    if (!m_fields.empty()) rows.push_back(FieldCellDelegate::wildcardRow(m_wildcardTicked));
    for (const std::string& field : m_fields) {
        m_rowOf.emplace(keyOf(field), rows.size());
        rows.push_back(FieldCellDelegate::fieldRow(field, isFieldSelected(field)));
    }
    m_list->setRowData(std::move(rows));
}

void QBLumoBaseItemBody::fieldsChanged() {}

void QBLumoBaseItemBody::scrollToRow(size_t row) {
    const LumoRect rect = m_list->rowRect(row);
    const long height = lumoHeight(m_scroll->getContentRect());
    const long offset = m_scroll->getContentOffsetY();
    if (lumoMinY(rect) < offset)
        m_scroll->setContentOffsetY(lumoMinY(rect));
    else if (lumoMaxY(rect) > offset + height)
        m_scroll->setContentOffsetY(lumoMaxY(rect) - height);
}

// ---- ticks ----

void QBLumoBaseItemBody::showTick(size_t row, bool ticked) {
    QBVariant& shown = m_list->rows()[row]["Selected"];
    if ((shown.toInt() != 0) == ticked) return;
    shown.setInt(ticked);
    m_list->updateRow(row);
}

void QBLumoBaseItemBody::showTicksOf(const std::string& name) {
    const auto [first, end] = m_rowOf.equal_range(keyOf(name));
    for (auto row = first; row != end; ++row)
        showTick(row->second, isFieldSelected(name));
}

void QBLumoBaseItemBody::setFieldSelected(const std::string& name, bool selected) {
    if (selected)
        m_ticked.insert(keyOf(name));
    else
        m_ticked.erase(keyOf(name));
    showTicksOf(name);
}

void QBLumoBaseItemBody::setWildcardSelected(bool selected) {
    m_wildcardTicked = selected;
    if (!m_fields.empty()) showTick(0, selected);
}

void QBLumoBaseItemBody::clearFieldSelection() {
    setFieldSelection({}, false);
}

void QBLumoBaseItemBody::setFieldSelection(const std::set<std::string>& names, bool wildcard) {
    std::set<std::string> keys;
    for (const std::string& name : names)
        keys.insert(keyOf(name));
    const std::set<std::string> before = std::exchange(m_ticked, keys);
    for (const std::string& key : before)
        showTicksOf(key);
    for (const std::string& key : keys)
        showTicksOf(key);
    setWildcardSelected(wildcard);
}

void QBLumoBaseItemBody::tickRowByUser(size_t row, bool selected) {
    if (row > m_fields.size() || m_fields.empty()) return;
    const std::string field = row == 0 ? std::string() : m_fields[row - 1];
    if (row == 0)
        setWildcardSelected(selected);
    else
        setFieldSelected(field, selected);
    // The host may take the item away: nothing is touched after this.
    if (QBLumoItem* const owner = item()) owner->fireFieldSelection(field, selected);
}

// ---- adaptors ----

QBLumoFieldJoinLinkAdaptor* QBLumoBaseItemBody::adaptorForField(const std::string& name) {
    QBLumoFieldJoinLinkAdaptor*& adaptor = m_adaptors[keyOf(name)];
    if (adaptor) return adaptor;
    adaptor = new QBLumoFieldJoinLinkAdaptor;
    adaptor->setFieldView(cellOf(name));
    addChild(adaptor);
    adaptor->setRequireToVerifyLayout(true);
    return adaptor;
}

QBLumoListView::Cell* QBLumoBaseItemBody::cellOf(const std::string& name) const {
    const auto [first, end] = m_rowOf.equal_range(keyOf(name));
    if (first == end) return nullptr;
    const auto topmost = std::min_element(
        first, end, [](const auto& a, const auto& b) { return a.second < b.second; });
    return m_list->cellAt(topmost->second);
}

void QBLumoBaseItemBody::undockAdaptors() {
    for (const auto& [name, adaptor] : m_adaptors)
        adaptor->setFieldView(nullptr);
}

void QBLumoBaseItemBody::dockAdaptors() {
    for (const auto& [name, adaptor] : m_adaptors)
        adaptor->setFieldView(cellOf(name));
    markAdaptors();
}

void QBLumoBaseItemBody::markAdaptors() {
    for (const auto& [name, adaptor] : m_adaptors)
        adaptor->setRequireToVerifyLayout(true);
}

// ---- title and look ----

void QBLumoBaseItemBody::setAlias(const std::string& alias) {
    if (alias == m_alias) return;
    m_alias = alias;
    invalidate();
}

LumoRect QBLumoBaseItemBody::titleRect() const {
    return {0, 0, lumoWidth(getRect()), Style::titleHeight};
}

LumoRect QBLumoBaseItemBody::titleTextRect() const {
    return {titleMargin, 0, std::max(lumoWidth(getRect()) - 2 * titleMargin, 0),
            Style::titleHeight};
}

bool QBLumoBaseItemBody::isTitleElided() const {
    return title().isElided(lumoWidth(titleTextRect()));
}

LumoRect QBLumoBaseItemBody::titleTextPlace() const {
    const LumoRect area = titleTextRect();
    const LumoDoubleSize text =
        lumoLayoutHelper().measureText(lineStart(titleText(), lumoWidth(area)), Style::itemFont);
    const int width = std::min(int(std::ceil(text.width)), lumoWidth(area));
    const int height = std::min(int(std::ceil(text.height)), lumoHeight(area));
    return {lumoMinX(area), lumoMinY(area) + (lumoHeight(area) - height) / 2, width, height};
}

const std::vector<double>& QBLumoBaseItemBody::borderDash() const {
    static const std::vector<double> solid;
    return solid;
}

void QBLumoBaseItemBody::themeChanged() {
    m_colors = itemColors(false);
    m_selectedColors = itemColors(true);
    for (QBLumoListView::Cell* cell : m_list->existingCells())
        m_list->updateRow(size_t(cell->rowIndex()));
    invalidate();
}

void QBLumoBaseItemBody::paint(LumoPaintConfig* config, LumoRect rect) {
    {
        const ItemColors& colors = isItemSelected() ? m_selectedColors : m_colors;
        LumoPainter painter(config, this);
        paintItemFrame(&painter, this, colors, borderDash());
        paintItemTitle(&painter, title(), titleTextRect(), colors.titleText);
    }
    QBLumoObject::paint(config, rect);
}

void QBLumoBaseItemBody::customLayout() {
    QBLumoObject::customLayout();
    markAdaptors();
}

// ---- what belongs to it, and presses ----

QBLumoItem* QBLumoBaseItemBody::item() const {
    return dynamic_cast<QBLumoItem*>(getParent());
}

QBLumoDiagram* QBLumoBaseItemBody::lumoDiagram() const {
    return dynamic_cast<QBLumoDiagram*>(diagram());
}

bool QBLumoBaseItemBody::isItemSelected() const {
    const QBLumoItem* const owner = item();
    return owner ? owner->getSelected() : getSelected();
}

LumoSize QBLumoBaseItemBody::minimumSize() const {
    return {30, 30};
}

bool QBLumoBaseItemBody::responderMouseDown(LumoEvent event) {
    QBLumoDiagram* const diagram = lumoDiagram();
    QBLumoItem* const owner = item();
    if (!diagram || !owner || !hasMenuOrSelectButton(event)) return true;
    event.point = translatePoint(event.point, owner);
    diagram->handleItemPressed(owner, event);
    return false;
}

bool QBLumoBaseItemBody::responderMouseUp(LumoEvent event) {
    QBLumoDiagram* const diagram = lumoDiagram();
    QBLumoItem* const owner = item();
    if (!diagram || !owner || diagram->isLinkDragActive()) return true;
    event.point = translatePoint(event.point, owner);
    diagram->handleBodyReleased(owner, event);
    return false;
}

bool QBLumoBaseItemBody::responderMouseDoubleClick(LumoEvent event) {
    QBLumoDiagram* const diagram = lumoDiagram();
    if (!diagram || !lumoPointInRect(event.point, titleRect())) return true;
    invalidate();
    // The host may go into a subquery and take this body away: nothing is touched after this.
    diagram->lumoContext()->itemBodyDoubleClicked(this);
    return false;
}

}  // namespace QB::DiagramLumo
