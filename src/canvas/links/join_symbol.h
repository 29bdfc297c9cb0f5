#pragma once

#include <string>

#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

/// The symbol in the middle of a link, which shows the type of the join: two overlapping circles of
/// which the part that the join keeps is filled, two circles linked by a cross, or two filled
/// circles with a pencil and a text for a join in the user's own words.
struct JoinSymbol {
    LumoPoint middle;
    double angle = 0;      // degrees; the left circle lies towards where the link starts
    int joinType = 0;      // as SQLJoinType; a comma (1) has no symbol
    std::string label;     // shown with type 0 only
    LumoColor background;  // of the diagram; without alpha the theme's canvas

    /// The angle at which it is painted: the pencil and the text of type 0 stand upright.
    double paintAngle() const;
};

/// Paints the symbol. In a pass with a picture cache (the screen) from a picture that all symbols
/// of one type, theme and scale share; else (export) as vectors.
void paint_drawJoinImage(LumoPainter* painter, const JoinSymbol& symbol);
/// Covers what lies behind the symbol with the colour of the canvas. Only for full outer joins; the
/// others have such circles in themselves. A part of paint_drawJoinImage.
void paint_drawJoinImageEraseBg(LumoPainter* painter, int joinType, const LumoColor& background);
/// The halo of a selected symbol, to be painted below it; shared in the same way.
void paint_drawJoinImageSelection(LumoPainter* painter, const JoinSymbol& symbol);
/// The outline of the symbol with a pen of 2 * @p h + 2, in the painter's colour.
void paint_drawJoinImageHalo(LumoPainter* painter, const JoinSymbol& symbol, double h);
/// The two circles as a path around (0, 0), not turned.
const QPainterPath& joinSymbolPath(int joinType);
/// The place of the text around (0, 0), in the turned space; empty unless there is one.
LumoDoubleRect joinLabelRect(const JoinSymbol& symbol);
/// Forgets the shared pictures, when the theme has changed.
void dropJoinSymbolPictures();
/// For tests: how many are kept, symbols and halos.
int joinSymbolPictureCount();

}  // namespace QB::DiagramLumo
