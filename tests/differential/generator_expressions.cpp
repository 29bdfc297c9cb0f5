#include <sstream>
#include <utility>

#include "differential/statement_generator.h"
#include "platform/sqlet/words.h"

namespace QB::Test {
namespace {

int length(const std::string& text) {
    return static_cast<int>(text.size());
}

}  // namespace

std::string StatementGenerator::inSmallLetters(std::string text) {
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return text;
}

StatementTokens StatementGenerator::words(const std::string& form) {
    StatementTokens tokens;
    std::istringstream in(form);
    for (std::string word; in >> word;) {
        const bool isKeyword =
            word.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_") == std::string::npos;
        tokens.push_back({word, isKeyword});
    }
    return tokens;
}

const char* StatementGenerator::chooseForm(const std::vector<ExpressionRule>& rules) {
    unsigned total = 0;
    for (const ExpressionRule& rule : rules)
        total += is(rule.families) ? rule.weight : 0;
    unsigned choice = m_dice.below(total);
    for (const ExpressionRule& rule : rules) {
        if (!is(rule.families)) continue;
        if (choice < rule.weight) return rule.form;
        choice -= rule.weight;
    }
    return rules.front().form;
}

StatementTokens StatementGenerator::expand(const std::string& form, const Scope& scope, int depth) {
    StatementTokens tokens;
    for (StatementToken& word : words(form)) {
        if (word.text.size() > 2 && word.text.front() == '<' && word.text.back() == '>' &&
            word.text != "<=>") {
            tokens += expandPart(word.text, scope, depth - 1);
        } else {
            tokens.push_back(std::move(word));
        }
    }
    return tokens;
}

StatementTokens StatementGenerator::expandPart(const std::string& part, const Scope& scope,
                                               int depth) {
    static const std::vector<std::string> comparisons = {"=", "<>", "<", ">", "<=", ">=", "!="};
    static const std::vector<std::string> numbers = {"0", "1", "2", "3", "5", "6", "10", "20"};
    StatementTokens tokens;
    if (part == "<cmp>") return tokens += m_dice.pick(comparisons);
    if (part == "<intval>") return tokens += m_dice.pick(numbers);
    if (part == "<int>") return integer(scope, depth);
    if (part == "<text>") return text(scope, depth);
    if (part == "<bool>") return condition(scope, depth);
    if (part == "<intcol>") return column(scope, false);
    if (part == "<textcol>") return column(scope, true);
    if (part == "<query:scalar>") return scalarSubquery(scope);
    if (part == "<query:int>") return subquery(scope, {false});
    if (part == "<query:text>") return subquery(scope, {true});
    if (part == "<query:int,int>") return subquery(scope, {false, false});
    if (part == "<textval>") return tokens += chooseForm(textLiteralRules);
    if (part == "<int*>" || part == "<text*>") {
        for (unsigned count = 2 + m_dice.below(3); count > 0; --count) {
            tokens += part == "<int*>" ? integer(scope, depth - 1) : text(scope, depth - 1);
            if (count > 1) tokens += ",";
        }
    }
    return tokens;
}

StatementTokens StatementGenerator::integer(const Scope& scope, int depth) {
    if (scope.isGrouped && m_dice.chance(40)) return aggregate(scope);
    if (depth <= 0) return expandPart(m_dice.chance(70) ? "<intcol>" : "<intval>", scope, 0);
    return expand(chooseForm(integerRules), scope, depth);
}

StatementTokens StatementGenerator::text(const Scope& scope, int depth) {
    if (depth <= 0) return expandPart(m_dice.chance(60) ? "<textcol>" : "<textval>", scope, 0);
    return expand(chooseForm(textRules), scope, depth);
}

StatementTokens StatementGenerator::condition(const Scope& scope, int depth) {
    if (depth <= 0) return expand("<int> <cmp> <int>", scope, 0);
    return expand(chooseForm(conditionRules), scope, depth);
}

/// The arguments see the rows, not the groups.
StatementTokens StatementGenerator::aggregate(const Scope& scope) {
    Scope rows = scope;
    rows.isGrouped = false;
    return expand(chooseForm(aggregateRules), rows, 2);
}

StatementTokens StatementGenerator::column(const Scope& scope, bool isText) {
    if (scope.isGrouped) return groupedColumn(scope, isText);
    const Scope* from = scope.outer && m_dice.chance(15) ? scope.outer : &scope;
    if (from->isGrouped) from = &scope;
    std::vector<std::pair<const Source*, const Label*>> candidates;
    for (const Source& source : from->sources) {
        for (const Label& label : source.columns) {
            if (label.isText == isText) candidates.emplace_back(&source, &label);
        }
    }
    if (candidates.empty()) return expandPart(isText ? "<textval>" : "<intval>", scope, 0);
    const auto& [source, label] = m_dice.pick(candidates);
    return columnOf(*from, *source, label->name);
}

StatementTokens StatementGenerator::groupedColumn(const Scope& scope, bool isText) {
    std::vector<StatementTokens> keys;
    for (const auto& [tokens, keyIsText] : scope.keys) {
        if (keyIsText == isText) keys.push_back(tokens);
    }
    if (!keys.empty()) return m_dice.pick(keys);
    return isText ? expand("MAX( <textcol> )",
                           Scope{scope.sources, scope.merged, nullptr, false, {}}, 0)
                  : aggregate(scope);
}

StatementTokens StatementGenerator::columnOf(const Scope& scope, const Source& source,
                                             const std::string& name) {
    StatementTokens tokens;
    const std::string spelling = columnName(name);
    const bool mayStandAlone = source.name.empty() || !isAmbiguous(scope, name);
    if (mayStandAlone && (source.name.empty() || m_dice.chance(60))) return tokens += spelling;
    const std::string qualifier = tableName(source.name);
    if (!source.schema.empty() && m_dice.chance(20)) {
        return tokens += tableName(source.schema) + "." + qualifier + "." + spelling;
    }
    if (m_dice.chance(4)) {
        tokens += qualifier;
        tokens += ".";
        return tokens += spelling;
    }
    return tokens += qualifier + "." + spelling;
}

StatementTokens StatementGenerator::subquery(const Scope& scope, std::vector<bool> types) {
    StatementTokens tokens;
    tokens += "(";
    if (m_queries > 5) {
        const SchemaTable& from = m_tables[m_dice.below(3)];
        tokens += words(types.size() == 2 ? "SELECT id , n FROM"
                        : types[0]        ? "SELECT name FROM"
                                          : "SELECT id FROM");
        tokens += quotedName(from.name, m_family);
    } else {
        tokens += query(&scope, Depth::Inner, &types).tokens;
    }
    return tokens += ")";
}

StatementTokens StatementGenerator::scalarSubquery(const Scope& scope) {
    ++m_queries;
    const std::set<std::string> outerNames = std::exchange(m_sourceNames, {});
    Scope own;
    own.outer = &scope;
    StatementTokens from = table(own);
    StatementTokens tokens = words("( SELECT");
    tokens += aggregate(own);
    tokens += words("FROM");
    tokens += from;
    if (m_dice.chance(60)) {
        tokens += words("WHERE");
        tokens += condition(own, 1);
    }
    m_sourceNames = outerNames;
    return tokens += ")";
}

std::string StatementGenerator::folded(const std::string& name) const {
    return is(onPostgreSQL) ? name : inSmallLetters(name);
}

bool StatementGenerator::isAmbiguous(const Scope& scope, const std::string& name) const {
    if (scope.merged.count(folded(name)) > 0) return false;
    int found = 0;
    for (const Source& source : scope.sources) {
        for (const Label& label : source.columns)
            found += folded(label.name) == folded(name);
    }
    return found > 1;
}

/// In quotes or, where the bare word is that name, without and in any case that is still the name.
std::string StatementGenerator::spelled(const std::string& name, bool caseMatters) {
    const bool mayStandBare = sqlet_reads_as_name(m_family, name.data(), length(name)) != 0;
    if (!mayStandBare || m_dice.chance(20)) {
        if (!is(onSQLite)) return quotedName(name, m_family);
        const bool hasQuote = name.find('"') != std::string::npos;
        switch (m_dice.below(4)) {
            case 0:
                return "[" + name + "]";
            case 1:
                return "`" + name + "`";
            default:
                return hasQuote ? quotedName(name, m_family) : '"' + name + '"';
        }
    }
    if (caseMatters || !m_dice.chance(30)) return name;
    std::string word = name;
    for (char& c : word) {
        if (c >= 'a' && c <= 'z' && m_dice.chance(60)) c = static_cast<char>(c - 32);
    }
    return word;
}

std::string StatementGenerator::columnName(const std::string& name) {
    return spelled(name, false);
}

std::string StatementGenerator::tableName(const std::string& name) {
    const bool isString = is(onSQLite) && m_dice.chance(2) && name.find('\'') == std::string::npos;
    return isString ? "'" + name + "'" : spelled(name, is(onMariaDB));
}

StatementTokens StatementGenerator::withAlias(const std::string& alias, bool caseMatters) {
    StatementTokens tokens;
    const bool isPlain = sqlet_is_plain_word(m_family, alias.data(), length(alias)) != 0;
    const bool isDaring = isPlain && m_dice.chance(20);  // bare, whatever the word
    const std::string spelling = isDaring ? alias : spelled(alias, caseMatters);
    const unsigned flags = sqlet_word_class(m_family, spelling.data(), length(spelling));
    const bool needsAs = (flags & (SQLET_WORD_RESERVED | SQLET_WORD_NO_BARE_ALIAS)) != 0;
    if ((needsAs && !isDaring) || m_dice.chance(60)) tokens += words("AS");
    return tokens += spelling;
}

/// One of the usual ones or, now and then, any word of the server's grammar.
std::string StatementGenerator::anyAlias(const std::vector<std::string>& usual) {
    return m_dice.chance(12) ? m_dice.pick(m_words) : m_dice.pick(usual);
}

}  // namespace QB::Test
