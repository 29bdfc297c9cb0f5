#include "platform/sqlet/source_numbers.h"

#include "platform/sqlet/names.h"
#include "platform/sqlet/words.h"

namespace sqlet {

SourceNumbers::SourceNumbers(const SqletParser& parser, std::string_view defaultSchema)
    : m_parser(parser)
    , m_defaultSchema(defaultSchema)
    , m_ignoresCase(sqlet_folding(parser.dialect) == SQLET_FOLDING_NONE) {}

void SourceNumbers::add(const SqletTable& table) {
    const bool isTable = table.form == TableForm::Name;
    const TokenIndex named =
        table.alias != noToken ? table.alias : (isTable ? table.span.last : noToken);
    const auto number = static_cast<std::uint32_t>(m_tables.size());
    m_tables.push_back(&table);
    if (named == noToken) return;
    const std::string name = decoded(named);
    enter(m_byName, name, number);
    if (m_ignoresCase) enter(m_byFoldedName, withoutCase(name), number);
}

std::uint32_t SourceNumbers::find(const NameChain& chain) const {
    const std::string name = decoded(chain.innermost());
    std::uint32_t found = lookUp(m_byName, name);
    if (found == none && m_ignoresCase && m_byName.count(name) == 0)
        found = lookUp(m_byFoldedName, withoutCase(name));
    if (found == none || chain.qualifierCount() == 1) return found;
    return isPathOf(chain, *m_tables[found]) ? found : none;
}

/// A name that stands for several sources finds none.
void SourceNumbers::enter(Numbers& numbers, const std::string& name, std::uint32_t number) {
    const auto [entry, isNew] = numbers.emplace(name, number);
    if (!isNew) entry->second = none;
}

std::uint32_t SourceNumbers::lookUp(const Numbers& numbers, const std::string& name) {
    const auto found = numbers.find(name);
    return found == numbers.end() ? none : found->second;
}

/// True if what stands before the name of the table in @p chain is the end of its path.
bool SourceNumbers::isPathOf(const NameChain& chain, const SqletTable& table) const {
    if (table.alias != noToken || table.form != TableForm::Name) return false;
    const NameChain path = nameChainOf(table);
    const std::uint32_t wanted = chain.qualifierCount() - 1;
    if (path.qualifierCount() == 0)
        return wanted == 1 && !m_defaultSchema.empty() && decoded(chain.first) == m_defaultSchema;
    if (wanted > path.qualifierCount()) return false;
    const std::uint32_t skipped = path.qualifierCount() - wanted;
    for (std::uint32_t i = 0; i < wanted; ++i) {
        if (decoded(chain.qualifier(i)) != decoded(path.qualifier(skipped + i))) return false;
    }
    return true;
}

std::string SourceNumbers::decoded(TokenIndex token) const {
    return decodedName(m_parser.text, m_parser.tokens[token], m_parser.dialect);
}

}  // namespace sqlet
