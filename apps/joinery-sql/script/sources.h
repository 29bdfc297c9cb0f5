#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/joinery-sql/script/session.h"
#include "apps/joinery-sql/script/words.h"
#include "model/components.h"

/// The sources of the current statement, and those that a script adds, by name.
namespace QB::Cli {

using Source = Component::SQL::SQLAbstractSourceComponent;

/// The tables, subqueries and free texts of the FROM clause, in text order.
std::vector<Source*> sourcesOf(const Session& session);

/// The name by which the script finds a source: its alias, or the name of a table.
std::string nameOf(const Source* source);

/// Whether a script means @p source by @p path.
bool isCalled(const Source* source, const std::vector<std::string>& path);

/// The source that has this alias or, without one, this name, with or without its schema.
/// Errors: a Refusal if there is none or more than one.
Source* findSource(const Session& session, const std::vector<std::string>& path);

/// As findSource; a number stands for a row of FROM.
Source* takeSource(Session& session, Words& words);

/// A field of a source; empty for all of them, written as *.
struct SourceField {
    Source* source;  // not owned: the statement's
    std::string field;
};
SourceField takeField(Session& session, Words& words);

/// The fields that @p source is known to have, fetched where they were not.
std::vector<std::string> fieldsOf(const Session& session, const Source* source);

/// A new source as it stands in a script: TABLE [AS ALIAS], (SELECT ...) [AS ALIAS], () for an
/// empty subquery, or other text of the FROM clause such as a function.
/// Errors: a Refusal for a table that does not exist.
std::unique_ptr<Source> takeNewSource(Session& session, Words& words);

}  // namespace QB::Cli
