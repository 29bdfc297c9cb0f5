#pragma once

#include <QString>
#include <memory>
#include <string>

#include "model/components.h"
#include "model/detached_parts.h"
#include "model/vocabulary.h"

/// Text that a user typed for a source or a join, to components and back.
/// Thread: may read the components given.
namespace QB {

/// What the words of a text depend on.
struct TextLanguage {
    QBDatabaseInfo info;
    std::string schema;  ///< the current one
};

/// What became of a text; exactly one of the first and the last is set.
struct SubqueryReading {
    OwnedStatement statement;
    std::string alias;  ///< what the text gave the subquery; empty if nothing
    QString error;      ///< why the text is no SELECT, localised
};

/// Reads a SELECT, also in brackets, and then with an alias behind. An empty text is refused.
SubqueryReading readSubquery(const std::string& text, const TextLanguage& language);

/// The statement on several lines; empty for null and for an empty one.
std::string subqueryText(const Component::AbstractTopLevelQueryComponent* statement,
                         const TextLanguage& language);

/// What became of a text; at most one is set, none of an empty text.
struct UsingReading {
    std::unique_ptr<Component::SQL::SQLAbstractConditionComponent> list;
    QString error;  ///< why the text is no list, localised
};

/// The column list of USING as a join holds it, from names separated by commas, in brackets or not.
UsingReading readUsingList(const std::string& text, const TextLanguage& language);

/// What readUsingList reads; empty for a join without list.
std::string usingListText(const Component::SQL::SQLJoinSourceNodeComponent* join);

}  // namespace QB
