#include "apps/joinery-sql/script/sql_fragment.h"

#include <algorithm>
#include <utility>

#include "apps/joinery-sql/parsed_statement.h"
#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/script/sources.h"
#include "model/detached_parts.h"
#include "model/tree_walks.h"

namespace QB::Cli {

using namespace Component;
using namespace Component::SQL;

namespace {

constexpr const char* dummyList = "SELECT\n\t1";

OwnedStatement makeStatement() {
    return OwnedStatement(new SQLSelectStmtComponent);
}

void appendDummyColumn(SQLSelectStmtComponent& statement, const std::string& alias) {
    auto column = std::make_unique<SQLAnyExpressionColumnComponent>();
    column->expression = "1";
    column->alias = alias;
    statement.selectColumnExpr->columns.push_back(column.release());
}

std::vector<Source*> leavesOf(const SQLSelectStmtComponent& statement) {
    std::vector<Source*> leaves;
    Tools::visitSourceNodes(statement.sourceExpr->root, [&](const SourceNode* node) {
        if (!node->left) leaves.push_back(node->value);
    });
    return leaves;
}

/// A table that is called as @p source is.
std::unique_ptr<Source> makeNamesake(const Source& source) {
    auto namesake = std::make_unique<SQLIdentifierSourceComponent>();
    const auto* const table = dynamic_cast<const SQLIdentifierSourceComponent*>(&source);
    namesake->name = table ? table->name : "source";
    if (table) namesake->path = table->path;
    // A name that nobody can mean, for what has none.
    const bool isNameless = !table && source.alias.empty();
    namesake->alias = isNameless ? "nameless " + std::to_string(source.id()) : source.alias;
    return namesake;
}

/// Puts a further node with @p value to the right of the tree, behind a comma.
void appendLeaf(SourceNode*& root, std::unique_ptr<Source> value) {
    auto leaf = std::make_unique<SourceNode>();
    leaf->value = value.release();
    if (!root) {
        root = leaf.release();
        return;
    }
    auto comma = std::make_unique<SQLJoinSourceNodeComponent>();
    comma->joinType = SQLJoinTypeComma;
    auto join = std::make_unique<SourceNode>();
    join->value = comma.release();
    join->left = root;
    join->right = leaf.release();
    root = join.release();
}

/// Whether @p statement has anything but a SELECT list, sources and what is in @p element.
bool hasMoreThan(TopLevelQueryComponentElementEnum element,
                 const SQLSelectStmtComponent& statement) {
    const auto isStray = [element](TopLevelQueryComponentElementEnum other, bool isThere) {
        return other != element && isThere;
    };
    const ELEMSQLLimitExpr& limit = *statement.limitExpr;
    return !statement.selectColumnExpr->selectOption.empty() ||
           isStray(ElementWhere, statement.whereExpr->root) ||
           isStray(ElementGroupBy, !statement.groupByExpr->columns.empty()) ||
           isStray(ElementHaving, statement.havingExpr->root) ||
           isStray(ElementOrderBy, !statement.orderByExpr->columns.empty()) || limit.offset >= 0 ||
           limit.rowCount >= 0;
}

/// A statement with the names of the current one and nothing else, into which a text is put.
class Frame {
public:
    explicit Frame(const Session& session) : m_session(session), m_sources(sourcesOf(session)) {
        const OwnedStatement from = makeStatement();
        appendDummyColumn(*from, {});
        for (const Source* const source : m_sources)
            appendLeaf(from->sourceExpr->root, makeNamesake(*source));
        m_from = write(*from).substr(std::string(dummyList).size());
        const OwnedStatement list = makeStatement();
        for (Column* const column : session.statement()->selectColumnExpr->columns)
            if (!column->alias.empty()) m_columns.push_back(column);
        for (const Column* const column : m_columns)
            appendDummyColumn(*list, column->alias);
        m_list = m_columns.empty() ? dummyList : write(*list);
    }

    /// The statement with @p text in the clause that @p element is.
    OwnedStatement read(TopLevelQueryComponentElementEnum element, const std::string& text) const {
        OwnedStatement statement = parse(assemble(element, text));
        const std::size_t columnCount = std::max<std::size_t>(m_columns.size(), 1);
        if (hasMoreThan(element, *statement) || leavesOf(*statement).size() != m_sources.size() ||
            (element != ElementSelectColumn &&
             statement->selectColumnExpr->columns.size() != columnCount))
            throw Refusal("the text holds more than belongs into one clause");
        return statement;
    }

    OwnedStatement parse(const std::string& text) const {
        OwnedStatement statement = makeStatement();
        const QBParseOutcome outcome = QBQueryParser::parseStatement(
            statement.get(), text, m_session.family(), m_session.engine()->currentSchema());
        if (!outcome.isAccepted()) throw Refusal(reasonOf(outcome));
        return statement;
    }

    /// Has the fields in @p part refer to the current statement in place of @p statement.
    void adopt(const AbstractQueryComponent* part, const SQLSelectStmtComponent& statement) const {
        const std::vector<Source*> leaves = leavesOf(statement);
        const std::vector<Column*>& columns = statement.selectColumnExpr->columns;
        Tools::visitOwnedComponents(part, [&](const AbstractQueryComponent* component) {
            const auto* const found = dynamic_cast<const SQLFieldColumnComponent*>(component);
            if (!found) return;
            auto* const field = const_cast<SQLFieldColumnComponent*>(found);  // is ours
            field->source = counterpart(field->source, leaves, m_sources);
            setPath(*field);
            field->referencedColumn = counterpart(field->referencedColumn, columns, m_columns);
        });
    }

private:
    /// Names the table in full, as the panels do, however the text named it.
    static void setPath(SQLFieldColumnComponent& field) {
        const auto* const table = dynamic_cast<const SQLIdentifierSourceComponent*>(field.source);
        if (!table) return;
        field.parentPath = table->path;
        field.parentPath.push_back(table->name);
    }

    std::string write(const SQLSelectStmtComponent& statement) const {
        const auto stringifier =
            QBQueryComponentStringifier::createStringifier(m_session.engine()->databaseInfo());
        stringifier->setCurrentSchema(m_session.engine()->currentSchema());
        return stringifier->stringifyQuery(&statement);
    }

    std::string assemble(TopLevelQueryComponentElementEnum element, const std::string& text) const {
        switch (element) {
            case ElementSelectColumn:
                return "SELECT\n" + text + m_from;
            case ElementGroupBy:
                return m_list + m_from + "\nGROUP BY\n" + text;
            case ElementHaving:
                return m_list + m_from + "\nHAVING\n" + text;
            case ElementOrderBy:
                return m_list + m_from + "\nORDER BY\n" + text;
            default:
                return m_list + m_from + "\nWHERE\n" + text;
        }
    }

    /// What stands in @p here at the place that @p component has in @p there.
    template <typename T>
    static T* counterpart(T* component, const std::vector<T*>& there, const std::vector<T*>& here) {
        const auto found = std::find(there.begin(), there.end(), component);
        const auto place = static_cast<std::size_t>(found - there.begin());
        return place < here.size() ? here[place] : nullptr;
    }

    const Session& m_session;
    const std::vector<Source*> m_sources;
    std::vector<Column*> m_columns;  ///< those of the SELECT list that have an alias
    std::string m_list;
    std::string m_from;  ///< with its line feed before it; empty without sources
};

}  // namespace

std::vector<std::unique_ptr<Column>> readColumns(const Session& session,
                                                 TopLevelQueryComponentElementEnum element,
                                                 const std::string& text) {
    const Frame frame(session);
    const OwnedStatement statement = frame.read(element, text);
    std::vector<Column*>& list = element == ElementSelectColumn
                                     ? statement->selectColumnExpr->columns
                                 : element == ElementGroupBy ? statement->groupByExpr->columns
                                                             : statement->orderByExpr->columns;
    std::vector<std::unique_ptr<Column>> columns;
    for (const Column* const column : list)
        frame.adopt(column, *statement);
    for (Column* const column : std::exchange(list, {}))
        columns.emplace_back(column);
    return columns;
}

std::vector<std::unique_ptr<Condition>> readConditions(const Session& session,
                                                       TopLevelQueryComponentElementEnum element,
                                                       const std::string& text) {
    const auto clause = element == ElementHaving ? ElementHaving : ElementWhere;
    const Frame frame(session);
    const OwnedStatement statement = frame.read(clause, text);
    Condition*& root =
        (clause == ElementHaving ? statement->havingExpr : statement->whereExpr)->root;
    frame.adopt(root, *statement);
    std::vector<std::unique_ptr<Condition>> links;
    for (Condition* link = std::exchange(root, nullptr); link;) {
        links.emplace_back(link);
        link = std::exchange(link->next, nullptr);
    }
    return links;
}

std::unique_ptr<Source> readSource(const Session& session, const std::string& text) {
    const OwnedStatement statement =
        Frame(session).parse(std::string(dummyList) + "\nFROM\n" + text);
    SourceNode* const root = statement->sourceExpr->root;
    if (!root || leavesOf(*statement).size() != 1 || root->left ||
        hasMoreThan(ElementSource, *statement))
        throw Refusal("the text holds more than one source");
    root->ownsValue = false;
    return std::unique_ptr<Source>(root->value);
}

}  // namespace QB::Cli
