#pragma once

#include <QIcon>
#include <QString>
#include <QTreeWidget>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "popups/column_choice.h"

namespace QB {

/// What a line of a chooser's tree stands for.
enum class ChoiceKind {
    Heading,       ///< a schema, a source or a group
    Notice,        ///< says why there is nothing, or not yet
    Object,        ///< a table or view
    Field,         ///< of a source
    Star,          ///< all fields of a source, or of all
    SelectColumn,  ///< a column of the SELECT list
};

/// One line of a chooser's tree, as plain values.
struct ChoiceRow {
    ChoiceKind kind = ChoiceKind::Notice;
    QString text;
    QIcon icon;
    QString toolTip;  ///< plain; empty: the text
    QBIdentifierChoiceItemData data;
    long componentId = -1;   ///< of the source or the column
    quintptr component = 0;  ///< its address, to compare with

    bool canBeChosen() const { return kind != ChoiceKind::Heading && kind != ChoiceKind::Notice; }
    /// Whether both stand for the same thing.
    bool isSameChoice(const ChoiceRow& other) const;
};

/// A line of the top level with the lines below it.
struct ChoiceNode {
    ChoiceRow heading;
    std::vector<ChoiceRow> rows;
    bool isLoading = false;          ///< a line below says so
    bool isHiddenWhenEmpty = false;  ///< without rows, loading or not
    /// Of a named source its qualifiers and its name, of any source its alias.
    std::vector<std::string> names;
    std::string alias;
    bool hasStar = false;             ///< offers all fields of the source in one
    QTreeWidgetItem* item = nullptr;  // owned by the tree
};

/// Shows nodes in a QTreeWidget: those that a filter lets pass, made in one go. What is chosen is
/// kept by what it stands for, over all changes and while it does not show, until the user chooses
/// something else.
///
/// Items: column 0 has text and icon, and the roles below tell the rest. Only what can be chosen
/// has Qt::ItemIsSelectable.
/// Thread: main.
class ChoiceTree {
public:
    enum Role {
        DataRole = Qt::UserRole,  ///< QBIdentifierChoiceItemData
        KindRole,                 ///< ChoiceKind as int
        ComponentIdRole,          ///< qlonglong; -1 for none
        ComponentRole,            ///< qulonglong; an address to compare with
    };

    /// While one lives the tree paints nothing and tells nothing; when the outermost goes, what was
    /// chosen is selected again where it shows.
    class Update {
    public:
        explicit Update(ChoiceTree& tree);
        ~Update();
        Update(const Update&) = delete;
        Update& operator=(const Update&) = delete;

    private:
        ChoiceTree& m_tree;
    };

    /// @p tree outlives the object and shows nothing else.
    explicit ChoiceTree(QTreeWidget* tree) : m_tree(tree) {}

    /// The choice stays, for when it shows again.
    void clear();
    /// Appends; the reference stays good until clear().
    ChoiceNode& add(ChoiceNode node);
    /// Shows what was changed in @p node, one of nodes().
    void refresh(ChoiceNode& node);
    std::deque<ChoiceNode>& nodes() { return m_nodes; }
    const std::deque<ChoiceNode>& nodes() const { return m_nodes; }

    /// Shows what contains @p text, whatever the case. A heading that does shows all that is below
    /// it; a text with a point in it may stand for heading and line.
    void setFilter(const QString& text);
    bool hasFilter() const { return !m_filter.isEmpty(); }
    /// Whether no node shows.
    bool isEmpty() const;
    /// What a line at the end says; empty: there is none.
    void setNotice(const QString& text);

    /// What is to be selected as soon as it shows; none: nothing.
    void choose(const std::optional<ChoiceRow>& row);
    /// The user has selected something, or nothing.
    void noteSelection();
    /// What the selected item stands for; null if none is selected.
    const ChoiceRow* selectedRow() const;
    /// Null for null and for an item that is not of this class.
    static const ChoiceRow* rowOf(const QTreeWidgetItem* item);
    /// The first line that shows and can be chosen; null if there is none.
    QTreeWidgetItem* firstChoice() const;
    /// Brings the selected item into the middle.
    void scrollToSelected();

private:
    class Item;

    bool passes(const QString& text) const { return text.contains(m_filter, Qt::CaseInsensitive); }
    bool passes(const ChoiceNode& node, const ChoiceRow& row) const;
    void fill(const ChoiceNode& node);
    bool isShown(const ChoiceNode& node) const;
    void selectChosen();
    /// The first item that shows and whose row @p isWanted.
    QTreeWidgetItem* find(const std::function<bool(const ChoiceRow&)>& isWanted) const;

    QTreeWidget* const m_tree;  // not owned
    std::deque<ChoiceNode> m_nodes;
    QTreeWidgetItem* m_noticeItem = nullptr;  // owned by m_tree
    QString m_filter;
    std::optional<ChoiceRow> m_chosen;
    int m_updates = 0;  ///< that live
    bool m_wasBlocked = false;
};

}  // namespace QB
