#pragma once

#include <string>

namespace QB::DiagramLumo {

class QBLumoDiagram;

/// The diagram as text, one line for each item, row, link and route: names, rectangles, flags,
/// sides. Stable from run to run, without addresses; for tests and for looking at.
std::string dumpCanvas(const QBLumoDiagram* diagram);

}  // namespace QB::DiagramLumo
