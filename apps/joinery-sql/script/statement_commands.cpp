// What a statement has beside lists of rows: option, limit, layers.

#include "apps/joinery-sql/script/commands.h"
#include "apps/joinery-sql/script/refusal.h"
#include "apps/joinery-sql/script/sources.h"

namespace QB::Cli {

using namespace Component::SQL;

std::string setLimit(Call& call) {
    ELEMSQLLimitExpr wanted;
    if (!call.words.isAtEnd()) {
        if (call.words.isNumberNext()) wanted.rowCount = call.words.number("a count of rows");
        if (call.words.skip("offset")) wanted.offset = call.words.number("a count of rows");
        wanted.isPercent = call.words.skip("percent");
        if (call.words.skip("ties")) wanted.returnOption = "WITH TIES";
        call.words.end();
        const bool isCounted = wanted.rowCount >= 0;
        if (!isCounted &&
            (wanted.isPercent || wanted.returnOption != ELEMSQLLimitExpr().returnOption))
            throw Refusal("percent and ties go with a count");
    }
    ELEMSQLLimitExpr* const limit = call.session.statement()->limitExpr;
    call.session.modify(ElementLimit, [&] {
        limit->rowCount = wanted.rowCount;
        limit->offset = wanted.offset;
        limit->isPercent = wanted.isPercent;
        limit->returnOption = wanted.returnOption;
    });
    return {};
}

std::string setSelectOption(Call& call) {
    const std::string option = call.words.rest();
    ELEMSQLSelectColumnExpr* const list = call.session.statement()->selectColumnExpr;
    call.session.modify(ElementSelectColumn, [&] { list->selectOption = option; });
    return {};
}

namespace {

/// The number by which a layer without an alias is called: its place among the sources, from 1.
std::string layerName(const Session& session, const Source* source) {
    if (!source->alias.empty()) return source->alias;
    std::size_t number = 1;
    for (const Source* const other : sourcesOf(session)) {
        if (other == source) break;
        ++number;
    }
    return "(Subquery " + std::to_string(number) + ')';
}

void pushLayer(Session& session, Words& words) {
    Source* const source = takeSource(session, words);
    words.end();
    auto* const subquery = dynamic_cast<SQLSubquerySourceComponent*>(source);
    if (!subquery || !subquery->subquery)
        throw Refusal("the source " + nameOf(source) + " is no subquery");
    session.engine()->pushNewLayerTopLevelQueryComponent(subquery->subquery,
                                                         layerName(session, source));
}

}  // namespace

std::string changeLayer(Call& call) {
    const std::string way = call.words.keyword("push or pop");
    if (way == "push") {
        pushLayer(call.session, call.words);
    } else if (way != "pop") {
        throw Refusal("expected push or pop, found " + way);
    } else if (call.session.engine()->currentTopLevelQueryComponentLayer() == 0) {
        throw Refusal("this is the root layer already");
    } else {
        call.words.end();
        call.session.engine()->popCurrentLayerTopLevelQueryComponent();
    }
    return {};
}

}  // namespace QB::Cli
