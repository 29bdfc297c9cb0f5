#include "canvas/base/canvas_style.h"

#include "model/callbacks.h"

namespace QB::DiagramLumo {

const LumoFont Style::itemFont("Sans Serif", 11);

bool isDarkTheme() {
    return Callback::isDarkTheme && Callback::isDarkTheme();
}

const ThemePalette& themePalette() {
    static const ThemePalette light{
        {0, 0, 0, 1}, {255, 255, 255, 1}, {0, 0, 0, 1}, {255, 255, 255, 1}};
    static const ThemePalette dark{
        {255, 255, 255, 1}, {48, 48, 48, 1}, {255, 255, 255, 1}, {29, 29, 29, 1}};
    return isDarkTheme() ? dark : light;
}

}  // namespace QB::DiagramLumo
