#pragma once

#include <memory>
#include <string>
#include <vector>

#include "model/components.h"
#include "model/detached_parts.h"
#include "rows/row_database.h"
#include "widgets/condition_operators.h"

/// The values in conditions as the texts that a user reads and types. Thread: main.
namespace QB::ConditionValues {

using Component::SQL::SQLAbstractColumnComponent;
using Component::SQL::SQLAbstractConditionComponent;
using Component::SQL::SQLConditionValueComponent;
using Sources = std::vector<Component::SQL::SQLAbstractSourceComponent*>;
using Columns = std::vector<std::unique_ptr<SQLAbstractColumnComponent>>;

// ---- reading ----

/// The text of one item of a value; "" for null.
std::string itemText(const SQLAbstractColumnComponent* item, const RowDatabase& database);

/// The text of an operand as the condition writes it, with its list in @p listMode (see
/// conditionValueListModeKey); "" for null.
std::string operandText(const SQLAbstractConditionComponent* operand, int listMode,
                        const RowDatabase& database);

/// The text of a value that is a condition by itself, without NOT before it and without the rest of
/// its chain; costs the same however long that is.
std::string valueText(const SQLConditionValueComponent* value, const RowDatabase& database);

struct Range {
    std::string low;
    std::string high;
};
/// The bounds on the right of BETWEEN: two items of one value, or a chain of two values. What is
/// missing is "".
Range rangeOf(const SQLAbstractConditionComponent* right, const RowDatabase& database);

// ---- what a typed text becomes ----

/// Where an expression goes, which decides how it would be read there.
enum class Place {
    Condition,  ///< a condition by itself
    Left,       ///< the left operand of a comparison
    Right       ///< the right one, or a bound
};

/// @p text so that the server reads it as one piece in its place: in brackets where it would
/// otherwise fall apart (as "a OR b" does on the right of "="). A text that cannot be read either
/// way stays as it is.
/// Parses the text up to three times.
std::string asOnePiece(const std::string& text, Place place, const RowDatabase& database);

/// @p text between the quotes of a pattern: a single quote that stands alone is doubled.
std::string insideQuotes(const std::string& text);

/// The values of a list that was typed between the brackets of IN; a text that is no such list is
/// kept as one expression. Never empty. Fields that name one of @p sources refer to it.
Columns readList(const std::string& text, const Sources& sources, const RowDatabase& database);

// ---- writing; inside a modification block, what goes is added to @p removed ----

/// Replaces item @p index, or adds it, with empty expressions before it where there are too few.
void setItem(SQLConditionValueComponent* value, std::size_t index,
             std::unique_ptr<SQLAbstractColumnComponent> item, DetachedParts& removed);

/// Writes the bounds that differ from what rangeOf() gives; the others keep what they are.
void setRange(SQLConditionValueComponent* value, const Range& range, const RowDatabase& database,
              DetachedParts& removed);

/// As the first item; what adaptOperand() kept because it is no pattern goes.
void setPattern(SQLConditionValueComponent* value, std::unique_ptr<SQLAbstractColumnComponent> item,
                DetachedParts& removed);

void setList(SQLConditionValueComponent* value, Columns items, DetachedParts& removed);

/// Makes the right operand fit for another operator. Both bounds of a range are items of a list,
/// and a plain string has its quotes only where the operator writes none. What does not fit stays
/// in the model, unwritten, until it fits again: a field or an expression is no pattern, and a
/// missing value takes its place.
void adaptOperand(SQLConditionValueComponent* right, ConditionOperand from, ConditionOperand to,
                  DetachedParts& removed);

}  // namespace QB::ConditionValues
