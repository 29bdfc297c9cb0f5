#pragma once

#include <QString>
#include <vector>

#include "model/vocabulary.h"

namespace QB {

/// What stands on the right of an operator, and how its text is written there.
enum class ConditionOperand {
    None,     ///< nothing
    Single,   ///< one value
    Pattern,  ///< one text, written between the quotes of a LIKE pattern
    Range,    ///< two bounds
    List      ///< any number of values
};

/// The words for an operator, localised; empty for a number outside the enumeration.
QString operatorText(int compareOp);

ConditionOperand operandOf(CompareOp compareOp);

/// The operators in the order in which they are offered: 0 to 21, then none.
const std::vector<CompareOp>& operatorsInOrder();

/// How the stringifier is told to write what stands on the right, see conditionValueListModeKey.
int listModeOf(CompareOp compareOp);

}  // namespace QB
