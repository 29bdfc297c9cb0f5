#pragma once

#include <map>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"

namespace QB::Tools::SQL {

/// True for a field that is named without its source, and plainly: no wildcard, no aggregate.
bool isBareName(const Component::SQL::SQLFieldColumnComponent& field);

/// Whose the bare names in a SELECT list are, as far as the candidates tell: a name is the field of
/// the one source that has it, provided that the fields of all others are known; of a single source
/// that nothing is known of it is one, too. Gathers once what it is asked for.
/// Thread: may read the statement.
class BareNames {
public:
    using Source = Component::SQL::SQLAbstractSourceComponent;

    BareNames(QBEngine* engine, const Component::SQL::SQLSelectStmtComponent* statement);

    /// Null for a name of several sources or of none, and for one that does not stand bare in the
    /// SELECT list.
    const Source* ownerOf(const std::string& name) const;

private:
    std::map<std::string, const Source*> m_owners;  // by the name as written
};

}  // namespace QB::Tools::SQL
