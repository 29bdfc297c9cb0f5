#pragma once

#include <set>

#include "builder/monkey_desk.h"
#include "engine/text_check.h"
#include "model/tree_walks.h"

namespace QB::Test {

using namespace Component::SQL;

/// What holds once everything has arrived: panels, model, text, diagram and history say the same.
/// Each gives what is wrong; empty if nothing is.
class Oracles {
public:
    explicit Oracles(MonkeyDesk& desk) : m_desk(desk) {}

    QString all() const {
        for (const auto fault : {&Oracles::rows, &Oracles::text, &Oracles::diagram,
                                 &Oracles::freshDiagram, &Oracles::history}) {
            const QString found = (this->*fault)();
            if (!found.isEmpty()) return found;
        }
        return {};
    }

    /// Of every page.
    QString rows() const {
        QTabWidget* const pages = m_desk.pages();
        const int shown = pages->currentIndex();
        QString faults;
        for (int page = 0; page < pages->count() && faults.isEmpty(); ++page) {
            pages->setCurrentIndex(page);
            m_desk.settle();
            faults = m_desk.rowFaults();
        }
        pages->setCurrentIndex(shown);
        m_desk.lookAtPage();
        return faults;
    }

    /// It says what the statement says. Only what is marked as incomplete is refused.
    QString text() const {
        const QBEngine* const engine = m_desk.live();
        const auto* const root =
            dynamic_cast<const SQLSelectStmtComponent*>(engine->topLevelQueryComponent(0));
        if (!root) return {};
        const TextReading reading =
            readOwnText(*root, engine->databaseType(), engine->currentSchema());
        const QString text = shown(reading.text);
        if (isMarked(root, text)) return {};
        if (!reading.isAccepted) return "text: refused, and not marked: " + text;
        if (reading.faults.empty() || hasUnclearNames(root)) return {};
        return "text: " + shown(reading.faults) + "\n    in " + text;
    }

    /// Each source and each join of the statement is drawn, once, as what it is.
    QString diagram() const {
        const auto* const statement = BuilderDesk::statement(m_desk.live());
        if (!statement) return {};
        const SourceNode* const root = statement->sourceExpr->root;
        QString fault = drawnFault(root);
        for (const Source* source : leaves(root))
            if (fault.isEmpty()) fault = itemFault(source, statement->selectColumnExpr->columns);
        if (fault.isEmpty()) fault = linksFault(root);
        return fault.isEmpty() ? fault : "diagram: " + fault;
    }

    /// A diagram that is drawn now shows the same.
    QString freshDiagram() const {
        const QStringList shown = m_desk.places().lines();
        QBDiagramPanelWidget panel;
        panel.setEngine(m_desk.live());
        m_desk.settle();
        const QStringList fresh = DiagramPlaces(panel.drawer()).lines();
        if (shown == fresh) return {};
        return "fresh diagram:\n      " + fresh.join("\n      ") + "\n    shown:\n      " +
               shown.join("\n      ");
    }

    /// Steps back and forth lead to where they began.
    QString history() const {
        constexpr int most = 7;
        QUndoStack* const stack = m_desk.builder->undoStack();
        const int index = stack->index();
        const Standing before = standing();
        const std::string text = m_desk.live()->buildQuery();
        stack->setIndex(std::max(0, index - most));
        m_desk.settle();
        const bool hasMoved = stack->index() == std::max(0, index - most);
        stack->setIndex(index);
        m_desk.settle();
        if (!hasMoved || stack->index() != index) return "history: it does not move";
        const Standing after = standing();
        if (after.query != before.query || m_desk.live()->buildQuery() != text)
            return "history: " + shown(m_desk.live()->buildQuery()) + "\n    was: " + shown(text);
        // The layer is the one in which the step was done.
        if (after.layers != before.layers || after.items == before.items) return {};
        return "history: " + after.items.join("; ") + "\n    was: " + before.items.join("; ");
    }

private:
    using Source = SQLAbstractSourceComponent;
    using Join = SQLJoinSourceNodeComponent;
    using Sources = std::vector<Source*>;
    using Columns = std::vector<SQLAbstractColumnComponent*>;

    static QString shown(const std::string& text) {
        return QString::fromStdString(text).simplified();
    }

    /// A missing value is marked in the layer that shows; in joins only their editors mark it.
    bool isMarked(const SQLSelectStmtComponent* root, const QString& text) const {
        if (m_desk.builder->needShowBuildWarning() || text.contains("( )")) return true;
        const bool isRootShown = m_desk.live()->currentTopLevelQueryComponentLayer() == 0;
        if (isRootShown && (hasGap(root->whereExpr->root) || hasGap(root->havingExpr->root)))
            return false;
        return hasGap(root);
    }
    static bool hasGap(const Component::AbstractQueryComponent* root) {
        bool isFound = false;
        Tools::visitOwnedComponents(root, [&](const auto* part) {
            const auto* const value = dynamic_cast<const SQLConditionValueComponent*>(part);
            const auto* const join = dynamic_cast<const Join*>(part);
            const bool isBare = join && join->needsCondition() && !join->hasCondition();
            if (isBare || (value && !value->firstValue())) isFound = true;
        });
        return isFound;
    }

    /// Which of two sources of one name is meant no text can tell, and schemas are written as the
    /// current one asks, which what refers to them does not follow.
    static bool hasUnclearNames(const SQLSelectStmtComponent* root) {
        bool isFound = false;
        Tools::visitOwnedComponents(root, [&](const auto* part) {
            const auto* const statement = dynamic_cast<const SQLSelectStmtComponent*>(part);
            std::set<std::string> names;
            for (const Source* source : leaves(statement ? statement->sourceExpr->root : nullptr)) {
                const auto* const table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
                const std::string name =
                    source->alias.empty() && table ? table->name : source->alias;
                const bool isNew = name.empty() || names.insert(name).second;
                if (!isNew || (table && !table->path.empty())) isFound = true;
            }
        });
        return isFound;
    }

    // ---- the diagram, worked out from the statement ----

    static bool isLeaf(const Source* source) {
        return !dynamic_cast<const Join*>(source) &&
               !dynamic_cast<const SQLBracketedSourceNodeComponent*>(source);
    }
    static bool isDrawnJoin(const Source* source) {
        const auto* const join = dynamic_cast<const Join*>(source);
        return join && join->joinType != SQLJoinTypeComma;
    }
    static Sources leaves(const SourceNode* root) {
        Sources all;
        Tools::visitSourceNodes(root, [&](const SourceNode* node) {
            if (isLeaf(node->value)) all.push_back(node->value);
        });
        return all;
    }
    const QBLumoDiagramDrawer& drawer() const { return *m_desk.panel()->drawer(); }

    QString drawnFault(const SourceNode* root) const {
        std::set<std::pair<const Source*, long>> wanted, drawn;
        Tools::visitSourceNodes(root, [&](const SourceNode* node) {
            if (isLeaf(node->value) || isDrawnJoin(node->value))
                wanted.emplace(node->value, node->value->id());
        });
        for (const auto& part : drawer().drawnComponents())
            drawn.emplace(part.component, part.id);
        if (wanted != drawn)
            return QString("%1 parts, %2 drawn, or other ones")
                .arg(wanted.size())
                .arg(drawn.size());
        const std::size_t items = drawer().diagram()->items().size();
        return items == leaves(root).size() ? QString() : QString("%1 items").arg(items);
    }

    QString itemFault(const Source* source, const Columns& columns) const {
        const QBLumoItem* const item = drawer().itemOf(source);
        const QBLumoBaseItemBody* const body = item->getBody();
        const LumoRect rect = item->getRect();
        const LumoRect canvas = drawer().diagram()->getRect();
        if (!lumoContainsRect(lumoInflateRect(canvas, m_desk.keyReach, m_desk.keyReach), rect))
            return "outside: " + DiagramPlaces::titleOf(item);
        if (body->getAlias() != source->alias) return "alias of " + DiagramPlaces::titleOf(item);
        std::set<std::string> sure, possible;
        for (const auto* column : columns) {
            const auto* const field = dynamic_cast<const SQLFieldColumnComponent*>(column);
            if (!field || !field->aggregateFunction.empty()) continue;
            if (field->source == source) sure.insert(field->fieldName);
            if (!field->source) possible.insert(field->fieldName);
        }
        for (const std::string& name : body->fieldNames()) {
            const bool isTicked = body->isFieldSelected(name);
            if (isTicked ? sure.count(name) + possible.count(name) == 0 : sure.count(name) > 0)
                return "tick of " + shown(name) + " of " + DiagramPlaces::titleOf(item);
        }
        const bool isAll = body->isWildcardSelected();
        const bool isWrong = isAll ? sure.count("") + possible.count("") == 0 : sure.count("") > 0;
        return isWrong ? "tick of * of " + DiagramPlaces::titleOf(item) : QString();
    }

    /// Comparisons at any depth, in text order.
    static void collect(const SQLAbstractConditionComponent* condition,
                        std::vector<const SQLCompareConditionComponent*>* all) {
        for (; condition; condition = condition->next) {
            if (const auto* compare = dynamic_cast<const SQLCompareConditionComponent*>(condition))
                all->push_back(compare);
            if (const auto* group = dynamic_cast<const SQLBracketedConditionComponent*>(condition))
                collect(group->inner, all);
        }
    }
    struct End {
        const Source* source = nullptr;
        std::string field;
    };
    /// The field that an operand begins with, if it is one of @p sources.
    static End endIn(const SQLAbstractConditionComponent* operand, const Sources& sources,
                     bool isAlone) {
        const auto* const value = dynamic_cast<const SQLConditionValueComponent*>(operand);
        const auto* const field =
            dynamic_cast<const SQLFieldColumnComponent*>(value ? value->firstValue() : nullptr);
        if (!field || (isAlone && (value->values.size() != 1 || field->fieldName.empty())))
            return {};
        for (const Source* source : sources)
            if (field->source ? field->source == source : isNamed(field->parentPath, source))
                return {source, field->fieldName};
        return {};
    }
    static bool isNamed(std::vector<std::string> qualifiers, const Source* source) {
        if (qualifiers.empty()) return false;
        if (!source->alias.empty()) return qualifiers == std::vector<std::string>{source->alias};
        const auto* const table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
        if (!table || qualifiers.back() != table->name) return false;
        qualifiers.pop_back();
        return qualifiers == table->path;
    }
    static std::pair<End, End> endsOf(const SQLCompareConditionComponent* compare,
                                      const Sources& left, const Sources& right, bool isAlone) {
        const auto at = [&](const auto* operand, const Sources& side) {
            return endIn(operand, side, isAlone);
        };
        const std::pair<End, End> ends{at(compare->leftValue, left),
                                       at(compare->rightValue, right)};
        if (ends.first.source && ends.second.source) return ends;
        return {at(compare->rightValue, left), at(compare->leftValue, right)};
    }

    QString nameOf(const End& end) const {
        const QBLumoItem* const item = drawer().itemOf(end.source);
        const auto& known = item->getBody()->fieldNames();
        const bool isKnown = std::count(known.begin(), known.end(), end.field) > 0;
        return DiagramPlaces::titleOf(item) + '.' +
               QString::fromStdString(isKnown || end.field.empty() ? end.field : "?");
    }

    QString linksFault(const SourceNode* root) const {
        QStringList wanted;
        Tools::visitSourceNodes(root, [&](const SourceNode* node) {
            if (isDrawnJoin(node->value)) addLinks(node, &wanted);
        });
        wanted.sort();
        QStringList drawn;
        for (const QString& line : m_desk.places().lines())
            if (!line.contains(" AS ")) drawn << line;
        return wanted == drawn ? QString() : wanted.join("; ") + "\n    drawn: " + drawn.join("; ");
    }
    void addLinks(const SourceNode* node, QStringList* lines) const {
        const auto* const join = static_cast<const Join*>(node->value);
        const Sources left = leaves(node->left), right = leaves(node->right);
        const QString label =
            join->joinType == SQLJoinTypeCustom ? QString::fromStdString(join->joinText) : "";
        const auto add = [&](const End& a, const End& b) {
            *lines << QString("%1%2 %3 %4").arg(join->joinType).arg(label, nameOf(a), nameOf(b));
        };
        std::vector<const SQLCompareConditionComponent*> compares;
        collect(join->condition, &compares);
        std::pair<End, End> tables;
        if (!left.empty()) tables.first.source = left.back();
        if (!right.empty()) tables.second.source = right.front();
        bool isBound = false;
        for (const auto* compare : compares) {
            const auto ends = endsOf(compare, left, right, false);
            if (!isBound && ends.first.source && ends.second.source) {
                tables = {{ends.first.source, ""}, {ends.second.source, ""}};
                isBound = true;
            }
            const auto fields = endsOf(compare, left, right, true);
            const bool isDrawn = join->needsCondition() && fields.first.source;
            if (isDrawn && fields.second.source) add(fields.first, fields.second);
        }
        if (tables.first.source && tables.second.source) add(tables.first, tables.second);
    }

    // ---- the history ----

    struct Standing {
        std::string query;
        std::vector<long> layers;
        QStringList items;
    };
    Standing standing() const {
        Standing all{m_desk.live()->recordQuery(), m_desk.live()->layerPath(), {}};
        for (const auto& [id, rect, isSized, isSelected] : m_desk.panel()->arrangement().entries)
            all.items << QString("%1 at %2 %3, %4 by %5")
                             .arg(id)
                             .arg(rect.origin.x)
                             .arg(rect.origin.y)
                             .arg(rect.size.width)
                             .arg(rect.size.height);
        all.items.sort();
        return all;
    }

    MonkeyDesk& m_desk;
};

}  // namespace QB::Test
