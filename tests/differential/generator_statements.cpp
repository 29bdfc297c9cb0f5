#include "differential/statement_generator.h"

#include <utility>

#include "platform/sqlet/words.h"

namespace QB::Test {

StatementGenerator::StatementGenerator(DatabaseType family, std::string bareSchema,
                                       bool schemaIsKnown, unsigned seed)
    : m_family(family)
    , m_bit(familyBit(family))
    , m_bareSchema(std::move(bareSchema))
    , m_dice(seed) {
    for (SchemaTable& table : adversarialTables(family)) {
        const bool isHidden = table.name == "hidden";
        if (!isHidden || !schemaIsKnown) m_tables.push_back(std::move(table));
    }
    for (int i = 0; const char* word = sqlet_words(family, i, nullptr); ++i) {
        m_words.push_back(inSmallLetters(word));
    }
}

StatementTokens StatementGenerator::statement() {
    m_queries = 0;
    m_sourceNames.clear();
    StatementTokens tokens = query(nullptr, Depth::Top, nullptr).tokens;
    if (!is(onSQLite) && m_dice.chance(3)) tokens = inBrackets(tokens);
    if (m_dice.chance(3)) tokens += unsupportedTail();
    if (m_dice.chance(5)) tokens += ";";
    return tokens;
}

StatementTokens StatementGenerator::unsupportedTail() {
    if (is(onSQLite) || m_dice.chance(50)) return words("UNION SELECT 1");
    return words("FOR UPDATE");
}

StatementGenerator::Query StatementGenerator::query(const Scope* outer, Depth depth,
                                                    const std::vector<bool>* types) {
    ++m_queries;
    const std::set<std::string> outerNames = std::exchange(m_sourceNames, {});
    Scope scope;
    scope.outer = outer;
    const StatementTokens from = sources(scope, depth == Depth::Top ? 2 : 1);
    StatementTokens where;
    if (m_dice.chance(65)) {
        where += words("WHERE");
        where += condition(scope, depth == Depth::Top ? 4 : 2);
    }
    if (m_dice.chance(depth == Depth::Top ? 25 : 15)) chooseKeys(scope);

    Query result;
    result.tokens = words("SELECT");
    const bool isDistinct = m_dice.chance(15);
    if (isDistinct) result.tokens += words("DISTINCT");
    if (!isDistinct && m_dice.chance(3)) result.tokens += words("ALL");
    std::vector<Item> items;
    result.tokens += selectList(scope, types, depth, items, result.labels);
    result.tokens += words("FROM");
    result.tokens += from;
    result.tokens += where;
    if (!scope.keys.empty()) result.tokens += grouping(scope, items);
    if (scope.isGrouped && m_dice.chance(40)) {
        result.tokens += words("HAVING");
        result.tokens += condition(scope, 2);
    }
    if (m_dice.chance(depth == Depth::Top ? 45 : 8)) result.tokens += orderAndLimit(items);
    m_sourceNames = outerNames;
    return result;
}

void StatementGenerator::chooseKeys(Scope& scope) {
    std::vector<std::pair<StatementTokens, bool>> keys;
    for (unsigned count = m_dice.below(3); count > 0; --count) {
        const bool isText = m_dice.chance(30);
        StatementTokens key =
            isText ? column(Scope{scope.sources, scope.merged, nullptr, false, {}}, true)
                   : column(Scope{scope.sources, scope.merged, nullptr, false, {}}, false);
        const char first = key.front().text.front();
        const bool isColumn = first != '\'' && !(first >= '0' && first <= '9') && first != '$';
        if (isColumn) keys.emplace_back(std::move(key), isText);
    }
    scope.keys = std::move(keys);
    scope.isGrouped = true;
}

StatementTokens StatementGenerator::grouping(const Scope& scope, const std::vector<Item>& items) {
    StatementTokens tokens = words("GROUP BY");
    const bool isRollup = is(onPostgreSQL) && m_dice.chance(8);
    if (isRollup) tokens += words("ROLLUP (");
    for (std::size_t i = 0; i < scope.keys.size(); ++i) {
        if (i > 0) tokens += ",";
        tokens += isRollup ? scope.keys[i].first : groupingItem(scope.keys[i].first, items);
    }
    if (isRollup) tokens += ")";
    if (is(onMariaDB) && m_dice.chance(8)) tokens += words("WITH ROLLUP");
    return tokens;
}

/// The key itself or, where it is a column of the SELECT list, its alias or its number.
StatementTokens StatementGenerator::groupingItem(const StatementTokens& key,
                                                 const std::vector<Item>& items) {
    StatementTokens tokens;
    for (std::size_t i = 0; i < items.size(); ++i) {
        if (items[i].tokens.empty() || plainText(items[i].tokens) != plainText(key)) continue;
        if (m_dice.chance(30)) return tokens += std::to_string(i + 1);
        if (!items[i].alias.empty() && m_dice.chance(40))
            return tokens += columnName(items[i].alias);
    }
    if (m_dice.chance(5)) {
        tokens += "(";
        tokens += key;
        return tokens += ")";
    }
    tokens += key;
    if (is(onMariaDB) && m_dice.chance(6)) tokens += words("DESC");
    return tokens;
}

bool StatementGenerator::appendStar(const Scope& scope, StatementTokens& tokens,
                                    std::vector<Item>& items, std::vector<Label>& labels) {
    const bool isAlone = scope.sources.size() == 1;
    if (scope.isGrouped || !scope.merged.empty()) return false;
    const Source& source = m_dice.pick(scope.sources);
    if (source.columns.empty() || source.columns.front().name == "value") return false;
    if (source.name.empty() && !isAlone) return false;
    const bool isQualified = !source.name.empty() && (!isAlone || m_dice.chance(40));
    tokens += isQualified ? tableName(source.name) + ".*" : "*";
    for (const Label& label : source.columns) {
        labels.push_back(label);
        items.push_back({{}, "", label.isText});
    }
    return true;
}

StatementTokens StatementGenerator::selectList(Scope& scope, const std::vector<bool>* types,
                                               Depth depth, std::vector<Item>& items,
                                               std::vector<Label>& labels) {
    StatementTokens tokens;
    if (!types && m_dice.chance(12) && appendStar(scope, tokens, items, labels)) return tokens;
    const std::size_t count = types ? types->size() : 1 + m_dice.below(4);
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) tokens += ",";
        if (!types && m_dice.chance(6) && appendStar(scope, tokens, items, labels)) continue;
        items.push_back(item(scope, types ? (*types)[i] : m_dice.chance(30), depth));
        const Item& last = items.back();
        tokens += last.tokens;
        if (last.alias.empty()) continue;
        const bool isString =
            !is(onPostgreSQL) && m_dice.chance(4) && last.alias.find('\'') == std::string::npos;
        tokens += isString ? words("AS '" + last.alias + "'") : withAlias(last.alias, false);
        labels.push_back({last.alias, last.isText});
    }
    return tokens;
}

StatementGenerator::Item StatementGenerator::item(const Scope& scope, bool isText, Depth depth) {
    static const std::vector<std::string> aliases = {
        "y",     "n",    "total", "Y",    "O",     "id",     "My A", "2", "user", "order",
        "k",     "v",    "name",  "note", "count", "é",      "N",    "x", "1",    "true",
        "value", "a\"b", "T o",   "*",    "a.b",   "isnull", "-- c", "(", "`t`",  "ORDER"};
    Item made;
    made.isText = isText;
    if (!isText && m_dice.chance(6)) {
        made.tokens = condition(scope, 1);
    } else {
        made.tokens = isText ? text(scope, 2) : integer(scope, 2);
    }
    if (m_dice.chance(depth == Depth::Top ? 50 : 85)) made.alias = anyAlias(aliases);
    return made;
}

/// By every item, so that the order is total; a limit only behind that.
StatementTokens StatementGenerator::orderAndLimit(const std::vector<Item>& items) {
    std::vector<std::size_t> positions(items.size());
    for (std::size_t i = 0; i < items.size(); ++i)
        positions[i] = i;
    for (std::size_t i = items.size(); i > 1; --i)
        std::swap(positions[i - 1], positions[m_dice.below(i)]);
    StatementTokens tokens = words("ORDER BY");
    for (std::size_t i = 0; i < positions.size(); ++i) {
        if (i > 0) tokens += ",";
        tokens += orderItem(items[positions[i]], positions[i] + 1);
    }
    if (m_dice.chance(50)) tokens += limit();
    return tokens;
}

StatementTokens StatementGenerator::orderItem(const Item& item, std::size_t position) {
    static const std::vector<std::string> directions = {"", "", "ASC", "DESC", "DESC"};
    static const std::vector<std::string> nulls = {"", "", "NULLS FIRST", "NULLS LAST"};
    StatementTokens tokens;
    if (!item.alias.empty() && m_dice.chance(70)) {
        tokens += columnName(item.alias);
    } else if (!item.tokens.empty() && m_dice.chance(30)) {
        tokens += item.tokens;
    } else {
        tokens += std::to_string(position);
    }
    if (is(onPostgreSQL) && m_dice.chance(5)) return tokens += words("USING >");
    tokens += words(m_dice.pick(directions));
    if (!is(onMariaDB)) tokens += words(m_dice.pick(nulls));
    return tokens;
}

StatementTokens StatementGenerator::limit() {
    StatementTokens tokens = words(chooseForm(limitRules));
    for (StatementToken& token : tokens) {
        if (token.text == "<count>") token.text = std::to_string(1 + m_dice.below(5));
        if (token.text == "<offset>") token.text = std::to_string(m_dice.below(4));
    }
    return tokens;
}

}  // namespace QB::Test
