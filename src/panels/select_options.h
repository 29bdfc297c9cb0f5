#pragma once

#include <QString>
#include <QStringList>
#include <vector>

#include "model/vocabulary.h"

namespace QB {

/// The option words of a SELECT that the family has a check box for.
QStringList selectOptionWords(DatabaseType family);

/// One choice of what follows SELECT.
struct QBSelectOption {
    QString text;  ///< as in the statement
    bool isChosen = false;
};

/// The choices for a statement with the option text @p text: first @p words, then what else is in
/// the text, one choice for each run of unknown words, as written. So no word of a text is lost,
/// also those that no panel knows, such as the columns of a DISTINCT ON.
std::vector<QBSelectOption> selectOptions(const QStringList& words, const QString& text);

/// The option text of the choices.
QString selectOptionText(const std::vector<QBSelectOption>& options);

/// Undoes the choices that cannot stand with the one at @p changed, which the user has just made or
/// taken back: DISTINCT against ALL and its other names, and ON without its DISTINCT.
void settleSelectOptions(std::vector<QBSelectOption>& options, std::size_t changed);

}  // namespace QB
