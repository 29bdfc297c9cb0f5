#pragma once

#include <QIcon>
#include <QString>
#include <QTreeWidgetItem>
#include <array>
#include <memory>
#include <vector>

#include "engine/identifier_candidate.h"
#include "model/vocabulary.h"

namespace QB {

/// The icons of one tree, made once for each type and shared by all rows.
class ObjectTreeIcons {
public:
    void setDatabaseType(DatabaseType type);
    QIcon icon(IdentifierType type) const;

private:
    std::array<QIcon, IdentifierTypeField + 1> m_icons;
};

/// The rows that one parent got from one load. Rows that were replaced are destroyed bit by bit;
/// until then this tells them from those that count.
struct RowGeneration {
    std::shared_ptr<const RowGeneration> parent;  // null for the top level
    bool isCurrent = true;

    bool isLive() const { return isCurrent && (!parent || parent->isLive()); }
};

/// One row of the object tree.
///
/// It knows all rows below it, of which the QTreeWidget holds those that pass the filter.
/// Ownership: owns the rows below it, shown or not.
class ObjectTreeItem : public QTreeWidgetItem {
public:
    enum Role {
        CandidateRole = Qt::UserRole + 1,  ///< QBIdentifierCandidate* as qlonglong
        LoadingRole = Qt::UserRole + 2,    ///< bool
    };

    /// Stands for the invisible root; never part of a tree.
    ObjectTreeItem();
    ObjectTreeItem(const ObjectTreeIcons& icons, const QBIdentifierCandidateSnapshot& record,
                   ObjectTreeItem& parent);
    ~ObjectTreeItem() override;
    ObjectTreeItem(const ObjectTreeItem&) = delete;
    ObjectTreeItem& operator=(const ObjectTreeItem&) = delete;

    QVariant data(int column, int role) const override;
    void setData(int column, int role, const QVariant& value) override;

    const QString& name() const { return m_name; }
    /// See QBDiagramObjectTreePanelWidget::obtainIdentifierCandidateKey.
    const QString& key() const { return m_key; }
    IdentifierType type() const { return m_type; }
    bool isRoot() const { return m_key.isEmpty(); }
    QBIdentifierCandidate* candidate() const { return m_candidate; }
    void setCandidate(QBIdentifierCandidate* candidate) { m_candidate = candidate; }

    const std::vector<ObjectTreeItem*>& rows() const { return m_rows; }
    void appendRow(std::unique_ptr<ObjectTreeItem> row);
    /// The caller owns the rows, which nobody finds any more; those in a tree are still in it.
    std::vector<ObjectTreeItem*> takeRows();
    /// False once the row, or one above it, was taken by takeRows.
    bool isLive() const { return !m_generation || m_generation->isLive(); }

    bool isExpandedByUser = false;  ///< what the user wants, also while the filter opens the row
    bool passesFilter = false;      ///< by its own name or by a row below it
    bool hasMatchBelow = false;

private:
    const std::shared_ptr<RowGeneration>& generationBelow();

    const ObjectTreeIcons* m_icons = nullptr;      // not owned: lives as long as the tree
    QBIdentifierCandidate* m_candidate = nullptr;  // not owned: the engine; null for the root
    IdentifierType m_type = IdentifierTypeQuery;
    bool m_isLoading = false;
    QString m_name;
    QString m_key;
    std::vector<ObjectTreeItem*> m_rows;                // each owned
    std::shared_ptr<const RowGeneration> m_generation;  // that of the row itself; null for the root
    std::shared_ptr<RowGeneration> m_generationBelow;   // that of m_rows; made with the first one
};

/// What role 257 of @p item holds: an address to be looked up in the engine's tree of candidates
/// before it is followed. Null for no item and for content that is no number.
QBIdentifierCandidate* candidateAddress(const QTreeWidgetItem* item);

/// The kinds that can be part of a query: tables, views and materialised views.
bool isTableLike(IdentifierType type);

/// The key of the child @p name of the row with @p parentKey.
QString objectTreeKey(const QString& parentKey, const QString& name);

}  // namespace QB
