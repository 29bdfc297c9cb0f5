#include "apps/joinery-sql/script/sources.h"

#include "apps/joinery-sql/script/clause_rows.h"
#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/script/sql_fragment.h"
#include "model/tree_walks.h"
#include "platform/sqlet/names.h"
#include "tools/identifier_tools.h"
#include "tools/subquery_fields.h"

namespace QB::Cli {

using namespace Component::SQL;

namespace {

bool isLeaf(const Source* source) {
    return !dynamic_cast<const SQLJoinSourceNodeComponent*>(source) &&
           !dynamic_cast<const SQLBracketedSourceNodeComponent*>(source);
}

QBIdentifierCandidate* findTable(const Session& session, const QBIdentifierObjectPath& path) {
    session.fetch({path.schema});
    const QBEngine* const engine = session.engine();
    QBIdentifierCandidate* const schema = engine->findChildCandidate(nullptr, path.schema);
    return schema ? engine->findChildCandidate(schema, path.object) : nullptr;
}

/// What the user may have meant, for a message.
std::string otherSpelling(const QBEngine* engine, const QBIdentifierObjectPath& path) {
    const QBIdentifierCandidate* const schema = engine->findChildCandidate(nullptr, path.schema);
    if (!schema) return {};
    for (const QBIdentifierCandidateSnapshot& table : engine->childrenSnapshot(schema))
        if (sqlet::withoutCase(table.name) == sqlet::withoutCase(path.object))
            return ", but " + table.name;
    return {};
}

std::unique_ptr<Source> makeTable(const Session& session, const std::vector<std::string>& names) {
    const QBIdentifierObjectPath path = session.objectPath(names);
    const QBIdentifierCandidate* const table = findTable(session, path);
    if (!table)
        throw Refusal("there is no table " + path.schema + '.' + path.object +
                      otherSpelling(session.engine(), path));
    return Tools::Identifier::makeIdentifierComponent(session.engine(), table);
}

std::unique_ptr<Source> makeEmptySubquery(const Session& session) {
    auto source = std::make_unique<SQLSubquerySourceComponent>();
    source->subquery = session.engine()->createTopLevelQueryComponentForCurrentDatabase();
    return source;
}

}  // namespace

std::vector<Source*> sourcesOf(const Session& session) {
    std::vector<Source*> sources;
    Tools::visitSourceNodes(session.statement()->sourceExpr->root, [&](const SourceNode* node) {
        if (isLeaf(node->value)) sources.push_back(node->value);
    });
    return sources;
}

std::string nameOf(const Source* source) {
    const auto* const table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
    return table && table->alias.empty() ? table->name : source->alias;
}

bool isCalled(const Source* source, const std::vector<std::string>& path) {
    if (path.size() == 1) return nameOf(source) == path.front();
    const auto* const table = dynamic_cast<const SQLIdentifierSourceComponent*>(source);
    if (!table || table->name != path.back()) return false;
    return table->path == std::vector<std::string>(path.begin(), path.end() - 1);
}

Source* findSource(const Session& session, const std::vector<std::string>& path) {
    Source* found = nullptr;
    for (Source* const source : sourcesOf(session)) {
        if (!isCalled(source, path)) continue;
        if (found)
            throw Refusal("several sources are called " + shownPath(path) +
                          ": give them aliases, by the rows in \"show rows\"");
        found = source;
    }
    if (!found) throw Refusal("no source of the query is called " + shownPath(path));
    return found;
}

Source* takeSource(Session& session, Words& words) {
    if (!words.isNumberNext()) return findSource(session, words.path("a source"));
    const int number = words.number("a source");
    auto* const source = ClauseRows(session, {"from", ElementSource})
                             .componentAt<SQLAbstractSourceComponent>(number, "source");
    if (!isLeaf(source)) throw Refusal("row " + std::to_string(number) + " of from is no source");
    return source;
}

SourceField takeField(Session& session, Words& words) {
    const FieldName name = words.field("a field");
    return {findSource(session, name.source), name.field};
}

std::vector<std::string> fieldsOf(const Session& session, const Source* source) {
    QBEngine* const engine = session.engine();
    if (const auto* const subquery = dynamic_cast<const SQLSubquerySourceComponent*>(source))
        return Tools::knownSubqueryFields(engine, subquery);
    const auto result = Tools::Identifier::findTargetIdentifierCandidate(source, engine, true);
    if (!result.candidate) return {};
    session.fetch(engine->candidatePath(result.candidate));
    std::vector<std::string> fields;
    for (const QBIdentifierCandidateSnapshot& field : engine->childrenSnapshot(result.candidate))
        fields.push_back(field.name);
    return fields;
}

std::unique_ptr<Source> takeNewSource(Session& session, Words& words) {
    const std::string text = Words(words).rest("a table or a subquery");
    const bool isBracket = words.skip("(");
    const bool isEmptySubquery = isBracket && words.skip(")");
    const auto names = isBracket ? std::vector<std::string>() : words.path("a table");
    if (!isEmptySubquery && (isBracket || words.skip("("))) {
        words.rest();
        return readSource(session, text);
    }
    auto source = isEmptySubquery ? makeEmptySubquery(session) : makeTable(session, names);
    if (words.skip("as")) source->alias = words.name("an alias");
    return source;
}

}  // namespace QB::Cli
