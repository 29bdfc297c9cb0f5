#pragma once

#include "platform/lumo/lumo_object.h"

namespace QB::DiagramLumo {

/// True if an Up tells that a button other than the left one was released.
inline bool isReleaseOfOtherButton(const LumoEvent& event) {
    return !event.containsEventKey(LumoButtonLeft) &&
           (event.containsEventKey(LumoButtonRight) || event.containsEventKey(LumoButtonMiddle));
}

/// Makes @p object show what the mouse does over it.
void paintAnewAsMouseComesAndGoes(LumoObject* object);

}  // namespace QB::DiagramLumo
