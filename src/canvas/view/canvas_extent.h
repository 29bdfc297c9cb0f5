#pragma once

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

class QBLumoDiagram;

/// What the items and the links that show take of the diagram; a default rectangle if it is empty.
LumoRect contentExtent(const QBLumoDiagram* diagram);

}  // namespace QB::DiagramLumo
