#include "tools/using_list.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "model/names.h"

namespace QB::Tools::SQL {

using namespace Component::SQL;

namespace {

/// The text of the list, which is made if the join has none yet.
std::string& textOfList(SQLJoinSourceNodeComponent* join) {
    if (!join->condition) join->condition = new SQLConditionValueComponent;
    auto& first = static_cast<SQLConditionValueComponent*>(join->condition)->firstValueRef();
    if (!first) first = new SQLAnyExpressionColumnComponent;
    return static_cast<SQLAnyExpressionColumnComponent*>(first)->expression;
}

/// The quote that ends what @p open begins; 0 if that is no quote.
char closingQuote(char open) {
    if (open == '[') return ']';
    return open == '"' || open == '`' ? open : '\0';
}

struct ListedName {
    std::string name;
    bool isQuoted = false;
    std::string written;  // with what stands around it
};

std::vector<ListedName> namesIn(const std::string& list) {
    std::vector<ListedName> names(1);
    char quote = 0;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const char letter = list[i];
        if (quote || letter != ',') names.back().written += letter;
        if (quote && letter == quote && i + 1 < list.size() && list[i + 1] == quote) {
            names.back().written += list[++i];
            names.back().name += letter;
        } else if (quote && letter == quote) {
            quote = 0;
        } else if (quote) {
            names.back().name += letter;
        } else if (closingQuote(letter)) {
            quote = closingQuote(letter);
            names.back().isQuoted = true;
        } else if (letter == ',') {
            names.emplace_back();
        } else if (letter != ' ') {
            names.back().name += letter;
        }
    }
    return names;
}

bool isSame(const ListedName& listed, const std::string& name) {
    return isSameName(listed.name, name, listed.isQuoted);
}

}  // namespace

bool canBeUsingList(const SQLJoinSourceNodeComponent* join) {
    if (!join->condition) return true;
    const auto* value = dynamic_cast<const SQLConditionValueComponent*>(join->condition);
    if (!value) return false;
    const auto* first = value->firstValue();
    return !first || dynamic_cast<const SQLAnyExpressionColumnComponent*>(first);
}

std::vector<std::string> usingColumns(const SQLJoinSourceNodeComponent* join) {
    if (!join->isUsing || !join->condition || !canBeUsingList(join)) return {};
    const auto* list = dynamic_cast<const SQLAnyExpressionColumnComponent*>(
        static_cast<const SQLConditionValueComponent*>(join->condition)->firstValue());
    std::vector<std::string> columns;
    for (ListedName& listed : namesIn(list ? list->expression : std::string()))
        if (!listed.name.empty()) columns.push_back(std::move(listed.name));
    return columns;
}

bool removeFromUsingList(SQLJoinSourceNodeComponent* join, const std::set<std::size_t>& places) {
    if (usingColumns(join).empty()) return false;
    std::string& list = textOfList(join);
    std::string rest;
    std::size_t place = 0;
    for (const ListedName& listed : namesIn(list)) {
        if (listed.name.empty() || places.count(place++) > 0) continue;
        rest += rest.empty() ? listed.written.substr(listed.written.find_first_not_of(' '))
                             : ',' + listed.written;
    }
    const bool isChange = rest != list;
    list = std::move(rest);
    return isChange;
}

bool addToUsingList(SQLJoinSourceNodeComponent* join, const std::string& name,
                    const std::string& quoted) {
    std::string& list = textOfList(join);
    const std::vector<ListedName> names = namesIn(list);
    const auto isName = [&name](const ListedName& listed) {
        return isSame(listed, name);
    };
    if (std::any_of(names.begin(), names.end(), isName)) return false;
    if (!list.empty()) list += ", ";
    list += quoted;
    return true;
}

}  // namespace QB::Tools::SQL
