#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/sqlet/parser.h"

namespace sqlet {

/// The sources of one FROM clause, as the qualifiers of its statement find them.
///
/// On the way it settles the sources themselves: a name that could not be rebuilt from its parts
/// becomes text, and is no longer found.
class SourceScope {
public:
    /// What stands behind a qualifier.
    struct Entry {
        SqletTable* source = nullptr;  ///< one of those that match
        const char* name = nullptr;    ///< alias or name of the source, decoded
        TokenIndex token = noToken;    ///< where that name stands
        std::size_t count = 0;         ///< how many sources match, 0: none
    };

    /// @p from may be null. Linear.
    SourceScope(SqletParser& parser, SqletTable* from);

    /// By alias or, without alias, by name; without regard to case unless the family folds names.
    const Entry& find(const std::string& qualifier) const;

    /// True if the sources may lie in several schemas, so that a text built from the parts keeps
    /// every schema: bare names lie in another than the explicit ones unless it is known better.
    bool isMixed() const { return m_schemas == Schemas::Several || m_schemas == Schemas::Unknown; }
    /// True if they do, whatever the current schema is.
    bool isSurelyMixed() const { return m_schemas == Schemas::Several; }

    /// True if the name of @p source, which has no alias, may be built with its schema.
    bool isSchemaWritten(const SqletTable& source) const;

private:
    /// In how many schemas the plain names lie.
    enum class Schemas { One, Unknown, Several };

    void collect(SqletTable* from);
    void settle();
    void settleAlias(SqletTable& table);
    Schemas countSchemas() const;
    bool isRebuildable(const SqletTable& table) const;
    bool isSystemTable(const SqletTable& table) const;
    void enter(SqletTable* table);
    std::string key(const std::string& name) const;
    std::string decoded(TokenIndex token) const;

    SqletParser& m_parser;
    const bool m_ignoresCase;
    Schemas m_schemas = Schemas::One;
    std::vector<SqletTable*> m_nodes;
    std::unordered_map<std::string, Entry> m_entries;
};

/// True if the alias of a node with @p span may become part of its text: it follows at once or
/// behind AS, or stands in front with an equals sign.
bool canAliasJoinText(const SqletParser& parser, TokenSpan span, TokenIndex alias);

/// Refuses the statement because of @p token.
void failAsNotShown(SqletParser& parser, TokenIndex token);

/// How many names stand in front of the name of @p source; 0 for what is no plain name.
std::uint32_t schemaDepth(const SqletTable& source);

}  // namespace sqlet
