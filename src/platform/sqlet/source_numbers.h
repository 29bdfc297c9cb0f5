#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/sqlet/name_chain.h"
#include "platform/sqlet/parser.h"

namespace sqlet {

/// The sources of one FROM clause, numbered in text order, and which of them a qualifier finds.
///
/// Works on names alone, apart from what the view makes of them: it is there to find the view's
/// mistakes.
class SourceNumbers {
public:
    static constexpr std::uint32_t none = 0xFFFFFFFFU;

    /// Tables without a schema lie in @p defaultSchema, which may be empty.
    SourceNumbers(const SqletParser& parser, std::string_view defaultSchema);

    void add(const SqletTable& table);

    /// The source that the qualifiers of @p chain, one at least, find; none for none or several.
    std::uint32_t find(const NameChain& chain) const;

private:
    using Numbers = std::unordered_map<std::string, std::uint32_t>;

    static void enter(Numbers& numbers, const std::string& name, std::uint32_t number);
    static std::uint32_t lookUp(const Numbers& numbers, const std::string& name);
    bool isPathOf(const NameChain& chain, const SqletTable& table) const;
    std::string decoded(TokenIndex token) const;

    const SqletParser& m_parser;
    const std::string_view m_defaultSchema;
    const bool m_ignoresCase;
    std::vector<const SqletTable*> m_tables;
    Numbers m_byName;
    Numbers m_byFoldedName;  ///< where the server ignores case
};

}  // namespace sqlet
