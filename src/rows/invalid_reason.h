#pragma once

#include <QString>

namespace QB {

/// What a user is told of a part that is marked for @p reason, one of
/// Tools::Validation::InvalidReason; empty for any other number. Localised.
QString invalidReasonText(int reason);

}  // namespace QB
