#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/sqlet/parser.h"

/// A statement as a row of symbols in which what a server reads the same looks the same.
///
/// The row follows the tokens of the text, all of them, and not the shape of the tree: the tree
/// only says which tokens are names, sources, aliases and joins. So a token that no accessor shows,
/// a bracket that is counted wrongly or an order that is lost stands out.
namespace sqlet {

enum class SymbolKind : std::uint8_t {
    Token,       ///< the token itself
    Word,        ///< text: a word or symbol that stands for several spellings
    Name,        ///< the name that the token stands for
    NameText,    ///< text: a name that is not in the text
    Qualifier,   ///< as Name, of a qualifier that finds no source, or several
    Source,      ///< number: a qualifier, or a chain of them, that finds this source of its FROM
    Alias,       ///< as Name
    Function,    ///< a bare function name
    Unreadable,  ///< something that this reading does not account for: equal to nothing
};

enum SymbolFlag : std::uint8_t {
    SymbolIsVerbatim = 1,     ///< of free text: only the very same bytes are equal
    SymbolIsUnqualified = 2,  ///< a name without qualifiers, where a bare word may mean a constant
    SymbolMayBeString = 4,    ///< in double quotes, and a string where no column has that name
};

struct Symbol {
    SymbolKind kind = SymbolKind::Unreadable;
    std::uint8_t flags = 0;
    TokenIndex token = noToken;  ///< where it stands; noToken: behind the text
    std::uint32_t number = 0;
    std::string_view text;  ///< static, or of the parser's text or the default schema
};

/// The symbols of the statement in @p parser, which is one that can be shown. Tables without a
/// schema count as tables of @p defaultSchema (empty: of none), which outlives the symbols. Linear.
std::vector<Symbol> canonicalSymbols(const SqletParser& parser, std::string_view defaultSchema);

}  // namespace sqlet
