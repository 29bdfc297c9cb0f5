#include "widgets/plain_tool_tip.h"

namespace QB {

QString plainToolTip(const QString& text) {
    constexpr int longest = 2000;
    if (text.isEmpty()) return text;
    const bool isCut = text.size() > longest;
    const QString shown = isCut ? text.left(longest) + QChar(0x2026) : text;
    return QStringLiteral("<p style='white-space:pre-wrap'>") + shown.toHtmlEscaped() +
           QStringLiteral("</p>");
}

}  // namespace QB
