#pragma once

#include <QMetaType>
#include <QString>
#include <memory>
#include <string>

#include "engine/engine.h"
#include "model/components.h"

namespace QB {

/// The data hung on an item of a chooser's tree: names, each empty as the depth of the item
/// requires.
struct QBIdentifierChoiceItemData {
    QString catalogOrSchemaName;
    QString objectName;
    QString fieldName;
};

/// What the user chose for a column, as plain values that outlive the chooser and any refresh.
struct QBChosenColumn {
    enum Kind { Nothing, Field, Star, SelectColumn, Expression };

    Kind kind = Nothing;
    /// Of the source that the field belongs to; -1: all columns of all sources.
    long sourceId = -1;
    std::string fieldName;
    long selectColumnId = -1;  ///< of the column of the SELECT list
    std::string aggregateFunction;
    std::string expression;
    /// Of the column that was edited, if no other field was chosen; else -1. What that column names
    /// stays as it stands there, also where it names it without a table.
    long editedColumnId = -1;

    bool isField() const { return kind == Field || kind == Star || kind == SelectColumn; }
    bool keepsField() const { return editedColumnId != -1; }
};

/// The source of that id in the FROM clause of the current layer; null if there is none (any more).
/// Thread: main, or inside a modification block.
Component::SQL::SQLAbstractSourceComponent* sourceInCurrentLayer(const QBEngine* engine, long id);

/// Writes what was chosen into @p column: source, qualifiers and field name, or the referenced
/// column, and the aggregate; or the expression, which may be empty. Alias and extra data stay. A
/// column of the SELECT list that has no alias cannot be referred to: its field is written instead.
/// False, and nothing is written, if the column is of another class than the choice needs, or the
/// source or column chosen is no longer in the current layer, or nothing was chosen.
/// Thread: inside a modification block of the current layer, or for a column not linked yet.
bool fillColumn(Component::SQL::SQLAbstractColumnComponent* column, const QBChosenColumn& chosen,
                const QBEngine* engine);

/// A new column of the class that @p chosen needs, filled; null if fillColumn would be false.
std::unique_ptr<Component::SQL::SQLAbstractColumnComponent> makeColumn(const QBChosenColumn& chosen,
                                                                       const QBEngine* engine);

/// Hands alias and extra data of @p old over to @p replacement, and makes the columns of the
/// current layer that refer to @p old refer to it; not if it is written without the alias, as the
/// wildcard is: those columns then are marked as invalid instead of meaning something else.
/// Thread: inside a modification block.
void takeOverColumn(Component::SQL::SQLAbstractColumnComponent* old,
                    Component::SQL::SQLAbstractColumnComponent* replacement,
                    const QBEngine* engine);

}  // namespace QB

Q_DECLARE_METATYPE(QB::QBIdentifierChoiceItemData)
