#pragma once

#include <optional>
#include <string>
#include <vector>

#include "popups/choice_tree.h"

namespace QB {

/// What a chooser was opened for, as plain values that outlive the component.
struct EditedChoice {
    enum Kind { Nothing, Source, Field, Expression };

    Kind kind = Nothing;
    long columnId = -1;  ///< of the field column
    /// Of a source: qualifiers, the current schema if it has none, and name. Of a field: what its
    /// source goes by if that is in the statement, otherwise its qualifiers as written.
    std::vector<std::string> names;
    std::string alias;             ///< of the field's source
    long sourceId = -1;            ///< likewise; -1 if it is not in the statement
    long referencedColumnId = -1;  ///< of the column of the SELECT list that is meant
    bool isAsterisk = false;
    std::string fieldName;
    std::string aggregateFunction;
    std::string expression;

    /// Of a source, of a column, or of a condition the first value. What a field refers to is
    /// compared with what is in the current layer before it is looked into.
    /// Thread: main.
    static EditedChoice of(const Component::AbstractQueryComponent* component,
                           const QBEngine* engine);

    /// The row that stands for it, if it is there by now.
    std::optional<ChoiceRow> findIn(const ChoiceTree& tree) const;
};

}  // namespace QB
