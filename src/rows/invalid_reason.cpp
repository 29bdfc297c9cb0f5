#include "rows/invalid_reason.h"

#include "platform/tolk/tolk.h"
#include "tools/validation.h"

namespace QB {

using namespace Tools::Validation;

QString invalidReasonText(int reason) {
    switch (reason) {
        case InvalidReferencedColumn:
            return Tolk::localize(Tolk::TextInvalidReferencedColumn);
        case InvalidSource:
            return Tolk::localize(Tolk::TextInvalidSource);
        case InvalidPath:
            return Tolk::localize(Tolk::TextInvalidPath);
        case InvalidField:
            return Tolk::localize(Tolk::TextInvalidField);
        case InvalidColumnOfUnnamed:
            return Tolk::localize(Tolk::TextInvalidColumnOfUnnamed);
        case InvalidUnnamedSubquery:
            return Tolk::localize(Tolk::TextInvalidUnnamedSubquery);
        case InvalidMissingValue:
            return Tolk::localize(Tolk::TextInvalidMissingValue);
        default:
            return QString();
    }
}

QString joinLackText(const Component::SQL::SQLJoinSourceNodeComponent* join, DatabaseType type) {
    switch (Tools::SQL::lackOf(join, type)) {
        case Tools::SQL::JoinLack::Condition:
            return Tolk::localize(Tolk::TextJoinConditionLacking);
        case Tools::SQL::JoinLack::Cross:
            return Tolk::localize(Tolk::TextJoinIsCross);
        case Tools::SQL::JoinLack::Natural:
            return Tolk::localize(Tolk::TextJoinIsNatural);
        default:
            return QString();
    }
}

QString joinFaultText(const Component::SQL::SQLJoinSourceNodeComponent* join, int reason,
                      DatabaseType type) {
    if (reason == InvalidSource) return Tolk::localize(Tolk::TextJoinConditionBlind);
    const QString lack = reason == InvalidMissingValue ? joinLackText(join, type) : QString();
    return lack.isEmpty() ? invalidReasonText(reason) : lack;
}

}  // namespace QB
