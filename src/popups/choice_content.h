#pragma once

#include <QObject>
#include <QStringList>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/engine_linux.h"
#include "popups/choice_tree.h"
#include "popups/column_choice_host.h"

namespace QB {

class QBPanelWidget;

/// Fills a chooser's tree with what its panel offers, fetches what is not known yet, and keeps the
/// tree up to date while candidates arrive and the statement changes.
///
/// Sources are known by their id and looked up in the current layer whenever they are needed, since
/// the statement may change at any time.
/// Thread: main.
class ChoiceContent : public QObject {
    Q_OBJECT

public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using OnItem = std::function<void(QTreeWidgetItem*)>;

    /// @p panel gives the engine and what is offered. It outlives the object, as does @p tree.
    ChoiceContent(QBPanelWidget* panel, ChoiceTree& tree, QStringList extraSchemas,
                  QObject* parent);
    ~ChoiceContent() override;

    /// What the panel asks for; nothing if it offers nothing.
    std::optional<QBColumnChoice> panelChoice() const;
    /// Shows that in place of all that showed before; none: nothing.
    void show(std::optional<QBColumnChoice> choice);
    std::optional<QBColumnChoice> choice() const { return m_choice; }
    /// Offers a star below each source, whatever is shown.
    void setOffersStars(bool offers);
    /// Appends a node; see QBColumnSelectionPopupWidget.
    void addTable(const Component::SQL::SQLIdentifierSourceComponent* source,
                  QList<QBIdentifierChoiceItemData>* listed, bool withStar, const OnItem& onItem);
    void addSubquery(const Component::SQL::SQLSubquerySourceComponent* source, bool withStar,
                     const OnItem& onItem);
    /// Brings the line up to date that says why nothing shows.
    void updateNotice();
    /// Shows what changed while nobody looked.
    void catchUp();

Q_SIGNALS:
    /// Lines were added, changed or taken away.
    void changed();
    /// The statement has changed: catchUp() when somebody looks.
    void becameStale();

private:
    using Names = std::vector<std::string>;
    using Table = Component::SQL::SQLIdentifierSourceComponent;
    using Subquery = Component::SQL::SQLSubquerySourceComponent;

    QBEngine_LINUX* engine() const;
    void connectEngine();
    void statementChanged();
    QIcon icon(IdentifierType type);
    bool canFetch() const;

    void fill();
    void fillSchemas();
    void fillFields();
    void addStarOfAll();
    void addSelectColumns();

    Names wantedSchemas() const;
    void addSchemas(const Names& names);
    void addKnownSchemas();
    void wantSchemas(const Names& names);
    void setObjects(ChoiceNode& node);
    void refreshSchemas(const Names& arrived);

    ChoiceNode sourceNode(const Source& source, const QString& display, bool withStar) const;
    void appendTable(const Table& source, QList<QBIdentifierChoiceItemData>* listed, bool withStar,
                     const OnItem& onItem);
    void setTable(ChoiceNode& node, const Table& source);
    void setFields(ChoiceNode& node, const Names& fields);
    QString subqueryText(const Subquery& source) const;
    void askForSubqueryFields(const Subquery& source);
    void subqueryFieldsFound(long sourceId, const Names& found);
    ChoiceNode* findNode(long sourceId);

    bool want(const std::vector<Names>& paths);
    void fetchWanted();
    void fetchEnded();
    void wantAllIfNothingIsKnown();
    void childrenArrived(QBIdentifierCandidate* candidate);
    template <typename Condition>
    void refreshTables(const Condition& isMeant);
    std::vector<Names> placesOf(const Table& source) const;
    QString notice() const;

    const long m_id;               ///< in the liveness registry: closures of workers ask for it
    QBPanelWidget* const m_panel;  // not owned
    ChoiceTree& m_tree;
    const QStringList m_extraSchemas;
    std::optional<QBColumnChoice> m_choice;
    bool m_offersStars = false;
    bool m_hasOtherSources = false;  ///< of which no fields are known
    bool m_isStale = false;
    std::map<IdentifierType, QIcon> m_icons;
    std::vector<Names> m_wanted;  ///< paths to be fetched next
    std::set<Names> m_requested;  ///< all that were ever wanted: nothing is asked for twice
    int m_fetches = 0;            ///< that run
};

}  // namespace QB
