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

    bool isField() const { return kind == Field || kind == Star || kind == SelectColumn; }
};

/// Writes what was chosen into @p column: source, qualifiers and field name, or the referenced
/// column, and the aggregate; or the expression. Alias and extra data stay.
/// False, and nothing is written, if the column is of another class than the choice needs, or the
/// source or column chosen is no longer in the current layer, or nothing was chosen.
/// Thread: inside a modification block of the current layer, or for a column not linked yet.
bool fillColumn(Component::SQL::SQLAbstractColumnComponent* column, const QBChosenColumn& chosen,
                const QBEngine* engine);

/// A new column of the class that @p chosen needs, filled; null if fillColumn would be false.
std::unique_ptr<Component::SQL::SQLAbstractColumnComponent> makeColumn(const QBChosenColumn& chosen,
                                                                       const QBEngine* engine);

/// Hands alias and extra data of @p old over to @p replacement, and makes the columns of the
/// current layer's GROUP BY and ORDER BY that refer to @p old refer to it.
/// Thread: inside a modification block.
void takeOverColumn(Component::SQL::SQLAbstractColumnComponent* old,
                    Component::SQL::SQLAbstractColumnComponent* replacement,
                    const QBEngine* engine);

}  // namespace QB

Q_DECLARE_METATYPE(QB::QBIdentifierChoiceItemData)
