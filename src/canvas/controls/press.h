#pragma once

#include <functional>

#include "platform/lumo/lumo_object.h"

namespace QB::DiagramLumo {

/// Makes @p object a control that is clicked: @p down answers presses, also the second one of a
/// double click, which would else be one on what the control lies on; @p up answers releases. It is
/// painted anew as the mouse comes and goes.
void makeClickable(LumoObject* object, LumoEventResponder down, LumoEventResponder up);

/// Takes a press of the left button and shows it; lets others pass.
bool respondToPress(LumoObject* object, const LumoEvent& event);
/// Takes the release, and calls @p clicked if it happens on @p object, which may destroy it. Lets
/// the release of another button pass.
bool respondToRelease(LumoObject* object, const LumoEvent& event,
                      const std::function<void()>& clicked);

}  // namespace QB::DiagramLumo
