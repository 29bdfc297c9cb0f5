#include "popups/choice_tree.h"

#include <algorithm>
#include <utility>

#include "platform/tolk/tolk.h"

namespace QB {
namespace {

ChoiceRow noticeRow(const QString& text) {
    ChoiceRow row;
    row.text = text;
    return row;
}

/// A tooltip reads as HTML what looks like it, and names may look like anything.
QString toolTipOf(const ChoiceRow& row) {
    constexpr int longest = 2000;
    const QString& text = row.toolTip.isEmpty() ? row.text : row.toolTip;
    return QStringLiteral("<span>%1</span>").arg(text.left(longest).toHtmlEscaped());
}

}  // namespace

/// Answers from its row instead of from roles stored one by one, which a tree of 100,000 lines
/// would have half a million of.
class ChoiceTree::Item : public QTreeWidgetItem {
public:
    explicit Item(ChoiceRow row)
        : QTreeWidgetItem(QTreeWidgetItem::UserType), m_row(std::move(row)) {
        Qt::ItemFlags flags = Qt::ItemIsEnabled;
        flags.setFlag(Qt::ItemIsSelectable, m_row.canBeChosen());
        setFlags(flags);
    }

    QVariant data(int column, int role) const override {
        switch (role) {
            case Qt::DisplayRole:
                return m_row.text;
            case Qt::DecorationRole:
                return m_row.icon.isNull() ? QVariant() : QVariant(m_row.icon);
            case Qt::ToolTipRole:
                return toolTipOf(m_row);
            case Qt::FontRole:
                return m_row.kind == ChoiceKind::Notice ? QVariant(noticeFont()) : QVariant();
            case DataRole:
                return QVariant::fromValue(m_row.data);
            case KindRole:
                return int(m_row.kind);
            case ComponentIdRole:
                return qlonglong(m_row.componentId);
            case ComponentRole:
                return qulonglong(m_row.component);
            default:
                return QTreeWidgetItem::data(column, role);
        }
    }

    const ChoiceRow& row() const { return m_row; }
    void setRow(const ChoiceRow& row) {
        m_row = row;
        emitDataChanged();
    }

private:
    QFont noticeFont() const {
        QFont font = treeWidget()->font();
        font.setItalic(true);
        return font;
    }

    ChoiceRow m_row;
};

bool ChoiceRow::isSameChoice(const ChoiceRow& other) const {
    const auto& names = other.data;
    if (kind != other.kind || componentId != other.componentId) return false;
    if (kind == ChoiceKind::Object)
        return data.objectName == names.objectName &&
               data.catalogOrSchemaName == names.catalogOrSchemaName;
    return data.fieldName == names.fieldName;
}

// ---- nodes ----------------------------------------------------------------------------------

ChoiceTree::Update::Update(ChoiceTree& tree) : m_tree(tree) {
    if (m_tree.m_updates++ > 0) return;
    m_tree.m_wasBlocked = m_tree.m_tree->blockSignals(true);
    m_tree.m_tree->setUpdatesEnabled(false);
}

ChoiceTree::Update::~Update() {
    if (--m_tree.m_updates > 0) return;
    m_tree.selectChosen();
    m_tree.m_tree->setUpdatesEnabled(true);
    m_tree.m_tree->blockSignals(m_tree.m_wasBlocked);
}

void ChoiceTree::clear() {
    const Update update(*this);
    m_nodes.clear();
    m_noticeItem = nullptr;
    m_tree->clear();
    // Otherwise the focus alone would make the first line the current one.
    m_tree->setCurrentItem(nullptr);
}

ChoiceNode& ChoiceTree::add(ChoiceNode node) {
    const Update update(*this);
    node.item = new Item(node.heading);
    m_tree->insertTopLevelItem(int(m_nodes.size()), node.item);
    node.item->setExpanded(true);
    m_nodes.push_back(std::move(node));
    refresh(m_nodes.back());
    return m_nodes.back();
}

void ChoiceTree::refresh(ChoiceNode& node) {
    const Update update(*this);
    static_cast<Item*>(node.item)->setRow(node.heading);
    fill(node);
    const bool isHidden = !isShown(node);
    if (node.item->isHidden() != isHidden) node.item->setHidden(isHidden);
}

void ChoiceTree::setFilter(const QString& text) {
    if (text == m_filter) return;
    const Update update(*this);
    m_filter = text;
    for (ChoiceNode& node : m_nodes)
        refresh(node);
}

void ChoiceTree::setNotice(const QString& text) {
    const QString earlier = m_noticeItem ? m_noticeItem->text(0) : QString();
    if (text == earlier) return;
    const Update update(*this);
    delete std::exchange(m_noticeItem, nullptr);
    if (text.isEmpty()) return;
    m_noticeItem = new Item(noticeRow(text));
    m_tree->addTopLevelItem(m_noticeItem);
}

// ---- what shows -----------------------------------------------------------------------------

bool ChoiceTree::passes(const ChoiceNode& node, const ChoiceRow& row) const {
    if (passes(row.text)) return true;
    const bool mayNameBoth = m_filter.contains(QLatin1Char('.'));
    return mayNameBoth && passes(node.heading.text + QLatin1Char('.') + row.text);
}

/// What the filter leaves out has no item: hiding lines in place costs a view more than making them
/// anew.
void ChoiceTree::fill(const ChoiceNode& node) {
    const bool showsAll = !hasFilter() || passes(node.heading.text);
    const bool wasShut = node.item->childCount() > 0 && !node.item->isExpanded();
    qDeleteAll(node.item->takeChildren());
    QList<QTreeWidgetItem*> items;
    for (const ChoiceRow& row : node.rows) {
        if (showsAll || passes(node, row)) items.append(new Item(row));
    }
    if (node.isLoading) items.append(new Item(noticeRow(Tolk::localize(Tolk::TextLoading))));
    node.item->addChildren(items);
    if (!wasShut) node.item->setExpanded(true);
}

bool ChoiceTree::isShown(const ChoiceNode& node) const {
    if (node.isHiddenWhenEmpty && node.rows.empty()) return false;
    return !hasFilter() || node.item->childCount() > 0 || passes(node.heading.text);
}

bool ChoiceTree::isEmpty() const {
    return std::all_of(m_nodes.begin(), m_nodes.end(),
                       [](const ChoiceNode& node) { return node.item->isHidden(); });
}

// ---- what is chosen -------------------------------------------------------------------------

void ChoiceTree::choose(const std::optional<ChoiceRow>& row) {
    const Update update(*this);
    m_chosen = row;
}

void ChoiceTree::noteSelection() {
    const ChoiceRow* const row = selectedRow();
    m_chosen = row ? std::optional<ChoiceRow>(*row) : std::nullopt;
}

const ChoiceRow* ChoiceTree::selectedRow() const {
    const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
    return selected.isEmpty() ? nullptr : rowOf(selected.first());
}

const ChoiceRow* ChoiceTree::rowOf(const QTreeWidgetItem* item) {
    const auto* ours = dynamic_cast<const Item*>(item);
    return ours ? &ours->row() : nullptr;
}

QTreeWidgetItem* ChoiceTree::find(const std::function<bool(const ChoiceRow&)>& isWanted) const {
    for (const ChoiceNode& node : m_nodes) {
        if (node.item->isHidden()) continue;
        if (isWanted(node.heading)) return node.item;
        for (int i = 0; i < node.item->childCount(); ++i) {
            if (isWanted(*rowOf(node.item->child(i)))) return node.item->child(i);
        }
    }
    return nullptr;
}

QTreeWidgetItem* ChoiceTree::firstChoice() const {
    return find([](const ChoiceRow& row) { return row.canBeChosen(); });
}

void ChoiceTree::selectChosen() {
    const auto isChosen = [this](const ChoiceRow& row) {
        return row.canBeChosen() && row.isSameChoice(*m_chosen);
    };
    QTreeWidgetItem* const item = m_chosen ? find(isChosen) : nullptr;
    const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
    // A view that loses its selected line selects the next one.
    const bool isRight = item ? selected == QList<QTreeWidgetItem*>{item} : selected.isEmpty();
    if (isRight) return;
    m_tree->setCurrentItem(item);
    scrollToSelected();
}

void ChoiceTree::scrollToSelected() {
    const QList<QTreeWidgetItem*> selected = m_tree->selectedItems();
    if (!selected.isEmpty())
        m_tree->scrollToItem(selected.first(), QAbstractItemView::PositionAtCenter);
}

}  // namespace QB
