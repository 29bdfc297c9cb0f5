#include "apps/joinery-sql/range_listing.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace QB::Cli {
namespace {

using namespace Component;
using namespace Component::SQL;

constexpr int excerptCodePoints = 60;

using Entry = std::pair<const AbstractQueryComponent*, QBRange>;

template <typename Kind>
bool is(const AbstractQueryComponent* component) {
    return dynamic_cast<const Kind*>(component) != nullptr;
}

/// Of two components with the same range the one that encloses the other has the lower rank.
struct Kind {
    bool (*matches)(const AbstractQueryComponent*);
    const char* name;
};

constexpr Kind kinds[] = {
    {is<SQLSelectStmtComponent>, "statement"},
    {is<SQLBracketedSourceNodeComponent>, "bracket"},
    {is<SQLJoinSourceNodeComponent>, "join"},
    {is<SQLSubquerySourceComponent>, "subquery"},
    {is<SQLIdentifierSourceComponent>, "table"},
    {is<SQLAnyExpressionSourceComponent>, "source expression"},
    {is<SQLBracketedConditionComponent>, "bracket"},
    {is<SQLCompareConditionComponent>, "compare"},
    {is<SQLConditionValueComponent>, "value"},
    {is<SQLFieldColumnComponent>, "field"},
    {is<SQLAnyExpressionColumnComponent>, "expression"},
};

const Kind* kindOf(const AbstractQueryComponent* component) {
    return std::find_if(std::begin(kinds), std::end(kinds),
                        [&](const Kind& kind) { return kind.matches(component); });
}

const char* kindName(const AbstractQueryComponent* component) {
    const Kind* const kind = kindOf(component);
    return kind == std::end(kinds) ? "unknown" : kind->name;
}

bool standsBefore(const Entry& a, const Entry& b) {
    const auto key = [](const Entry& entry) {
        return std::tuple(entry.second.location, -entry.second.length, kindOf(entry.first),
                          entry.first->id());
    };
    return key(a) < key(b);
}

std::string excerpt(const std::string& text, QBRange range) {
    std::string quoted = "\"";
    int codePoints = 0;
    const auto end = static_cast<std::size_t>(range.location + range.length);
    for (auto i = static_cast<std::size_t>(range.location); i < end; ++i) {
        const bool startsCodePoint = (static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U;
        if (startsCodePoint && ++codePoints > excerptCodePoints) return quoted + "\"...";
        switch (text[i]) {
            case '\n':
                quoted += "\\n";
                break;
            case '\r':
                quoted += "\\r";
                break;
            case '\t':
                quoted += "\\t";
                break;
            case '"':
            case '\\':
                quoted += '\\';
                [[fallthrough]];
            default:
                quoted += text[i];
        }
    }
    return quoted + '"';
}

}  // namespace

std::string rangeListing(const GeneratedText& generated) {
    std::vector<Entry> entries(generated.ranges.begin(), generated.ranges.end());
    std::sort(entries.begin(), entries.end(), standsBefore);
    std::string listing;
    for (const auto& [component, range] : entries) {
        listing += std::to_string(range.location) + '\t' + std::to_string(range.length) + '\t' +
                   kindName(component) + '\t' + excerpt(generated.text, range) + '\n';
    }
    return listing;
}

}  // namespace QB::Cli
