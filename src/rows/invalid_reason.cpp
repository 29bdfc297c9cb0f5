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

}  // namespace QB
