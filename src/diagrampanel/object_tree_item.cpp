#include "diagrampanel/object_tree_item.h"

#include <utility>

#include "widgets/identifier_icons.h"

namespace QB {

void ObjectTreeIcons::setDatabaseType(DatabaseType type) {
    for (std::size_t i = 0; i < m_icons.size(); ++i)
        m_icons[i] = iconForIdentifierType(static_cast<IdentifierType>(i), type);
}

QIcon ObjectTreeIcons::icon(IdentifierType type) const {
    const auto index = static_cast<std::size_t>(type);
    return index < m_icons.size() ? m_icons[index] : QIcon();
}

ObjectTreeItem::ObjectTreeItem() = default;

ObjectTreeItem::ObjectTreeItem(const ObjectTreeIcons& icons,
                               const QBIdentifierCandidateSnapshot& record, ObjectTreeItem& parent)
    : QTreeWidgetItem(UserType)
    , m_icons(&icons)
    , m_candidate(record.candidate)
    , m_type(record.type)
    , m_name(QString::fromStdString(record.name))
    , m_key(objectTreeKey(parent.key(), m_name))
    , m_generation(parent.generationBelow()) {
    Qt::ItemFlags flagsOfRow = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (isTableLike(m_type)) flagsOfRow |= Qt::ItemIsDragEnabled;
    setFlags(flagsOfRow);
    // What was not loaded yet can be opened, which loads it.
    if (m_type != IdentifierTypeField) setChildIndicatorPolicy(ShowIndicator);
}

ObjectTreeItem::~ObjectTreeItem() {
    if (childCount() > 0) takeChildren();
    for (ObjectTreeItem* row : m_rows)
        delete row;
}

QVariant ObjectTreeItem::data(int column, int role) const {
    if (column != 0) return QVariant();
    switch (role) {
        case Qt::DisplayRole:
            return m_name;
        case Qt::DecorationRole:
            return m_icons ? m_icons->icon(m_type) : QIcon();
        case CandidateRole:
            return QVariant::fromValue(
                static_cast<qlonglong>(reinterpret_cast<qintptr>(m_candidate)));
        case LoadingRole:
            return m_isLoading;
        default:
            return QTreeWidgetItem::data(column, role);
    }
}

void ObjectTreeItem::setData(int column, int role, const QVariant& value) {
    if (column != 0 || role != LoadingRole) return QTreeWidgetItem::setData(column, role, value);
    if (m_isLoading == value.toBool()) return;
    m_isLoading = value.toBool();
    emitDataChanged();
}

void ObjectTreeItem::appendRow(std::unique_ptr<ObjectTreeItem> row) {
    m_rows.push_back(row.get());
    row.release();
}

std::vector<ObjectTreeItem*> ObjectTreeItem::takeRows() {
    if (m_generationBelow) m_generationBelow->isCurrent = false;
    m_generationBelow.reset();
    return std::exchange(m_rows, {});
}

const std::shared_ptr<RowGeneration>& ObjectTreeItem::generationBelow() {
    if (!m_generationBelow)
        m_generationBelow = std::make_shared<RowGeneration>(RowGeneration{m_generation});
    return m_generationBelow;
}

QBIdentifierCandidate* candidateAddress(const QTreeWidgetItem* item) {
    if (!item) return nullptr;
    const qlonglong address = item->data(0, ObjectTreeItem::CandidateRole).toLongLong();
    return reinterpret_cast<QBIdentifierCandidate*>(static_cast<qintptr>(address));
}

bool isTableLike(IdentifierType type) {
    return type == IdentifierTypeTable || type == IdentifierTypeView ||
           type == IdentifierTypeMaterializedView;
}

QString objectTreeKey(const QString& parentKey, const QString& name) {
    return parentKey + name + QChar(0x1f);
}

}  // namespace QB
