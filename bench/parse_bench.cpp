// From text to components, beside what others need to read the same text. The gate is the last step
// of a parse, in which the statement is built and parsed again; "components" leaves it out.
//
// bench/gates.py counts the instructions of the functions called measured...
// Rooms: parser stringifier
// Peers: pg_query sqlite3
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "model/detached_parts.h"
#include "parser/query_parser.h"
#include "parser/statement_converter.h"
#include "platform/sqlet/sqlet.h"
#include "texts.h"
#ifdef JOINERY_HAS_PG_QUERY
#include <pg_query.h>
#endif
#ifdef JOINERY_HAS_SQLITE3
#include <sqlite3.h>
#endif

using namespace QB;
using namespace QB::Bench;

namespace {

constexpr DatabaseType family = DatabaseTypePostgreSQL;

/// Each reads the text and throws away what it made of it; false if the text was refused.
using Reader = bool (*)(const std::string& text);

[[gnu::noinline]] bool measuredTree(const std::string& text) {
    SqletParser* parser = sqlet_create(family, text.c_str(), 1);
    const bool isRead = sqlet_select(parser) != nullptr;
    sqlet_free(parser);
    return isRead;
}

[[gnu::noinline]] bool measuredComponents(const std::string& text) {
    SqletParser* parser = sqlet_create(family, text.c_str(), 1);
    const OwnedStatement statement(new Component::SQL::SQLSelectStmtComponent);
    SqletSelect* select = sqlet_select(parser);
    if (select) StatementConverter(family, "shop").convert(select, *statement);
    sqlet_free(parser);
    return select != nullptr;
}

[[gnu::noinline]] bool measuredParse(const std::string& text) {
    const OwnedStatement statement(new Component::SQL::SQLSelectStmtComponent);
    return QBQueryParser::parseStatement(statement.get(), text, family, "shop").isAccepted();
}

#ifdef JOINERY_HAS_PG_QUERY
bool readByPgQuery(const std::string& text) {
    const PgQueryParseResult result = pg_query_parse(text.c_str());
    const bool isRead = result.error == nullptr;
    pg_query_free_parse_result(result);
    return isRead;
}
#endif

#ifdef JOINERY_HAS_SQLITE3
sqlite3* databaseOfTexts() {
    static sqlite3* const database = [] {
        sqlite3* opened = nullptr;
        sqlite3_open(":memory:", &opened);
        sqlite3_exec(opened, schemaOfTexts, nullptr, nullptr, nullptr);
        return opened;
    }();
    return database;
}

bool readBySqlite(const std::string& text) {
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v2(databaseOfTexts(), text.data(),
                                        static_cast<int>(text.size()), &statement, nullptr);
    sqlite3_finalize(statement);
    return code == SQLITE_OK;
}
#endif

void readTexts(benchmark::State& state, Reader read, TextKind kind) {
    const std::string text = textOf(kind);
    if (!read(text)) return state.SkipWithError("refused");
    for (auto _ : state)
        benchmark::DoNotOptimize(read(text));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
    state.counters["bytes"] = static_cast<double>(text.size());
}

void measureOnAllTexts(const std::string& name, Reader read) {
    const auto add = [&](const char* textName, TextKind kind) {
        return benchmark::RegisterBenchmark((name + "/" + textName).c_str(), readTexts, read, kind);
    };
    add("1kB", TextKind::Ordinary1kB)->Iterations(500);  // fixed, for counting instructions
    add("10kB", TextKind::Ordinary10kB);
    add("in_list_1MB", TextKind::InList1MB)->Unit(benchmark::kMillisecond);
    add("chain_100k", TextKind::Chain100k)->Unit(benchmark::kMillisecond);
}

const bool isRegistered = [] {
    measureOnAllTexts("tree", measuredTree);
    measureOnAllTexts("components", measuredComponents);
    measureOnAllTexts("components_and_gate", measuredParse);
#ifdef JOINERY_HAS_PG_QUERY
    measureOnAllTexts("pg_query_parse", readByPgQuery);
#endif
#ifdef JOINERY_HAS_SQLITE3
    measureOnAllTexts("sqlite3_prepare_v2", readBySqlite);
#endif
    return true;
}();

}  // namespace
