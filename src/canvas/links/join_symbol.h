#pragma once

#include <string>

#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

/// The symbol in the middle of a link: two circles (or a cross of two) that show the join type.
/// Types as in SQLJoinType. All paint around @p middle, turned by @p angle degrees.
void paint_drawJoinImage(LumoPainter* painter, LumoPoint middle, double angle, int joinType,
                         const std::string& label);
/// What lies behind the symbol, in the colour of the canvas.
void paint_drawJoinImageEraseBg(LumoPainter* painter, LumoPoint middle, double angle, int joinType,
                                bool selected);
/// The outline of the symbol with a pen of 2 * @p h + 2, in the painter's colour.
void paint_drawJoinImageHalo(LumoPainter* painter, LumoPoint middle, double angle, int joinType,
                             double h);
/// The outline of the symbol as a path around (0, 0).
QPainterPath joinSymbolPath(int joinType);
/// Forgets the shared pictures, one for each type, theme and scale.
void dropJoinSymbolPictures();

}  // namespace QB::DiagramLumo
