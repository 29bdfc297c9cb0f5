// Sources, the links between them, and ticks: what the diagram does.

#include <algorithm>

#include "apps/joinery-sql/script/clause_rows.h"
#include "apps/joinery-sql/script/commands.h"
#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/script/sources.h"
#include "model/tree_walks.h"
#include "tools/foreign_key_joins.h"
#include "tools/identifier_tools.h"
#include "tools/join_tools.h"
#include "tools/selection_tools.h"

namespace QB::Cli {

using namespace Component::SQL;

namespace {

ClauseRows fromRows(Session& session) {
    return ClauseRows(session, {"from", ElementSource});
}

void removeJoins(Session& session, SQLJoinSourceNodeComponent* join,
                 SQLCompareConditionComponent* condition) {
    Tools::SQL::removeJoins(session.engine(), &session, {{join, condition}});
}

/// True if the first value of @p operand is that field.
bool isField(const SQLAbstractConditionComponent* operand, const SourceField& wanted) {
    const auto* const value = dynamic_cast<const SQLConditionValueComponent*>(operand);
    const auto* const field =
        value ? dynamic_cast<const SQLFieldColumnComponent*>(value->firstValue()) : nullptr;
    return field && field->source == wanted.source && field->fieldName == wanted.field;
}

bool compares(const SQLCompareConditionComponent& condition, const SourceField& a,
              const SourceField& b) {
    return (isField(condition.leftValue, a) && isField(condition.rightValue, b)) ||
           (isField(condition.leftValue, b) && isField(condition.rightValue, a));
}

/// Removes the first link of a join's own chain that compares the two fields.
bool removeLink(Session& session, const SourceField& a, const SourceField& b) {
    std::vector<SQLJoinSourceNodeComponent*> joins;
    Tools::visitSourceNodes(session.statement()->sourceExpr->root, [&](const SourceNode* node) {
        auto* const join = dynamic_cast<SQLJoinSourceNodeComponent*>(node->value);
        if (join) joins.push_back(join);
    });
    for (SQLJoinSourceNodeComponent* const join : joins) {
        for (auto* link = join->condition; link; link = link->next) {
            auto* const condition = dynamic_cast<SQLCompareConditionComponent*>(link);
            if (!condition || !compares(*condition, a, b)) continue;
            removeJoins(session, join, condition);
            return true;
        }
    }
    return false;
}

void requireKnownField(const Session& session, const SourceField& name) {
    const std::vector<std::string> known = fieldsOf(session, name.source);
    const bool isKnown = std::find(known.begin(), known.end(), name.field) != known.end();
    if (!isKnown && !known.empty() && !name.field.empty())
        throw Refusal(nameOf(name.source) + " has no field " + name.field);
}

void changeAll(Session& session, Source* source, bool includeWildcard, bool select) {
    fieldsOf(session, source);
    Tools::SQL::changeItemComponentAllSelection(session.engine(), &session, source, includeWildcard,
                                                select);
}

bool isLinkable(const Source* source) {
    return dynamic_cast<const SQLIdentifierSourceComponent*>(source) ||
           dynamic_cast<const SQLSubquerySourceComponent*>(source);
}

/// A source, or a field of one.
SourceField takeLinkEnd(Session& session, Words& words) {
    if (words.isNumberNext()) return {takeSource(session, words), {}};
    std::vector<std::string> names = words.path("a field or a source");
    for (Source* const source : sourcesOf(session))
        if (isCalled(source, names)) return {findSource(session, names), {}};
    const std::string field = names.back();
    names.pop_back();
    if (names.empty()) throw Refusal("no source of the query is called " + field);
    const SourceField end{findSource(session, names), field};
    requireKnownField(session, end);
    return end;
}

void changeTicks(Call& call, bool select) {
    Session& session = call.session;
    if (!call.words.skip("all")) {
        const SourceField field = takeField(session, call.words);
        if (select) requireKnownField(session, field);
        call.words.end();
        return Tools::SQL::changeItemComponentFieldSelection(session.engine(), &session,
                                                             field.source, field.field, select);
    }
    std::vector<Source*> sources = sourcesOf(session);
    bool includeWildcard = call.words.skip("and");
    if (!includeWildcard && !call.words.isAtEnd()) {
        sources = {takeSource(session, call.words)};
        includeWildcard = call.words.skip("and");
    }
    if (includeWildcard && !call.words.skip("*")) throw Refusal("expected * behind \"and\"");
    call.words.end();
    for (Source* const source : sources)
        changeAll(session, source, includeWildcard, select);
}

}  // namespace

std::string addSource(Call& call) {
    Session& session = call.session;
    std::unique_ptr<Source> made = takeNewSource(session, call.words);
    const bool isAlone = call.words.skip("alone");
    call.words.end();
    Source* const source = Tools::Identifier::addSourceComponentToExpression(
        session.engine(), &session, std::move(made));
    if (!source) throw Refusal("that cannot be added");
    fieldsOf(session, source);
    auto* const table = dynamic_cast<SQLIdentifierSourceComponent*>(source);
    if (table && !isAlone)
        Tools::SQL::makeJoinLinkByForeignKeyIfNecessary(session.engine(), &session, table);
    return {};
}

std::string removeSource(Call& call) {
    const Source* const source = takeSource(call.session, call.words);
    call.words.end();
    ClauseRows rows = fromRows(call.session);
    const ClauseRows::Items& items = rows.layout().items();
    for (int i = 0; static_cast<std::size_t>(i) < items.size(); ++i) {
        if (items[static_cast<std::size_t>(i)]->component != source) continue;
        rows.remove({i});
        return {};
    }
    return {};
}

std::string setAlias(Call& call) {
    Source* const source = takeSource(call.session, call.words);
    const std::string alias = call.words.isAtEnd() ? std::string() : call.words.name("an alias");
    call.words.end();
    call.session.modify(ElementSource, [&] { source->alias = alias; });
    return {};
}

std::string link(Call& call) {
    Source* sourceA = nullptr;
    Source* sourceB = nullptr;
    std::vector<Tools::SQL::FieldPair> fields;
    do {
        const SourceField a = takeLinkEnd(call.session, call.words);
        const SourceField b = takeLinkEnd(call.session, call.words);
        if (sourceA && (a.source != sourceA || b.source != sourceB))
            throw Refusal("all fields of a link belong to the same two sources, in one order");
        if (a.field.empty() != b.field.empty()) throw Refusal("a link has a field on either side");
        sourceA = a.source;
        sourceB = b.source;
        if (!a.field.empty()) fields.emplace_back(a.field, b.field);
    } while (call.words.skip(","));
    call.words.end();
    if (sourceA == sourceB) throw Refusal("a source cannot be linked with itself");
    if (!isLinkable(sourceA) || !isLinkable(sourceB))
        throw Refusal("only tables and subqueries can be linked");
    Tools::SQL::makeJoinLinkIfNecessary(call.session.engine(), &call.session, sourceA, sourceB,
                                        fields);
    return {};
}

std::string unlink(Call& call) {
    if (call.words.isNumberNext()) {
        const int row = call.words.number("the row of a join");
        auto* const join =
            fromRows(call.session).componentAt<SQLJoinSourceNodeComponent>(row, "join");
        call.words.end();
        if (join->joinType == SQLJoinTypeComma) throw Refusal("nothing is joined in that row");
        removeJoins(call.session, join, nullptr);
        return {};
    }
    const SourceField a = takeField(call.session, call.words);
    const SourceField b = takeField(call.session, call.words);
    call.words.end();
    if (!removeLink(call.session, a, b))
        throw Refusal("no join compares " + nameOf(a.source) + '.' + a.field + " with " +
                      nameOf(b.source) + '.' + b.field);
    return {};
}

std::string setJoinType(Call& call) {
    struct Kind {
        const char* name;
        SQLJoinType type;
    };
    constexpr Kind kinds[] = {{"inner", SQLJoinTypeInner}, {"left", SQLJoinTypeLeft},
                              {"right", SQLJoinTypeRight}, {"full", SQLJoinTypeFullOuter},
                              {"cross", SQLJoinTypeCross}, {"custom", SQLJoinTypeCustom}};
    const int row = call.words.number("the row of a join");
    auto* const join = fromRows(call.session).componentAt<SQLJoinSourceNodeComponent>(row, "join");
    const std::string name = call.words.keyword("a kind of join");
    const auto* const kind = std::find_if(std::begin(kinds), std::end(kinds),
                                          [&](const Kind& known) { return name == known.name; });
    if (kind == std::end(kinds))
        throw Refusal("there is no join " + name +
                      ": one of inner, left, right, full, cross, custom TEXT (a comma: unlink)");
    const bool isCustom = kind->type == SQLJoinTypeCustom;
    const std::string text = isCustom ? call.words.rest("the text of the join") : std::string();
    call.words.end();
    call.session.modify(ElementSource, [&] {
        join->joinType = kind->type;
        join->joinText = text;
    });
    return {};
}

std::string tick(Call& call) {
    changeTicks(call, true);
    return {};
}

std::string untick(Call& call) {
    changeTicks(call, false);
    return {};
}

}  // namespace QB::Cli
