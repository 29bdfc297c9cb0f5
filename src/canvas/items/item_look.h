#pragma once

#include <string>
#include <vector>

#include "platform/lumo/lumo_types.h"

class LumoObject;
class LumoPainter;

namespace QB::DiagramLumo {

/// The colours of a body in one state.
struct ItemColors {
    LumoColor title;
    LumoColor body;
    LumoColor border;
    LumoColor titleText;
};
/// Of the theme in force. The title's text reads on the title: 4.5 to 1 at least; the border stands
/// out of canvas and body.
ItemColors itemColors(bool selected);

/// A title in parts that follow one another: a name and, if there is an alias, that in brackets.
struct TitleText {
    std::string name;
    std::string alias;

    /// "<?>" if there is neither; the alias alone if there is no name.
    std::string whole() const;
    bool isUnknown() const { return name.empty() && alias.empty(); }
    /// The parts so that they take at most @p width: the name is shortened first, by "…" at its
    /// end, and the alias only when nothing is left of the name but that.
    std::vector<std::string> fitted(double width) const;
    bool isElided(double width) const;
};

/// The start of @p text with "…", of whole characters and many more than fit a line of @p width; a
/// text that is not much longer than that stays whole. So texts of any length cost little.
std::string lineStart(const std::string& text, double width);

/// Title strip, background and border of @p body, in its space. Lines cover whole device pixels.
void paintItemFrame(LumoPainter* painter, const LumoObject* body, const ItemColors& colors,
                    const std::vector<double>& dash);
/// @p title in the strip, from the left edge of @p area on.
void paintItemTitle(LumoPainter* painter, const TitleText& title, const LumoRect& area,
                    const LumoColor& color);

}  // namespace QB::DiagramLumo
