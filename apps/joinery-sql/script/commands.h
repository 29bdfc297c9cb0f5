#pragma once

#include <optional>
#include <string>

#include "apps/joinery-sql/script/session.h"
#include "apps/joinery-sql/script/words.h"

/// What a script can say. A command is a row of the table in commands.cpp and a function that takes
/// its words one by one and returns what it prints, whole lines.
namespace QB::Cli {

/// One call of a command.
struct Call {
    Session& session;
    Words& words;                             ///< what stands behind the command's name
    const std::optional<std::string>& block;  ///< what stands between its line and "end"
};

/// Errors: a Refusal; the query is then as before, but for commands that do several things.
using CommandFunction = std::string (*)(Call&);

/// Runs one command and waits for all that it has set off.
/// Returns: what it prints. Errors: a Refusal with the reason.
std::string runCommand(Session& session, const std::string& text,
                       const std::optional<std::string>& block);

/// All commands with their arguments and what they do, for people.
std::string commandList();

/// The commands that the table names, by the file that they stand in.
/// @{
std::string setDialect(Call& call);  // setup_commands.cpp
std::string setSchema(Call& call);
std::string declareTable(Call& call);
std::string declareKey(Call& call);
std::string openFile(Call& call);
std::string parseText(Call& call);

std::string addSource(Call& call);  // source_commands.cpp
std::string removeSource(Call& call);
std::string setAlias(Call& call);
std::string link(Call& call);
std::string unlink(Call& call);
std::string setJoinType(Call& call);
std::string tick(Call& call);
std::string untick(Call& call);

std::string editSelect(Call& call);  // clause_commands.cpp
std::string editFrom(Call& call);
std::string editJoinCondition(Call& call);
std::string editWhere(Call& call);
std::string editGroup(Call& call);
std::string editHaving(Call& call);
std::string editOrder(Call& call);

std::string setLimit(Call& call);  // statement_commands.cpp
std::string setSelectOption(Call& call);
std::string changeLayer(Call& call);

std::string show(Call& call);  // view_commands.cpp
std::string showFields(Call& call);
std::string showKeys(Call& call);
std::string validate(Call& call);  // validate_command.cpp
/// @}

/// What edits of a clause can be asked for, for people.
std::string clauseEditList();

}  // namespace QB::Cli
