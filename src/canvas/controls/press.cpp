#include "canvas/controls/press.h"

namespace QB::DiagramLumo {

void makeClickable(LumoObject* object, LumoEventResponder down, LumoEventResponder up) {
    const auto paintAnew = [object](const LumoEvent&) {
        object->invalidate();
        return true;
    };
    object->registerEventResponder(LumoMouseEnter, paintAnew);
    object->registerEventResponder(LumoMouseLeave, paintAnew);
    object->registerEventResponder(LumoMouseDown, down);
    object->registerEventResponder(LumoMouseDoubleClick, std::move(down));
    object->registerEventResponder(LumoMouseUp, std::move(up));
}

bool respondToPress(LumoObject* object, const LumoEvent& event) {
    if (!event.containsEventKey(LumoButtonLeft)) return true;
    object->invalidate();
    return false;
}

bool respondToRelease(LumoObject* object, const LumoEvent& event,
                      const std::function<void()>& clicked) {
    const bool ofOtherButton =
        !event.containsEventKey(LumoButtonLeft) &&
        (event.containsEventKey(LumoButtonRight) || event.containsEventKey(LumoButtonMiddle));
    if (ofOtherButton) return true;
    // First, since the click may destroy the object.
    object->invalidate();
    if (lumoPointInRect(event.getMousePoint(), object->getBoundingRect())) clicked();
    return false;
}

}  // namespace QB::DiagramLumo
