// What a script can look at.

#include <algorithm>

#include "apps/joinery-sql/script/clause_rows.h"
#include "apps/joinery-sql/script/commands.h"
#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/script/sources.h"
#include "model/dump.h"
#include "tools/foreign_key_joins.h"
#include "tools/subquery_fields.h"

namespace QB::Cli {

using namespace Component::SQL;

namespace {

std::string lines(const std::vector<std::string>& all) {
    std::string text;
    for (const std::string& line : all)
        text += line + '\n';
    return text;
}

std::string showSql(Call& call) {
    return call.session.engine()->buildQuery() + '\n';
}

std::string showRows(Call& call) {
    const std::string name =
        call.words.isAtEnd() ? "from" : call.words.keyword("the name of a clause");
    return ClauseRows(call.session, clauseOf(call.session, name, call.words)).dump();
}

std::string showStatement(Call& call) {
    return dumpStatement(call.session.statement());
}

std::string showLayers(Call& call) {
    const QBEngine* const engine = call.session.engine();
    std::vector<std::string> names;
    for (int layer = 0; layer <= engine->currentTopLevelQueryComponentLayer(); ++layer)
        names.push_back(std::to_string(layer) + ' ' +
                        engine->topLevelQueryComponentLayerName(layer));
    return lines(names);
}

std::string showChanges(Call& call) {
    return lines(call.session.takeAnnouncements());
}

struct View {
    const char* name;
    CommandFunction show;
};

constexpr View views[] = {{"sql", showSql},
                          {"rows", showRows},
                          {"statement", showStatement},
                          {"layers", showLayers},
                          {"changes", showChanges}};

}  // namespace

std::string show(Call& call) {
    const std::string name = call.words.keyword("what to show");
    const auto* const view = std::find_if(std::begin(views), std::end(views),
                                          [&](const View& known) { return name == known.name; });
    if (view == std::end(views)) throw Refusal("there is no command and no view \"" + name + '"');
    return view->show(call);
}

std::string showFields(Call& call) {
    const Source* const source = takeSource(call.session, call.words);
    const auto* const subquery = dynamic_cast<const SQLSubquerySourceComponent*>(source);
    if (!subquery) return lines(fieldsOf(call.session, source));
    std::vector<std::string> fields;
    Tools::obtainAndFetchSubqueryFieldList(
        call.session.engine(), subquery,
        [&fields](const SQLSubquerySourceComponent*, const std::vector<std::string>& found) {
            fields = found;
        });
    Session::waitForWork();
    return lines(fields);
}

std::string showKeys(Call& call) {
    auto* const table =
        dynamic_cast<SQLIdentifierSourceComponent*>(takeSource(call.session, call.words));
    if (!table) throw Refusal("only tables have keys");
    std::vector<std::string> found;
    Tools::SQL::findForeignKeyJoins(
        call.session.engine(), table,
        [&found](const std::vector<Tools::SQL::ForeignKeyJoin>& joins) {
            for (const Tools::SQL::ForeignKeyJoin& join : joins) {
                std::string line;
                for (const Tools::SQL::FieldPair& pair : join.fields)
                    line += (line.empty() ? "" : ", ") + nameOf(join.source) + '.' + pair.first +
                            " = " + nameOf(join.foreign) + '.' + pair.second;
                found.push_back(line);
            }
        });
    Session::waitForWork();
    return lines(found);
}

}  // namespace QB::Cli
