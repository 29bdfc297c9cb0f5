#include "model/statement_record.h"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/liveness.h"
#include "model/record_archive.h"
#include "model/tree_walks.h"

namespace QB::Component {

/// Makes a component that was created a moment ago the one that a record speaks of.
class RecordedIdentity {
public:
    static bool assume(AbstractQueryComponent& component, long id) {
        if (!shareId(id)) return false;
        retireId(std::exchange(component.m_id, id));
        return true;
    }
};

}  // namespace QB::Component

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

using Source = SQLAbstractSourceComponent;
using Column = SQLAbstractColumnComponent;
using Condition = SQLAbstractConditionComponent;
using Statement = AbstractTopLevelQueryComponent;

constexpr std::string_view signature = "QB statement 1";

// ---- kinds --------------------------------------------------------------------------------------

/// Classes by number, from 1; 0 stands for a null pointer.
template <typename... Kinds>
struct KindList {
    template <typename Base>
    static int numberOf(const Base* component) {
        int number = 0;
        int kind = 0;
        ((++kind, number == 0 && ifKind<Kinds>(component) ? number = kind : 0), ...);
        return number;
    }

    template <typename Base>
    static Base* create(int number) {
        Base* component = nullptr;
        int kind = 0;
        ((++kind == number ? component = new Kinds : nullptr), ...);
        return component;
    }

    /// Calls @p use with the component as what it is.
    template <typename Base, typename Use>
    static void use(Base& component, int number, const Use& use) {
        int kind = 0;
        ((++kind == number ? use(static_cast<Kinds&>(component)) : void()), ...);
    }
};

using StatementKinds = KindList<SQLSelectStmtComponent>;
using SourceKinds =
    KindList<SQLIdentifierSourceComponent, SQLJoinSourceNodeComponent, SQLSubquerySourceComponent,
             SQLAnyExpressionSourceComponent, SQLBracketedSourceNodeComponent>;
using ColumnKinds = KindList<SQLFieldColumnComponent, SQLAnyExpressionColumnComponent>;
using ConditionKinds = KindList<SQLCompareConditionComponent, SQLConditionValueComponent,
                                SQLBracketedConditionComponent>;
/// ExtraDataBase itself comes last: the other one is one, too.
using ExtraDataKinds = KindList<Column::ExtraDataOrderDirection, Column::ExtraDataBase>;

// ---- what a record holds ------------------------------------------------------------------------

/// One list of the fields for both directions: an archive writes the statement into a record, or
/// fills it from one. statement_record_fields.cpp tells when a field is missing here.
///
/// A nested statement follows after the one that it stands in, so nothing here calls itself.
template <typename Archive>
class StatementExchange {
public:
    explicit StatementExchange(Archive& archive) : m_archive(archive) {}

    void statement(Statement*& slot) {
        if (m_archive.template component<StatementKinds>(slot) == 0) return;
        auto& whole = static_cast<SQLSelectStmtComponent&>(*slot);
        m_archive.text(whole.selectColumnExpr->selectOption);
        columns(whole.selectColumnExpr->columns);
        tree(whole.sourceExpr->root);
        chain(whole.whereExpr->root);
        columns(whole.groupByExpr->columns);
        chain(whole.havingExpr->root);
        columns(whole.orderByExpr->columns);
        limit(*whole.limitExpr);
    }

    void source(Source*& slot) {
        const int kind = m_archive.template component<SourceKinds>(slot);
        if (kind == 0) return;
        m_archive.text(slot->alias);
        SourceKinds::use(*slot, kind, [this](auto& known) { this->fields(known); });
    }

    void column(Column*& slot) {
        const int kind = m_archive.template component<ColumnKinds>(slot);
        if (kind == 0) return;
        m_archive.text(slot->alias);
        extraData(slot->extraData);
        ColumnKinds::use(*slot, kind, [this](auto& known) { this->fields(known); });
    }

private:
    void columns(std::vector<Column*>& list) {
        m_archive.list(list, [this](Column*& slot) { column(slot); });
    }

    void tree(SourceNode*& root) {
        m_archive.tree(root, [this](Source*& slot) { source(slot); });
    }

    /// The operands of a link, and what stands in its brackets, come before the next link.
    void chain(Condition*& first) {
        std::vector<Condition**> pending = {&first};
        const auto later = [&pending](Condition*& slot) {
            pending.push_back(&slot);
        };
        while (!pending.empty()) {
            Condition*& slot = *pending.back();
            pending.pop_back();
            const int kind = m_archive.template component<ConditionKinds>(slot);
            if (kind == 0) continue;
            m_archive.number(slot->logicGate);
            m_archive.flag(slot->negated);
            later(slot->next);
            ConditionKinds::use(*slot, kind, [&](auto& known) { fields(known, later); });
        }
    }

    void extraData(Column::ExtraDataBase*& slot) {
        const int kind = m_archive.template object<ExtraDataKinds>(slot);
        if (kind == 0) return;
        ExtraDataKinds::use(*slot, kind, [this](auto& known) { this->fields(known); });
    }

    void limit(ELEMSQLLimitExpr& element) {
        m_archive.number(element.offset);
        m_archive.number(element.rowCount);
        m_archive.flag(element.isPercent);
        m_archive.text(element.returnOption);
    }

    // ---- fields of the single classes

    void fields(SQLIdentifierSourceComponent& table) {
        m_archive.texts(table.path);
        m_archive.text(table.name);
    }
    void fields(SQLJoinSourceNodeComponent& join) {
        m_archive.number(join.joinType);
        m_archive.text(join.joinText);
        m_archive.flag(join.isUsing);
        chain(join.condition);
    }
    void fields(SQLSubquerySourceComponent& derived) { m_archive.nested(derived.subquery); }
    void fields(SQLAnyExpressionSourceComponent& any) { m_archive.text(any.expression); }
    void fields(SQLBracketedSourceNodeComponent&) {}

    void fields(SQLFieldColumnComponent& field) {
        m_archive.reference(field.source);
        m_archive.texts(field.parentPath);
        m_archive.reference(field.referencedColumn);
        m_archive.flag(field.isAsterisk);
        m_archive.text(field.fieldName);
        m_archive.text(field.aggregateFunction);
    }
    void fields(SQLAnyExpressionColumnComponent& any) { m_archive.text(any.expression); }
    void fields(Column::ExtraDataOrderDirection& order) { m_archive.number(order.direction); }
    void fields(Column::ExtraDataBase&) {}

    template <typename Later>
    void fields(SQLCompareConditionComponent& compare, const Later& later) {
        m_archive.number(compare.compareOp);
        later(compare.rightValue);
        later(compare.leftValue);
    }
    template <typename Later>
    void fields(SQLConditionValueComponent& value, const Later&) {
        columns(value.values);
    }
    template <typename Later>
    void fields(SQLBracketedConditionComponent& bracket, const Later& later) {
        later(bracket.inner);
    }

    Archive& m_archive;
};

enum NodeFlag { NodeFollows = 1, HasLeft = 2, HasRight = 4 };

// ---- writing ------------------------------------------------------------------------------------

/// Leaves all that it is given as it is.
class StatementWriter : public RecordWriter {
public:
    using Reached = std::unordered_set<const AbstractQueryComponent*>;

    void run(Statement* root) {
        m_nested.push_back(root);
        statements();
        const auto [sources, columns] = findOrphans();
        StatementExchange<StatementWriter> exchange(*this);
        list(sources, [&](auto orphan) { exchange.source(orphan.second); });
        list(columns, [&](auto orphan) { exchange.column(orphan.second); });
        statements();
    }

    template <typename Kinds, typename Base>
    int object(Base* slot) {
        const int kind = Kinds::numberOf(slot);
        number(kind);
        return kind;
    }

    template <typename Kinds, typename Base>
    int component(Base* slot) {
        const int kind = object<Kinds>(slot);
        if (kind == 0) return 0;
        number(slot->id());
        m_reached.insert(slot);
        return kind;
    }

    template <typename Target>
    void reference(Target* target) {
        number(target ? target->id() : 0);
        if (target) m_referenced.push_back(target);
    }

    void nested(Statement* statement) {
        flag(statement != nullptr);
        if (statement) m_nested.push_back(statement);
    }

    /// The children before their node: a table that is joined to a long run of joins is written
    /// behind them.
    template <typename Write>
    void tree(SourceNode* root, const Write& writeValue) {
        std::vector<std::pair<SourceNode*, bool>> steps = {{root, false}};
        while (!steps.empty()) {
            const auto [node, areChildrenWritten] = steps.back();
            steps.pop_back();
            if (!node) continue;
            if (areChildrenWritten) {
                number(NodeFollows | (node->left ? HasLeft : 0) | (node->right ? HasRight : 0));
                writeValue(node->value);
                continue;
            }
            steps.emplace_back(node, true);
            steps.emplace_back(node->right, false);
            steps.emplace_back(node->left, false);
        }
        number(0);
    }

private:
    template <typename Base>
    using ById = std::map<long, Base*>;

    void statements() {
        StatementExchange<StatementWriter> exchange(*this);
        for (; !m_nested.empty(); m_nested.pop_front()) {
            Statement* next = m_nested.front();
            exchange.statement(next);
        }
    }

    /// What was referred to and not reached, by ids; nothing that is part of another such thing.
    std::pair<ById<Source>, ById<Column>> findOrphans() {
        ById<const AbstractQueryComponent> orphans;
        std::vector<const AbstractQueryComponent*> pending = m_referenced;
        while (!pending.empty()) {
            const AbstractQueryComponent* const orphan = pending.back();
            pending.pop_back();
            if (m_reached.count(orphan) > 0) continue;
            Tools::visitOwnedComponents(orphan, [&](const AbstractQueryComponent* part) {
                orphans.erase(part->id());
                m_reached.insert(part);
            });
            orphans.emplace(orphan->id(), orphan);
            DetachedParts::References further;
            collectReferences(orphan, further);
            pending.insert(pending.end(), further.begin(), further.end());
        }
        return {ofClass<Source>(orphans), ofClass<Column>(orphans)};
    }

    template <typename Base>
    static ById<Base> ofClass(const ById<const AbstractQueryComponent>& components) {
        ById<Base> found;
        for (const auto& [id, component] : components) {
            const auto* known = dynamic_cast<const Base*>(component);
            if (known) found.emplace(id, const_cast<Base*>(known));
        }
        return found;
    }

    Reached m_reached;
    std::vector<const AbstractQueryComponent*> m_referenced;
    std::deque<Statement*> m_nested;  ///< to be written
};

// ---- reading ------------------------------------------------------------------------------------

class StatementReader : public RecordReader {
public:
    using RecordReader::RecordReader;

    /// Whatever it returns may be incomplete if the reader has failed.
    RestoredStatement run() {
        RestoredStatement result;
        if (readText() != signature) fail();
        Statement* root = nullptr;
        m_nested.push_back(&root);
        statements();
        result.statement.reset(static_cast<SQLSelectStmtComponent*>(root));
        StatementExchange<StatementReader> exchange(*this);
        const auto readOrphans = [&](auto* slot, auto read) {
            for (; readFlag(); slot = nullptr) {
                read(slot);
                result.detached.add(std::unique_ptr<AbstractQueryComponent>(slot));
            }
        };
        readOrphans(static_cast<Source*>(nullptr), [&](Source*& slot) { exchange.source(slot); });
        readOrphans(static_cast<Column*>(nullptr), [&](Column*& slot) { exchange.column(slot); });
        statements();
        if (!hasFailed()) resolve(m_sourceReferences);
        if (!hasFailed()) resolve(m_columnReferences);
        if (!root || !isAtEnd()) fail();
        return result;
    }

    template <typename Kinds, typename Base>
    int object(Base*& slot) {
        int kind = 0;
        number(kind);
        slot = Kinds::template create<Base>(kind);
        if (kind != 0 && !slot) fail();
        return slot ? kind : 0;
    }

    template <typename Kinds, typename Base>
    int component(Base*& slot) {
        const int kind = object<Kinds>(slot);
        if (kind == 0) return 0;
        const long id = readNumber();
        const bool isNew = m_read.emplace(id, slot).second;
        if (!isNew || !RecordedIdentity::assume(*slot, id)) fail();
        return kind;
    }

    void reference(Source*& slot) { noteReference(slot, m_sourceReferences); }
    void reference(Column*& slot) { noteReference(slot, m_columnReferences); }

    void nested(Statement*& slot) {
        if (readFlag()) m_nested.push_back(&slot);
    }

    template <typename Read>
    void tree(SourceNode*& root, const Read& readValue) {
        std::vector<std::unique_ptr<SourceNode>> whole;
        const auto take = [&](bool hasChild) -> SourceNode* {
            if (!hasChild) return nullptr;
            if (whole.empty()) return fail(), nullptr;
            SourceNode* const child = whole.back().release();
            whole.pop_back();
            return child;
        };
        for (std::int64_t flags = readNumber(); flags != 0; flags = readNumber()) {
            if ((flags & ~(HasLeft | HasRight)) != NodeFollows) fail();
            auto node = std::make_unique<SourceNode>();
            node->right = take((flags & HasRight) != 0);
            node->left = take((flags & HasLeft) != 0);
            readValue(node->value);
            whole.push_back(std::move(node));
        }
        if (whole.size() > 1) fail();
        if (whole.size() == 1) root = whole.front().release();
    }

private:
    template <typename Target>
    using References = std::vector<std::pair<Target**, long>>;

    /// After a failure, what was noted may lie in something that is gone.
    void statements() {
        StatementExchange<StatementReader> exchange(*this);
        for (; !hasFailed() && !m_nested.empty(); m_nested.pop_front())
            exchange.statement(*m_nested.front());
    }

    template <typename Target>
    void noteReference(Target*& slot, References<Target>& references) {
        if (const long id = readNumber()) references.emplace_back(&slot, id);
    }

    template <typename Target>
    void resolve(const References<Target>& references) {
        for (const auto& [slot, id] : references) {
            const auto target = m_read.find(id);
            *slot = target == m_read.end() ? nullptr : dynamic_cast<Target*>(target->second);
            if (!*slot) fail();
        }
    }

    std::unordered_map<long, AbstractQueryComponent*> m_read;
    References<Source> m_sourceReferences;
    References<Column> m_columnReferences;
    std::deque<Statement**> m_nested;  ///< where the statements belong that are to be read
};

}  // namespace

std::string recordStatement(const SQLSelectStmtComponent& statement) {
    StatementWriter writer;
    writer.text(signature);
    writer.run(&const_cast<SQLSelectStmtComponent&>(statement));
    return writer.take();
}

RestoredStatement restoreStatement(std::string_view record) {
    StatementReader reader(record);
    RestoredStatement restored = reader.run();
    if (reader.hasFailed()) return {};
    return restored;
}

}  // namespace QB
