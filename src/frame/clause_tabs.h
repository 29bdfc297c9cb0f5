#pragma once

#include <functional>
#include <vector>

#include "model/vocabulary.h"

class QWidget;

namespace QB {

class QBTopLevelElementPanelWidget;

/// One tab of the builder.
struct ClauseTab {
    const char* text;  // not owned: a literal; SQL words, the same in every language
    TopLevelQueryComponentElementEnum element;
    /// Makes the panel as a child of the given parent.
    std::function<QBTopLevelElementPanelWidget*(QWidget* parent)> createPanel;
};

/// All tabs, in the order in which they stand. A new panel gets its tab by its createPanel here.
std::vector<ClauseTab> allClauseTabs();

/// Whether the server's language has the clause: a family without statement model has none, and a
/// row limit came late to some.
bool hasClause(QBDatabaseInfo info, TopLevelQueryComponentElementEnum element);

}  // namespace QB
