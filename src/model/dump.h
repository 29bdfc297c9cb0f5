#pragma once

#include <string>

#include "model/components.h"
#include "model/export.h"

namespace QB {

/// The component with all that it owns as indented text: the oracle of the tests and an aid when
/// debugging. Stable, without addresses or ids; equal dumps mean equal models. References are
/// written as the ordinal of what they point at in text order ("source 2"), or "elsewhere".
/// Null gives "(null)". One line a component; not for huge trees (indentation grows with depth).
QB_EXPORT std::string dumpStatement(const Component::AbstractQueryComponent* component);

/// The first line of that: the component without what it owns or, for a link, what follows it. Of a
/// reference it tells that there is one.
QB_EXPORT std::string dumpLine(const Component::AbstractQueryComponent* component);

}  // namespace QB
