#pragma once

#include "platform/lumo/lumo_types.h"

namespace QB::DiagramLumo {

/// What all objects of the diagram look like.
namespace Style {
extern const LumoFont itemFont;  // "Sans Serif", 11
inline constexpr LumoColor hover{61, 174, 233, 0.05};
inline constexpr LumoColor accentHalf{61, 174, 233, 0.4};
inline constexpr LumoColor accentStrong{61, 174, 233, 0.8};
inline constexpr LumoColor linkGrey{99, 99, 99, 1.0};
inline constexpr LumoColor symbolAccent{54, 170, 232, 1.0};
inline constexpr LumoColor labelAccent{34, 114, 188, 1.0};
inline constexpr LumoColor promptTeal{77, 208, 225, 1.0};
inline constexpr LumoColor promptFlash{179, 255, 255, 1.0};
inline constexpr double crossVectorX = 10.0 / 42.0;
inline constexpr double crossVectorY = 4.0 / 42.0;
inline constexpr double cornerRadius = 6.0;
inline constexpr int titleHeight = 30;
}  // namespace Style

/// The four colours that differ between a light and a dark theme.
struct ThemePalette {
    LumoColor text;  // text and symbols
    LumoColor itemBackground;
    LumoColor titleText;
    LumoColor canvas;  // canvas and check marks
};

/// The palette of the theme that the host shows now (QB::Callback::isDarkTheme; light without it).
const ThemePalette& themePalette();
bool isDarkTheme();

}  // namespace QB::DiagramLumo
