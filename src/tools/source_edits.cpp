#include "tools/source_edits.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "layouts/source_tree_surgery.h"
#include "model/callbacks.h"
#include "model/names.h"
#include "model/tree_walks.h"
#include "platform/tolk/tolk.h"
#include "stringifier/query_component_stringifier.h"
#include "tools/join_edits.h"
#include "tools/join_lack.h"
#include "tools/join_sight.h"
#include "tools/validation_scope.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;
using Tools::SQL::JoinSight;
using Sources = std::set<const SQLAbstractSourceComponent*>;

namespace {

Sources sourcesIn(SourceTree::Slot root) {
    Sources sources;
    for (const SourceTree::Place& place : SourceTree::flatten(root))
        sources.insert(place.component);
    return sources;
}

bool namesAny(const SQLAbstractConditionComponent* condition, const Sources& sources) {
    DetachedParts::References named;
    collectReferences(condition, named);
    return std::any_of(sources.begin(), sources.end(),
                       [&named](const auto* source) { return named.count(source) > 0; });
}

/// Whether no source of the clause but @p except goes by that name.
bool isNameFree(const SourceNode* root, const std::string& name, bool haveCase,
                const SQLAbstractSourceComponent* except) {
    bool isFree = true;
    Tools::visitSourceNodes(root, [&](const SourceNode* node) {
        const SQLAbstractSourceComponent* const source = node->value;
        if (source == except) return;
        const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
        const std::string& known = table && source->alias.empty() ? table->name : source->alias;
        isFree = isFree && !isSameName(known, name, haveCase);
    });
    return isFree;
}

void tell(Tolk::TextId text, const QStringList& lines) {
    if (lines.isEmpty()) return;
    const QByteArray all = lines.join('\n').toUtf8();
    Callback::showError(Tolk::localizeWithArgs(text, all.constData()).toStdString());
}

bool isWritten(const SQLJoinSourceNodeComponent* join) {
    return join->needsCondition();
}

/// What the condition of the join in @p row could not name. Of a comma, whose condition waits for
/// another kind, what it could not name as such a kind.
std::vector<SQLAbstractConditionComponent*> blindAsJoin(SourceTree::Slot root, std::size_t row,
                                                        SQLJoinSourceNodeComponent* comma) {
    comma->joinType = SQLJoinTypeInner;
    auto blind = JoinSight(root).blindConditions(row);
    comma->joinType = SQLJoinTypeComma;
    return blind;
}

}  // namespace

// ---- modifications ----------------------------------------------------------------------------

void SourceEdits::modify(const std::function<void(Slot root)>& change) {
    m_engine->modifyInTopLevelQueryComponentElement<ELEMSQLSourceExpr*>(
        ElementSource, m_engine->currentTopLevelQueryComponentLayer(),
        [&](ELEMSQLSourceExpr* element) {
            const Tools::SQL::NaturalJoinWatch watch(element->root, m_engine->databaseType());
            change(&element->root);
            m_rows->updateItemFlags();
            for (const std::string& word : watch.newlyNatural(element->root))
                m_natural.push_back(word);
            m_engine->retire(m_rows->takeDetachedParts());
            return true;
        },
        m_sender);
}

void SourceEdits::modifyWithConditions(Fate fate, const std::function<void(Slot root)>& change) {
    modify([&](Slot root) {
        const Conditions blindBefore = blindConditionsOf(root);
        Sources gone = sourcesIn(root);
        change(root);
        for (const Source* source : sourcesIn(root))
            gone.erase(source);
        if (fate == Fate::Removed) removeBlind(root, blindBefore, gone);
        if (fate == Fate::Stays) tellBlind(root, blindBefore);
    });
}

template <typename Kind>
Kind* SourceEdits::at(int row) const {
    const Items& items = m_rows->items();
    const bool isRow = row >= 0 && static_cast<std::size_t>(row) < items.size();
    return isRow ? dynamic_cast<Kind*>(items[static_cast<std::size_t>(row)]->component) : nullptr;
}

template <typename Kind>
void SourceEdits::change(int row, const std::function<void(Kind*)>& edit) {
    Kind* const component = at<Kind>(row);
    if (component) modify([&](Slot) { edit(component); });
}

void SourceEdits::settleGroup(Slot root, const Source* component) {
    const SourceTree::Path path = SourceTree::pathToValue(root, component);
    if (path.empty()) return;
    const Slot group = SourceTree::groupOf(path, path.size() - 1);
    // The order of the text stays, but rows know where in the tree they stand.
    if (SourceTree::sinkJoinsBelowCommas(group)) m_rows->rebuildItems();
}

// ---- sources ----------------------------------------------------------------------------------

int SourceEdits::add(std::unique_ptr<Source> source, int row, SourcePlace place,
                     const std::optional<SourceJoinChoice>& join) {
    int addedRow = -1;
    modifyWithConditions(Fate::Removed, [&](Slot root) {
        const Items rows = place == SourcePlace::Before ? m_rows->insertItem(source.get(), row)
                                                        : m_rows->addItem(source.get(), row);
        if (rows.empty()) return;
        const Source* const added = source.release();
        const auto joinRow = std::find_if(rows.begin(), rows.end(), [](const auto* item) {
            return dynamic_cast<Join*>(item->component);
        });
        const bool isFirst = joinRow == rows.end() || rows.front()->component == added;
        if (!isFirst) {
            bind(root, static_cast<Join*>((*joinRow)->component),
                 join.value_or(SourceJoinChoice()));
        }
        settleGroup(root, added);
        addedRow = rowOf(added);  // the announcement may lead to other rows
    });
    return addedRow;
}

int SourceEdits::rowOf(const Source* source) const {
    const Items& items = m_rows->items();
    const auto found = std::find_if(items.begin(), items.end(), [source](const auto* item) {
        return item->component == source;
    });
    return static_cast<int>(std::distance(items.begin(), found));
}

void SourceEdits::remove(int row) {
    const Items& items = m_rows->items();
    if (row < 0 || static_cast<std::size_t>(row) >= items.size()) return;
    auto* const item = items[static_cast<std::size_t>(row)];
    if (item->isPlaceholder) return;
    auto* const join = dynamic_cast<Join*>(item->component);
    modifyWithConditions(Fate::Removed, [&](Slot root) {
        if (!join) return m_rows->removeItem_internal(item);
        m_engine->retire(Tools::SQL::unbind(join));
        settleGroup(root, join);
    });
}

void SourceEdits::remove(const std::vector<Source*>& sources) {
    const auto isHere = [this](const Source* source) {
        return at<Source>(rowOf(source)) != nullptr;
    };
    if (std::none_of(sources.begin(), sources.end(), isHere)) return;
    modifyWithConditions(Fate::Removed, [&](Slot) {
        for (const Source* source : sources)
            removeOperand(rowOf(source));
    });
}

void SourceEdits::removeOperand(int row) {
    while (at<Source>(row)) {
        m_rows->removeItem_internal(m_rows->items()[static_cast<std::size_t>(row)]);
        const Items& items = m_rows->items();
        const auto place = static_cast<std::size_t>(row);
        if (place == items.size() || !items[place]->isPlaceholder) return;
        --row;  // the bracket that has nothing in it now
    }
}

void SourceEdits::replace(int row, std::unique_ptr<Source> replacement) {
    Source* const old = at<Source>(row);
    if (!SourceTree::isLeaf(old) || !SourceTree::isLeaf(replacement.get())) return;
    modify([&](Slot) {
        if (replacement->alias.empty()) replacement->alias = aliasAfter(old, replacement.get());
        takeOverFields(old, replacement.get());
        m_rows->replaceItemComponent(m_rows->items()[static_cast<std::size_t>(row)],
                                     replacement.release(), true);
    });
}

std::string SourceEdits::aliasAfter(const Source* old, const Source* replacement) const {
    const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(old);
    const bool haveCase = namesHaveCase(m_engine->databaseType());
    if (!old->alias.empty() || !table || !isNameFree(*m_rows->root(), table->name, haveCase, old))
        return old->alias;
    const auto* text = dynamic_cast<const SQLAnyExpressionSourceComponent*>(replacement);
    const bool takesAlias = !text || isOnePiece(text->expression, m_engine->databaseType());
    return takesAlias ? table->name : std::string();
}

/// The walk hands out const pointers to what the statement owns and this modification may change.
void SourceEdits::takeOverFields(const Source* old, Source* replacement) const {
    const auto* statement = m_engine->currentTopLevelQueryComponent();
    Tools::visitOwnedComponents(statement, [&](const AbstractQueryComponent* component) {
        const auto* field = dynamic_cast<const SQLFieldColumnComponent*>(component);
        if (field && field->source == old)
            const_cast<SQLFieldColumnComponent*>(field)->source = replacement;
    });
}

void SourceEdits::setAlias(int row, const std::string& alias) {
    change<Source>(row, [&](Source* source) { rename(source, [&] { source->alias = alias; }); });
}

/// @p edit may give @p source another name.
void SourceEdits::rename(const Source* source, const std::function<void()>& edit) {
    const SourceName former = nameOf(source);
    edit();
    const SourceName now = nameOf(source);
    if (!former.names.empty() && former.names != now.names) renameInTexts(former, now);
}

SourceName SourceEdits::nameOf(const Source* source) const {
    SourceName name;
    const auto* table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
    if (!source->alias.empty()) {
        name.names = {source->alias};
    } else if (table) {
        name.names = table->path;
        name.names.push_back(table->name);
        const bool haveCase = namesHaveCase(m_engine->databaseType());
        name.isClear = isNameFree(*m_rows->root(), table->name, haveCase, source);
    }
    return name;
}

/// In those of this statement: a subquery may have a source of that name, too. The walks hand out
/// const pointers to what this modification may change.
void SourceEdits::renameInTexts(const SourceName& former, const SourceName& now) {
    const auto renameIn = [&](const std::string& text, TextPlace place) {
        const auto renamed = withSourceRenamed(text, place, former, now, m_engine->databaseInfo());
        if (renamed) const_cast<std::string&>(text) = *renamed;
        if (!renamed) m_stale.append(QString::fromStdString(text));
    };
    const auto renameBelow = [&](const AbstractQueryComponent* root) {
        Tools::visitOwnedComponents(root, [&](const AbstractQueryComponent* part) {
            const auto* column = dynamic_cast<const SQLAnyExpressionColumnComponent*>(part);
            if (column) renameIn(column->expression, TextPlace::Value);
        });
    };
    const SQLSelectStmtComponent* const statement = Tools::Validation::currentStatement(m_engine);
    for (const auto* columns : {&statement->selectColumnExpr->columns,
                                &statement->groupByExpr->columns, &statement->orderByExpr->columns})
        std::for_each(columns->begin(), columns->end(), renameBelow);
    renameBelow(statement->whereExpr->root);
    renameBelow(statement->havingExpr->root);
    Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        if (const auto* join = dynamic_cast<const Join*>(node->value)) renameBelow(join->condition);
        if (const auto* text = dynamic_cast<const SQLAnyExpressionSourceComponent*>(node->value))
            renameIn(text->expression, TextPlace::Source);
    });
}

void SourceEdits::setExpression(int row, const std::string& text) {
    change<SQLAnyExpressionSourceComponent>(row, [&](auto* source) { source->expression = text; });
}

void SourceEdits::setTable(int row, const std::vector<std::string>& path, const std::string& name) {
    change<SQLIdentifierSourceComponent>(row, [&](auto* table) {
        rename(table, [&] {
            table->path = path;
            table->name = name;
        });
    });
}

void SourceEdits::setStatement(int row, OwnedStatement statement, const std::string& alias) {
    change<SQLSubquerySourceComponent>(row, [&](auto* source) {
        if (!alias.empty()) rename(source, [&] { source->alias = alias; });
        DetachedParts old;
        old.add(std::unique_ptr<AbstractQueryComponent>(
            std::exchange(source->subquery, statement.release())));
        m_engine->retire(std::move(old));
    });
}

// ---- joins ------------------------------------------------------------------------------------

void SourceEdits::setJoin(int row, const SourceJoinChoice& choice) {
    Join* const join = at<Join>(row);
    const bool isIt = join && join->joinType == choice.type &&
                      (choice.type != SQLJoinTypeCustom || join->joinText == choice.text);
    if (join && !isIt)
        modifyWithConditions(Fate::Removed, [&](Slot root) { bind(root, join, choice); });
}

void SourceEdits::bind(Slot root, Join* join, const SourceJoinChoice& choice) {
    const bool wasComma = SourceTree::isComma(join);
    join->joinType = choice.type;
    join->joinText = choice.type == SQLJoinTypeCustom ? choice.text : std::string();
    settleGroup(root, join);
    if (!wasComma || SourceTree::isComma(join)) return;
    // Joins behind the comma were bound before it; the text reads them from left to right now.
    const Slot slot = SourceTree::pathToValue(root, join).back();
    if (!SourceTree::isJoin((*slot)->right->value)) return;
    SourceTree::leanLeft(slot);
    m_rows->rebuildItems();
}

void SourceEdits::changeConditionForm(int row) {
    change<Join>(row, [&](Join* join) {
        join->isUsing = !join->isUsing;
        DetachedParts old;
        old.add(std::unique_ptr<AbstractQueryComponent>(std::exchange(join->condition, nullptr)));
        m_engine->retire(std::move(old));
    });
}

void SourceEdits::setUsingList(int row, std::unique_ptr<Condition> list) {
    change<Join>(row, [&](Join* join) {
        DetachedParts old;
        old.add(std::unique_ptr<AbstractQueryComponent>(
            std::exchange(join->condition, list.release())));
        m_engine->retire(std::move(old));
        join->isUsing = true;
    });
}

// ---- brackets ---------------------------------------------------------------------------------

void SourceEdits::group(const Items& items) {
    modifyWithConditions(Fate::Stays, [&](Slot) { m_rows->groupItemsByBracket(items, 0); });
}

void SourceEdits::ungroup(const Items& items) {
    modifyWithConditions(Fate::Stays, [&](Slot) { m_rows->ungroupItemsByBracket(items); });
}

// ---- conditions -------------------------------------------------------------------------------

SourceEdits::Conditions SourceEdits::blindConditionsOf(Slot root) {
    Conditions all;
    const JoinSight sight(root);
    for (std::size_t row = 0; row < sight.places().size(); ++row) {
        if (SourceTree::isComma(sight.places()[row].component)) continue;
        const auto blind = sight.blindConditions(row);
        all.insert(blind.begin(), blind.end());
    }
    return all;
}

void SourceEdits::removeBlind(Slot root, const Conditions& before, const Sources& gone) {
    const JoinSight sight(root);
    for (std::size_t row = 0; row < sight.places().size(); ++row) {
        Join* const join = sight.joinAt(row);
        if (!join || !join->condition) continue;
        const auto blind =
            SourceTree::isComma(join) ? blindAsJoin(root, row, join) : sight.blindConditions(row);
        Conditions doomed;
        std::copy_if(
            blind.begin(), blind.end(), std::inserter(doomed, doomed.end()),
            [&before](const Condition* condition) { return before.count(condition) == 0; });
        DetachedParts taken = Tools::SQL::takeConditions(&join->condition, doomed);
        taken.visitParts([&](const SourceNode*, const AbstractQueryComponent* part) {
            const auto* condition = dynamic_cast<const Condition*>(part);
            const bool isNews = doomed.count(condition) > 0 && !namesAny(condition, gone);
            if (isNews && isWritten(join)) m_removed.append(textOf(condition));
        });
        m_engine->retire(std::move(taken));
    }
}

void SourceEdits::tellBlind(Slot root, const Conditions& before) {
    const JoinSight sight(root);
    for (std::size_t row = 0; row < sight.places().size(); ++row) {
        const Join* const join = sight.joinAt(row);
        if (!join || !isWritten(join)) continue;
        const auto blind = sight.blindConditions(row);
        const bool isNew = std::any_of(blind.begin(), blind.end(), [&](const Condition* condition) {
            return before.count(condition) == 0;
        });
        if (isNew) m_blind.append(textOf(join->condition));
    }
}

/// On one line, with what follows it in its chain.
QString SourceEdits::textOf(const Condition* condition) const {
    const auto stringifier =
        QBQueryComponentStringifier::createStringifier(m_engine->databaseInfo());
    if (!stringifier) return {};
    stringifier->setCurrentSchema(m_engine->currentSchema());
    return QString::fromStdString(stringifier->stringifyQuery(condition)).simplified();
}

void SourceEdits::tellConditions() const {
    tell(Tolk::TextConditionsRemoved, m_removed);
    tell(Tolk::TextConditionsBlind, m_blind);
    tell(Tolk::TextExpressionsKeepName, m_stale);
    Tools::SQL::tellNaturalJoins(m_natural);
}

// ---- from outside a list of rows --------------------------------------------------------------

SQLAbstractSourceComponent* findSource(const QBEngine* engine, long id) {
    const SQLSelectStmtComponent* const statement = Tools::Validation::currentStatement(engine);
    SQLAbstractSourceComponent* found = nullptr;
    if (!statement) return nullptr;
    Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        if (node->value->id() == id) found = node->value;
    });
    return found;
}

void editSource(QBEngine* engine, void* sender, long id,
                const std::function<void(SourceEdits&, int row)>& edit) {
    SQLSelectStmtComponent* const statement = Tools::Validation::currentStatement(engine);
    if (!statement) return;
    SourceEdits::Rows rows(&statement->sourceExpr->root);
    rows.rebuildItems();
    rows.updateItemFlags();
    const auto& items = rows.items();
    const auto found = std::find_if(items.begin(), items.end(), [id](const auto* item) {
        return item->component && item->component->id() == id;
    });
    if (found == items.end()) return;
    SourceEdits edits(engine, &rows, sender);
    edit(edits, static_cast<int>(std::distance(items.begin(), found)));
    edits.tellConditions();
}

std::string freeAlias(const SourceNode* root, const SQLIdentifierSourceComponent& table,
                      bool haveCase) {
    const auto isTaken = [&](const SQLAbstractSourceComponent* source) {
        const auto* other = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
        if (!other || !source->alias.empty())
            return isSameName(source->alias, table.name, haveCase);
        // Tables of two schemas are told apart by these.
        return isSameName(other->name, table.name, haveCase) && other->path == table.path;
    };
    bool isNeeded = false;
    Tools::visitSourceNodes(
        root, [&](const SourceNode* node) { isNeeded = isNeeded || isTaken(node->value); });
    if (!isNeeded) return {};
    int number = 2;
    const auto alias = [&] {
        return table.name + '_' + std::to_string(number);
    };
    while (!isNameFree(root, alias(), haveCase, nullptr))
        ++number;
    return alias();
}

QString aliasFault(const QBEngine* engine, long id, const std::string& alias) {
    const SQLSelectStmtComponent* const statement = Tools::Validation::currentStatement(engine);
    if (!statement || alias.empty()) return {};
    const bool haveCase = namesHaveCase(engine->databaseType());
    if (isNameFree(statement->sourceExpr->root, alias, haveCase, findSource(engine, id))) return {};
    return Tolk::localizeWithArgs(Tolk::TextAliasTaken, alias.c_str());
}

}  // namespace QB
