#include "canvas/controls/press.h"

namespace QB::DiagramLumo {

void paintAnewAsMouseComesAndGoes(LumoObject* object) {
    const auto paintAnew = [object](const LumoEvent&) {
        object->invalidate();
        return true;
    };
    object->registerEventResponder(LumoMouseEnter, paintAnew);
    object->registerEventResponder(LumoMouseLeave, paintAnew);
}

}  // namespace QB::DiagramLumo
