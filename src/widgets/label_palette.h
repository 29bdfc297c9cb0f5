#pragma once

#include <QColor>
#include <QPalette>

namespace QB {

/// What a text in a row is, which decides its colour.
enum class LabelColour {
    Value,        ///< what the user wrote
    Placeholder,  ///< a prompt to fill something in
    Operator,     ///< an operator or a logic word
    Invalid       ///< a part that the server would not understand
};

/// The colour of the host's present theme; ask again when the palette changes. Main thread.
QColor labelColour(LabelColour colour);

/// The contrast of two opaque colours as WCAG 2 defines it, from 1 to 21.
double contrastRatio(const QColor& a, const QColor& b);

/// @p colour where it can be read on @p background, that is with a contrast of at least 4.5;
/// otherwise the nearest colour of the same hue that can, darker or lighter.
QColor readableColour(const QColor& colour, const QColor& background);

/// The background of a selected row: a quarter of the highlight over the base.
QColor selectedRowColour(const QPalette& palette);

}  // namespace QB
