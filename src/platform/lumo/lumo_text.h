#pragma once

#include <string>

#include <QFont>
#include <QGlyphRun>
#include <QList>
#include <QString>

#include "platform/lumo/lumo_types.h"

class QPainter;
class QPointF;

/// One line of text, laid out for any scale.
struct LumoTextLine {
    QString text;  // what is drawn, cut if it had to be
    double width = 0;
    double height = 0;  // of the font, whatever the text
    double ascent = 0;
    QFont font;
    QList<QGlyphRun> runs;  // around the baseline's start
};

/// The line for @p text, not wider than @p room unless that is negative. Valid until the next call.
const LumoTextLine& lumoTextLine(const std::string& text, const LumoFont& font, double room);
/// With the pen of @p painter; @p topLeft of the line's box.
void lumoDrawTextLine(QPainter* painter, QPointF topLeft, const LumoTextLine& line);
/// For tests: lines laid out so far.
long lumoTextLayouts();
