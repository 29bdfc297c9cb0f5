#include "platform/sqlet/source_scope.h"

#include <algorithm>
#include <set>

#include "platform/sqlet/name_chain.h"
#include "platform/sqlet/names.h"
#include "platform/sqlet/text_position.h"
#include "platform/sqlet/words.h"

namespace sqlet {

namespace {

constexpr int dialectSQLServer = 5;
constexpr std::uint32_t maxTableQualifiers = 3;

/// As a text built from the parts has it; empty: none.
std::string schemaOfBareNames(const SqletParser& parser) {
    const bool isImplied = parser.dialect == dialectSQLServer && parser.defaultSchema->empty();
    return isImplied ? "dbo" : *parser.defaultSchema;
}

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Tables that a bare name finds outside the current schema, by the start of the name; those in
/// anySchema are never in it.
struct SystemTables {
    std::vector<std::string_view> prefixes;
    std::vector<std::string_view> names;
};

const SystemTables& systemTables(int dialect) {
    static const SystemTables none;
    static const SystemTables postgresql{{"pg_"}, {}};
    static const SystemTables oracle{{"ALL_", "USER_", "DBA_", "CDB_", "V$", "GV$", "SESSION_"},
                                     {"DUAL", "DICT", "DICTIONARY", "CAT", "COLS", "IND", "OBJ",
                                      "SEQ", "SYN", "TAB", "TABS", "NLS_SESSION_PARAMETERS"}};
    static const SystemTables sqlite{{"sqlite_", "pragma_"}, {}};
    switch (dialect) {
        case 2:
            return postgresql;
        case 3:
            return oracle;
        case 4:
            return sqlite;
        default:
            return none;
    }
}

/// The views that SQL Server finds under dbo and sys alone, whatever the current schema is.
bool isCompatibilityView(std::string_view name) {
    static const std::set<std::string_view> views = {
        "sysaltfiles",   "syscacheobjects", "syscharsets",   "syscolumns",      "syscomments",
        "sysconfigures", "sysconstraints",  "syscurconfigs", "sysdatabases",    "sysdepends",
        "sysdevices",    "sysfilegroups",   "sysfiles",      "sysforeignkeys",  "sysindexes",
        "sysindexkeys",  "syslanguages",    "syslockinfo",   "syslogins",       "sysmembers",
        "sysmessages",   "sysobjects",      "sysoledbusers", "sysperfinfo",     "syspermissions",
        "sysprocesses",  "sysprotects",     "sysreferences", "sysremotelogins", "sysservers",
        "systypes",      "sysusers"};
    return views.count(name) != 0;
}

}  // namespace

bool canAliasJoinText(const SqletParser& parser, TokenSpan span, TokenIndex alias) {
    if (alias < span.first) return alias + 2 == span.first;
    return alias == span.last + 1 ||
           (alias == span.last + 2 && parser.tokens[span.last + 1].keyword == Keyword::As);
}

void failAsNotShown(SqletParser& parser, TokenIndex index) {
    const Token& token = parser.tokens[index];
    parser.fail(SQLET_ERROR_UNSUPPORTED, token.offset, token.length,
                "'" + excerpt(parser.textOf(index)) + "' cannot be shown");
}

std::uint32_t schemaDepth(const SqletTable& source) {
    return nameChainOf(source).qualifierCount();
}

SourceScope::SourceScope(SqletParser& parser, SqletTable* from)
    : m_parser(parser), m_ignoresCase(sqlet_folding(parser.dialect) == SQLET_FOLDING_NONE) {
    if (!from) return;
    collect(from);
    settle();
    for (SqletTable* node : m_nodes)
        enter(node);
}

const SourceScope::Entry& SourceScope::find(const std::string& qualifier) const {
    static const Entry none;
    const auto found = m_entries.find(key(qualifier));
    return found == m_entries.end() ? none : found->second;
}

/// Sources and joins, without recursion: a clause of joins is as deep as it is long.
void SourceScope::collect(SqletTable* from) {
    std::vector<SqletTable*> waiting = {from};
    while (!waiting.empty()) {
        SqletTable* node = waiting.back();
        waiting.pop_back();
        m_nodes.push_back(node);
        if (node->right) waiting.push_back(node->right);
        if (node->left) waiting.push_back(node->left);
    }
}

void SourceScope::settle() {
    for (SqletTable* node : m_nodes) {
        settleAlias(*node);
        if (node->form == TableForm::Name && !isRebuildable(*node)) node->form = TableForm::Text;
    }
    m_schemas = countSchemas();
    if (!isMixed()) return;
    for (SqletTable* node : m_nodes) {
        if (isSystemTable(*node)) node->form = TableForm::Text;
    }
    m_schemas = countSchemas();
}

/// An alias that no host could quote again stays in the text of its source.
void SourceScope::settleAlias(SqletTable& table) {
    const TokenIndex alias = table.alias;
    if (alias == noToken) return;
    if (isDecodable(m_parser.text, m_parser.tokens[alias], m_parser.dialect)) return;
    table.alias = noToken;
    if (table.form == TableForm::Join || !canAliasJoinText(m_parser, table.span, alias))
        return failAsNotShown(m_parser, alias);
    table.form = TableForm::Text;
    table.subquery = nullptr;
    table.span.last = alias;
}

SourceScope::Schemas SourceScope::countSchemas() const {
    std::set<std::string> schemas;
    bool hasBareName = false;
    for (const SqletTable* node : m_nodes) {
        if (node->form != TableForm::Name) continue;
        const NameChain chain = nameChainOf(*node);
        if (chain.qualifierCount() == 0)
            hasBareName = true;
        else
            schemas.insert(decoded(chain.innermost()));
    }
    if (hasBareName && m_parser.defaultSchema) {
        const std::string schema = schemaOfBareNames(m_parser);
        if (!schema.empty()) schemas.insert(schema);
        hasBareName = false;
    }
    if (schemas.size() >= 2) return Schemas::Several;
    return hasBareName && !schemas.empty() ? Schemas::Unknown : Schemas::One;
}

bool SourceScope::isSchemaWritten(const SqletTable& source) const {
    if (isMixed()) return true;
    const NameChain chain = nameChainOf(source);
    if (chain.qualifierCount() == 0) return false;
    return chain.qualifierCount() > 1 || decoded(chain.first) != m_parser.defaultSchema;
}

bool SourceScope::isRebuildable(const SqletTable& table) const {
    const NameChain chain = nameChainOf(table);
    if (chain.qualifierCount() > maxTableQualifiers) return false;
    for (TokenIndex part = chain.first; part <= chain.last; part += 2) {
        if (!isDecodable(m_parser.text, m_parser.tokens[part], m_parser.dialect)) return false;
    }
    const Token& name = m_parser.tokens[chain.last];
    const bool isBare = chain.qualifierCount() == 0;
    switch (m_parser.dialect) {
        case 1:  // a word of the grammar and no table
            return !isBare || name.keyword != Keyword::Dual || name.kind != TokenKind::Word;
        case 5: {  // a temporary table lies in no schema
            const std::string decodedTable = decoded(chain.last);
            return decodedTable.front() != '#' &&
                   !(isBare && isCompatibilityView(withoutCase(decodedTable)));
        }
        default:
            return true;
    }
}

bool SourceScope::isSystemTable(const SqletTable& table) const {
    const NameChain chain = nameChainOf(table);
    if (table.form != TableForm::Name || chain.qualifierCount() > 0) return false;
    const SystemTables& tables = systemTables(m_parser.dialect);
    const std::string name = m_ignoresCase ? withoutCase(decoded(chain.last)) : decoded(chain.last);
    const bool hasPrefix =
        std::any_of(tables.prefixes.begin(), tables.prefixes.end(),
                    [&](std::string_view prefix) { return startsWith(name, prefix); });
    return hasPrefix ||
           std::find(tables.names.begin(), tables.names.end(), name) != tables.names.end();
}

void SourceScope::enter(SqletTable* table) {
    if (table->alias == noToken && table->form != TableForm::Name) return;
    const TokenIndex token = table->alias != noToken ? table->alias : nameChainOf(*table).last;
    const std::string name = decoded(token);
    Entry& entry = m_entries[key(name)];
    ++entry.count;
    entry.source = table;
    entry.token = token;
    entry.name = m_parser.arena.copyText(name);
}

std::string SourceScope::key(const std::string& name) const {
    return m_ignoresCase ? withoutCase(name) : name;
}

std::string SourceScope::decoded(TokenIndex token) const {
    return decodedName(m_parser.text, m_parser.tokens[token], m_parser.dialect);
}

}  // namespace sqlet
