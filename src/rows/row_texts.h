#pragma once

#include <QString>
#include <string>

#include "model/components.h"
#include "platform/tolk/tolk.h"
#include "rows/row_database.h"
#include "widgets/label.h"

class QBoxLayout;
class QWidget;

/// How rows say what they show: a prompt to fill something in stands in angle brackets, in the
/// placeholder colour; the full text is repeated in the tooltip. Names are not quoted. Main thread.
namespace QB {

struct RowText {
    QString text;
    LabelColour colour = LabelColour::Value;
    QString toolTip{};  ///< empty: the text
};

/// "<" the text ">".
QString promptText(Tolk::TextId id);

/// @p text, or the prompt if it is empty.
RowText textOrPrompt(const QString& text, Tolk::TextId prompt);

/// "(" @p alias ")", or the prompt for an alias.
RowText aliasText(const std::string& alias);

/// The word towards @p next, localised; for a gate that is none a prompt for one.
RowText logicGateText(SQLLogicGate gate);

/// The direction of a column of ORDER BY, or the prompt for one.
RowText directionText(const Component::SQL::SQLAbstractColumnComponent* column);

/// The name of a table, qualified where the text of the statement would qualify it; empty for a
/// placeholder.
QString tableName(const Component::SQL::SQLIdentifierSourceComponent* source,
                  const RowDatabase& database);

/// A field with what it belongs to, or an expression; a prompt for what has neither. Without the
/// alias.
RowText columnText(const Component::SQL::SQLAbstractColumnComponent* column,
                   const RowDatabase& database);

/// The text of @p component in the dialect of the database, in one line; as much of it as a row or
/// its tooltip can show.
QString textInOneLine(const Component::AbstractQueryComponent* component,
                      const RowDatabase& database);

/// The start of a text of the model, line breaks and what indents the next line as one blank.
QString oneLine(const std::string& text);

/// Shows @p text on @p label; marked as invalid, with the reason first in the tooltip and as the
/// description, unless @p reason is -1.
void showRowText(QBLabel* label, const RowText& text, int reason = -1);
/// The same with a reason in words; empty: it is valid.
void showRowText(QBLabel* label, const RowText& text, const QString& reason);

/// Leaves out what only says what kind of row it is where the row has no room for it.
void showCaptionIfRoom(QBLabel* caption, const QWidget* row);

/// Shows the NOT of a row on @p label: before all else in @p layout if the row is negated. Where it
/// is not but can be, while @p isOffered, dimmed and right behind @p last, so that nothing that can
/// be clicked moves under the mouse.
void showNegation(QBLabel* label, QBoxLayout* layout, QWidget* last, bool isNegated,
                  bool isOffered);

/// Shows the labels of @p other as those of @p row are: what a twin has to copy.
void copyVisibility(const QWidget* row, QWidget* other);

}  // namespace QB
