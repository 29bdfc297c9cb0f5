#pragma once

#include <functional>
#include <string>

#include "model/components.h"
#include "model/vocabulary.h"

/// How rooms that stand beside the text generator reach it: the room that generates text installs
/// its function here when it is loaded.
namespace QB {

/// Gives a name as it is to stand in the text.
using QuoteName = std::function<std::string(const std::string& name)>;

/// The text of @p component for a server, with @p schema the current one; names as @p quote writes
/// them instead of the host. Any thread, under the same conditions as the generator.
using StatementText = std::string (*)(const Component::AbstractQueryComponent* component,
                                      QBDatabaseInfo info, const std::string& schema,
                                      const QuoteName& quote);

/// Replaces the function; null for none. Any thread.
void installStatementText(StatementText function);

/// Null while none is installed: the program is linked without the generator.
StatementText statementText();

}  // namespace QB
