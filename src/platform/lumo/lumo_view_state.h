#pragma once

#include <functional>

#include <QCursor>

#include "platform/lumo/lumo_picture_cache.h"
#include "platform/lumo/lumo_view_control.h"

struct LumoUIScrollView::State {
    State(LumoUIScrollView* view, LumoContext* context) : control(view, context) {}

    LumoPictureCache pictures;
    Control control;
    std::function<QCursor*(int)> cursorHandler;
    int cursorCode = 0;
    int paintPasses = 0;
    int objectsInLastPass = 0;
    QPointF wheelRest;  // of a wheel, less than a pixel
    bool menuKeyIsHandled = false;
};
