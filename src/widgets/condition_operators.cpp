#include "widgets/condition_operators.h"

#include "platform/tolk/tolk.h"

namespace QB {
namespace {

/// Either a sign that is the same in all languages, or a localised word.
struct OperatorRow {
    const char* sign;
    unsigned word;
    ConditionOperand operand;
};

constexpr OperatorRow operatorRows[] = {
    {"=", 0, ConditionOperand::Single},
    {"<>", 0, ConditionOperand::Single},
    {"<", 0, ConditionOperand::Single},
    {"<=", 0, ConditionOperand::Single},
    {">", 0, ConditionOperand::Single},
    {">=", 0, ConditionOperand::Single},
    {nullptr, Tolk::TextOperatorLike, ConditionOperand::Single},
    {nullptr, Tolk::TextOperatorNotLike, ConditionOperand::Single},
    {nullptr, Tolk::TextOperatorContains, ConditionOperand::Pattern},
    {nullptr, Tolk::TextOperatorNotContains, ConditionOperand::Pattern},
    {nullptr, Tolk::TextOperatorBeginsWith, ConditionOperand::Pattern},
    {nullptr, Tolk::TextOperatorNotBeginsWith, ConditionOperand::Pattern},
    {nullptr, Tolk::TextOperatorEndsWith, ConditionOperand::Pattern},
    {nullptr, Tolk::TextOperatorNotEndsWith, ConditionOperand::Pattern},
    {nullptr, Tolk::TextOperatorIsNull, ConditionOperand::None},
    {nullptr, Tolk::TextOperatorIsNotNull, ConditionOperand::None},
    {nullptr, Tolk::TextOperatorIsEmpty, ConditionOperand::None},
    {nullptr, Tolk::TextOperatorIsNotEmpty, ConditionOperand::None},
    {nullptr, Tolk::TextOperatorBetween, ConditionOperand::Range},
    {nullptr, Tolk::TextOperatorNotBetween, ConditionOperand::Range},
    {nullptr, Tolk::TextOperatorIn, ConditionOperand::List},
    {nullptr, Tolk::TextOperatorNotIn, ConditionOperand::List},
};
static_assert(std::size(operatorRows) == CompareOpNotIn + 1);

bool isOperator(int compareOp) {
    return compareOp >= CompareOpEqual && compareOp <= CompareOpNotIn;
}

}  // namespace

QString operatorText(int compareOp) {
    if (compareOp == CompareOpNone) return '[' + Tolk::localize(Tolk::TextOperatorNone) + ']';
    if (!isOperator(compareOp)) return {};
    const OperatorRow& row = operatorRows[compareOp];
    return row.sign ? QString::fromLatin1(row.sign) : Tolk::localize(row.word);
}

ConditionOperand operandOf(CompareOp compareOp) {
    return isOperator(compareOp) ? operatorRows[compareOp].operand : ConditionOperand::None;
}

const std::vector<CompareOp>& operatorsInOrder() {
    static const std::vector<CompareOp> operators = [] {
        std::vector<CompareOp> all;
        for (int op = CompareOpEqual; op <= CompareOpNotIn; ++op)
            all.push_back(static_cast<CompareOp>(op));
        all.push_back(CompareOpNone);
        return all;
    }();
    return operators;
}

int listModeOf(CompareOp compareOp) {
    switch (operandOf(compareOp)) {
        case ConditionOperand::Range:
            return 2;
        case ConditionOperand::List:
            return 1;
        default:
            return 0;
    }
}

}  // namespace QB
