// Text to tokens. Instructions per byte of input, with the number of runs fixed:
//
//   valgrind --tool=callgrind --toggle-collect='sqlet::lex(*' lexer_bench --benchmark_filter=1024
//
// and the collected count over 2000 runs of 1024 bytes, for each dialect that ran.
// Rooms: sqlet
#include <benchmark/benchmark.h>

#include <string>

#include "platform/sqlet/lexer.h"

namespace {

/// Statements as people write them, cut to @p size bytes.
std::string ordinaryText(std::size_t size) {
    const std::string statement =
        "SELECT o.id, c.name AS customer_name, SUM(o.total) AS total, COUNT(*)\n"
        "FROM orders AS o\n"
        "    INNER JOIN customers AS c ON c.id = o.customer_id\n"
        "    LEFT JOIN countries ON countries.code = c.country_code\n"
        "WHERE o.created_at >= '2024-01-01' AND (o.status IN ('paid', 'sent') OR o.total > "
        "100.50)\n"
        "    AND c.name NOT LIKE 'test%' -- no test accounts\n"
        "GROUP BY o.id, c.name\n"
        "HAVING SUM(o.total) BETWEEN 10 AND 1000\n"
        "ORDER BY total DESC, c.name\n"
        "LIMIT 50;\n";
    std::string text;
    while (text.size() < size)
        text += statement;
    return text.substr(0, size);
}

std::string inList(std::size_t size) {
    std::string text = "SELECT * FROM t WHERE a IN (0";
    for (int i = 1; text.size() < size; ++i)
        text += ", " + std::to_string(i);
    return text + ")";
}

std::string strings(std::size_t size) {
    std::string text = "SELECT 'a'";
    while (text.size() < size)
        text += ", 'a longer string with '' a quote in it'";
    return text;
}

template <std::string (*makeText)(std::size_t)>
void tokens(benchmark::State& state) {
    const std::string text = makeText(static_cast<std::size_t>(state.range(0)));
    const int dialect = static_cast<int>(state.range(1));
    for (auto _ : state)
        benchmark::DoNotOptimize(sqlet::lex(text, dialect));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

BENCHMARK_TEMPLATE(tokens, ordinaryText)->ArgsProduct({{1024}, {1, 2, 3, 4, 5}})->Iterations(2000);
BENCHMARK_TEMPLATE(tokens, ordinaryText)->ArgsProduct({{10240}, {1, 2, 3, 4, 5}})->Iterations(200);
BENCHMARK_TEMPLATE(tokens, inList)->ArgsProduct({{1 << 20}, {2}});
BENCHMARK_TEMPLATE(tokens, strings)->ArgsProduct({{1 << 20}, {1, 2}});

}  // namespace
