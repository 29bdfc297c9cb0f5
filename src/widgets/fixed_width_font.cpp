#include "widgets/fixed_width_font.h"

#include <QFontDatabase>
#include <QFontInfo>

namespace QB {

QFont fixedWidthFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (QFontInfo(font).fixedPitch()) return font;
    // Where the platform names no fixed-width font, Qt answers with the general one.
    font.setFamily(QStringLiteral("monospace"));
    font.setStyleHint(QFont::Monospace);
    return font;
}

}  // namespace QB
