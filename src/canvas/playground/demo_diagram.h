#pragma once

#include <string>

namespace QB::DiagramLumo {

class QBLumoDiagram;
class QBLumoItem;
class QBLumoJoinLink;

/// Fills an empty diagram: tables, and now and then a subquery, in a grid, with links between
/// neighbours, a table link and a field link for each. Each table has @p fieldCount fields; with 0
/// from three to fourteen. The same numbers give the same diagram.
void fillDemoDiagram(QBLumoDiagram* diagram, int items, int links, int fieldCount = 0);

/// One more link between two fields, in both relation modes. Returns the one of the mode that
/// shows.
QBLumoJoinLink* addDemoLink(QBLumoDiagram* diagram, QBLumoItem* left, const std::string& leftField,
                            QBLumoItem* right, const std::string& rightField, int joinType);

}  // namespace QB::DiagramLumo
