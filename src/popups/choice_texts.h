#pragma once

#include <QString>
#include <string>
#include <vector>

#include "model/components.h"

/// How the lines of a chooser's tree are called.
namespace QB {

QString utf8Text(const std::string& text);

/// "schema.table"; with the alias " AS " and that.
QString pathText(const std::vector<std::string>& names, const std::string& alias = {});

/// With the sign for all fields behind it, also where other texts run from right to left.
QString starText(const QString& of);

/// In one line, and cut where it is longer than a line of a tree.
QString shortened(const QString& text);

/// Whether another column can stand for the same as @p column: it has an alias, or is a field.
bool canBeChosenAgain(const Component::SQL::SQLAbstractColumnComponent& column);

/// What a column of the SELECT list is called in a list: "name (alias)".
QString selectColumnText(const Component::SQL::SQLAbstractColumnComponent& column);

}  // namespace QB
