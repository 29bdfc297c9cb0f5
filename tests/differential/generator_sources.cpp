#include "differential/statement_generator.h"

namespace QB::Test {
namespace {

void absorb(std::set<std::string>& merged, const std::vector<std::string>& names) {
    merged.insert(names.begin(), names.end());
}

}  // namespace

StatementTokens StatementGenerator::sources(Scope& scope, int budget) {
    StatementTokens tokens = joined(scope, budget);
    while (m_dice.chance(18) && scope.sources.size() < 3) {
        Scope right;
        right.outer = scope.outer;
        tokens += ",";
        tokens += joined(right, 1);
        scope.sources.insert(scope.sources.end(), right.sources.begin(), right.sources.end());
        scope.merged.insert(right.merged.begin(), right.merged.end());
        if (is(onSQLite) && m_dice.chance(10)) {
            tokens += words("ON");
            tokens += condition(scope, 1);
        }
    }
    if (is(onPostgreSQL) && m_queries < 4 && m_dice.chance(6)) tokens += lateral(scope);
    return tokens;
}

StatementTokens StatementGenerator::joined(Scope& scope, int budget) {
    if (!is(onSQLite) && budget > 1 && m_dice.chance(8)) return deferredJoin(scope, budget - 1);
    StatementTokens tokens = primary(scope, budget);
    while (m_dice.chance(40) && scope.sources.size() < 4) {
        Scope right;
        right.outer = scope.outer;
        const StatementTokens rightTokens = primary(right, budget - 1);
        tokens += joinWith(scope, right, rightTokens);
    }
    return tokens;
}

/// a JOIN b JOIN c ON .. ON ..
StatementTokens StatementGenerator::deferredJoin(Scope& scope, int budget) {
    const std::vector<std::string> kinds = {"JOIN", "INNER JOIN", "LEFT JOIN", "RIGHT OUTER JOIN"};
    StatementTokens tokens = primary(scope, budget);
    Scope inner;
    inner.outer = scope.outer;
    tokens += words(m_dice.pick(kinds));
    tokens += primary(inner, 0);
    Scope last;
    last.outer = scope.outer;
    tokens += words(m_dice.pick(kinds));
    tokens += primary(last, 0);
    inner.sources.insert(inner.sources.end(), last.sources.begin(), last.sources.end());
    tokens += words("ON");
    tokens += condition(inner, 1);
    scope.sources.insert(scope.sources.end(), inner.sources.begin(), inner.sources.end());
    tokens += words("ON");
    return tokens += condition(scope, 1);
}

std::vector<std::string> StatementGenerator::commonColumns(const Scope& left, const Scope& right) {
    std::vector<std::string> common;
    for (const Source& source : right.sources) {
        for (const Label& label : source.columns) {
            for (const Source& other : left.sources) {
                for (const Label& otherLabel : other.columns) {
                    if (folded(label.name) == folded(otherLabel.name)) {
                        common.push_back(folded(label.name));
                    }
                }
            }
        }
    }
    return common;
}

StatementTokens StatementGenerator::joinWith(Scope& scope, const Scope& right,
                                             const StatementTokens& rightTokens) {
    std::vector<std::string> kinds = {"JOIN",       "INNER JOIN",      "INNER JOIN",
                                      "LEFT JOIN",  "LEFT JOIN",       "LEFT OUTER JOIN",
                                      "RIGHT JOIN", "RIGHT OUTER JOIN"};
    if (is(onSQLite | onPostgreSQL)) {
        kinds.insert(kinds.end(), {"FULL JOIN", "FULL OUTER JOIN"});
    }
    if (is(onMariaDB)) kinds.emplace_back("STRAIGHT_JOIN");
    const std::vector<std::string> common = commonColumns(scope, right);
    scope.sources.insert(scope.sources.end(), right.sources.begin(), right.sources.end());
    scope.merged.insert(right.merged.begin(), right.merged.end());

    std::string kind = m_dice.pick(kinds);
    const bool isStraight = kind == "STRAIGHT_JOIN";
    if (!isStraight && m_dice.chance(15)) {
        if (kind == "JOIN" && is(onSQLite) && m_dice.chance(30)) kind = "CROSS JOIN";
        StatementTokens tokens = words("NATURAL " + kind);
        absorb(scope.merged, common);
        return tokens += rightTokens;
    }
    if (m_dice.chance(12)) {
        StatementTokens tokens = words("CROSS JOIN");
        tokens += rightTokens;
        if (is(onPostgreSQL) || m_dice.chance(50)) return tokens;
        tokens += words("ON");
        return tokens += condition(scope, 1);
    }
    StatementTokens tokens = words(kind);
    tokens += rightTokens;
    const bool isInner = kind == "JOIN" || kind == "INNER JOIN" || isStraight;
    const bool mayLackCondition = is(onSQLite) || (is(onMariaDB) && isInner);
    if (mayLackCondition && m_dice.chance(8)) return tokens;
    if (!common.empty() && !isStraight && m_dice.chance(25)) {
        const std::string item = m_dice.pick(common);
        tokens += words("USING (");
        tokens += columnName(item);
        absorb(scope.merged, {item});
        const std::string second = m_dice.pick(common);
        if (second != item && m_dice.chance(30)) {
            tokens += ",";
            tokens += columnName(second);
            absorb(scope.merged, {second});
        }
        return tokens += ")";
    }
    tokens += words("ON");
    return tokens += condition(scope, 2);
}

StatementTokens StatementGenerator::primary(Scope& scope, int budget) {
    const unsigned choice = m_dice.below(100);
    if (budget > 0 && m_queries < 6 && choice < 14) return derivedTable(scope);
    if (choice < 18) return specialSource(scope);
    if (budget > 0 && choice < 28) return bracketed(scope, budget - 1);
    return table(scope);
}

StatementTokens StatementGenerator::bracketed(Scope& scope, int budget) {
    StatementTokens tokens = joined(scope, budget);
    if (scope.sources.size() == 1 && is(onPostgreSQL)) {  // no lone table in brackets there
        tokens += words("CROSS JOIN");
        tokens += table(scope);
    }
    tokens = inBrackets(tokens);
    if (m_dice.chance(15)) tokens = inBrackets(tokens);
    if (is(onMariaDB) || scope.sources.size() == 1 || !m_dice.chance(12)) return tokens;

    // An alias for all; what occurs once can still be named.
    Source whole{freeAlias(), "", {}};
    for (const Source& source : scope.sources) {
        for (const Label& label : source.columns) {
            if (!isAmbiguous(scope, label.name)) whole.columns.push_back(label);
        }
    }
    tokens += withAlias(whole.name, false);
    scope.sources = {whole};
    scope.merged.clear();
    return tokens;
}

StatementTokens StatementGenerator::inBrackets(const StatementTokens& content) {
    StatementTokens tokens;
    tokens += "(";
    tokens += content;
    return tokens += ")";
}

std::string StatementGenerator::freeAlias() {
    static const std::vector<std::string> aliases = {
        "x",  "o",     "g",    "a",    "b", "y",     "n", "t1",    "O",   "Y", "My A",
        "id", "order", "user", "name", "é", "count", "A", "value", "2nd", "s", "full"};
    for (int tries = 0; tries < 40; ++tries) {
        const std::string alias = anyAlias(aliases);
        if (m_sourceNames.insert(folded(alias)).second) return alias;
    }
    const std::string alias = "q" + std::to_string(m_sourceNames.size());
    m_sourceNames.insert(alias);
    return alias;
}

StatementTokens StatementGenerator::table(Scope& scope) {
    const SchemaTable& chosen = m_dice.pick(m_tables);
    const bool isBare = chosen.schema == m_bareSchema;
    StatementTokens tokens;
    const bool isQualified = !chosen.isTemporary() && (!isBare || m_dice.chance(15));
    if (is(onPostgreSQL) && m_dice.chance(4)) tokens += words("ONLY");
    tokens += isQualified ? tableName(chosen.schema) + "." + tableName(chosen.name)
                          : tableName(chosen.name);
    Source source;
    for (const SchemaColumn& column : chosen.columns)
        source.columns.push_back({column.name, column.isText});
    const bool isFree = m_sourceNames.count(folded(chosen.name)) == 0;
    if (isFree && m_dice.chance(50)) {
        m_sourceNames.insert(folded(chosen.name));
        source.name = chosen.name;
        source.schema = chosen.schema;
    } else {
        source.name = freeAlias();
        tokens += withAlias(source.name, is(onMariaDB));
    }
    if (is(onSQLite) && m_dice.chance(3)) tokens += words("NOT INDEXED");
    if (is(onMariaDB) && m_dice.chance(3)) tokens += words("USE INDEX ( )");
    scope.sources.push_back(source);
    return tokens;
}

/// Behind what is there already, which it may use.
StatementTokens StatementGenerator::lateral(Scope& scope) {
    const std::vector<std::string> joins = {", LATERAL (", "CROSS JOIN LATERAL (",
                                            "LEFT JOIN LATERAL ("};
    const std::string join = m_dice.pick(joins);
    StatementTokens tokens = words(join);
    Query inner = query(&scope, Depth::Inner, nullptr);
    tokens += inner.tokens;
    tokens += ")";
    Source source{freeAlias(), "", inner.labels};
    tokens += withAlias(source.name, false);
    if (join[0] == 'L') tokens += words("ON TRUE");
    scope.sources.push_back(source);
    return tokens;
}

StatementTokens StatementGenerator::setOperation(std::vector<Label>& labels) {
    const std::vector<std::string> operations = {"UNION", "UNION ALL", "EXCEPT", "INTERSECT"};
    const std::vector<bool> types = {false, true};
    Query left = query(nullptr, Depth::Inner, &types);
    labels = left.labels;
    left.tokens += words(m_dice.pick(operations));
    left.tokens += query(nullptr, Depth::Inner, &types).tokens;
    return left.tokens;
}

StatementTokens StatementGenerator::derivedTable(Scope& scope) {
    const std::set<std::string> outerNames = std::exchange(m_sourceNames, {});
    Source source;
    StatementTokens tokens;
    tokens += "(";
    if (m_dice.chance(12)) {
        tokens += setOperation(source.columns);
    } else {
        Query inner = query(nullptr, Depth::Inner, nullptr);
        tokens += inner.tokens;
        source.columns = inner.labels;
    }
    tokens += ")";
    if (m_dice.chance(6)) tokens = inBrackets(tokens);
    m_sourceNames = outerNames;
    if (!is(onSQLite) || m_dice.chance(75)) {
        source.name = freeAlias();
        tokens += withAlias(source.name, is(onMariaDB));
    }
    scope.sources.push_back(source);
    return tokens;
}

/// The alias with names for the columns behind it.
StatementTokens StatementGenerator::columnsNamed(Source& source,
                                                 const std::vector<Label>& columns) {
    StatementTokens tokens = withAlias(source.name, false);
    source.columns = columns;
    tokens += "(";
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (i > 0) tokens += ",";
        tokens += columnName(columns[i].name);
    }
    return tokens += ")";
}

StatementTokens StatementGenerator::specialSource(Scope& scope) {
    Source source;
    source.name = freeAlias();
    StatementTokens tokens;
    if (is(onSQLite)) {
        tokens += words("json_each( '[1,2,6]' )");
        source.columns = {{"value"}};
        tokens += withAlias(source.name, false);
    } else if (is(onMariaDB)) {
        tokens += words("( SELECT 2 AS id , 'two' AS name )");
        source.columns = {{"id"}, {"name", true}};
        tokens += withAlias(source.name, true);
    } else if (m_dice.chance(40)) {
        tokens += words("generate_series( 1 , 3 )");
        tokens += columnsNamed(source, {{"id"}});
    } else if (m_dice.chance(50)) {
        tokens += words("( VALUES ( 2 , 'two' ) , ( 6 , 'six' ) )");
        tokens += columnsNamed(source, {{"Y"}, {"name", true}});
    } else {
        tokens += words("g");
        tokens += columnsNamed(source, {{"y"}, {"id"}, {"n"}});
    }
    scope.sources.push_back(source);
    return tokens;
}

}  // namespace QB::Test
