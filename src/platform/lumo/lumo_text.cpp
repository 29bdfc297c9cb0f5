#include "platform/lumo/lumo_text.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <QCache>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPaintEngine>
#include <QPainter>
#include <QTextLayout>

#include "platform/lumo/lumo_paint.h"

namespace {

constexpr int keptLines = 8192;

QFont qtFont(const LumoFont& font) {
    QFont result(QString::fromStdString(font.family));
    // In pixels, so that nothing depends on the dots per inch of a screen.
    result.setPixelSize(std::max(1, int(std::lround(font.size * 96.0 / 72.0))));
    result.setBold(font.bold);
    result.setItalic(font.italic);
    // Grey edges look the same on a window and in a transparent picture; light hinting leaves the
    // widths alone, so that a line that fits fits at every zoom.
    result.setStyleStrategy(
        QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    result.setHintingPreference(QFont::PreferVerticalHinting);
    return result;
}

struct Face {
    explicit Face(const LumoFont& wanted) : key(wanted), font(qtFont(wanted)), metrics(font) {}
    LumoFont key;
    QFont font;
    QFontMetricsF metrics;
};

struct LineKey {
    int face = 0;
    double room = -1;
    std::string text;
};
bool operator==(const LineKey& a, const LineKey& b) {
    return a.face == b.face && qFuzzyCompare(a.room + 2, b.room + 2) && a.text == b.text;
}
uint qHash(const LineKey& key, uint seed = 0) {
    return qHashBits(key.text.data(), key.text.size(), seed) ^ uint(key.face);
}

/// Metrics and lines, until the application goes: fonts must not outlive it.
struct Store {
    std::vector<std::unique_ptr<Face>> faces;
    QCache<LineKey, LumoTextLine> lines{keptLines};
    long layouts = 0;
};
std::unique_ptr<Store> theStore;

Store& store() {
    if (!theStore) {
        theStore = std::make_unique<Store>();
        qAddPostRoutine([] { theStore.reset(); });
    }
    return *theStore;
}

int faceIndex(const LumoFont& font) {
    auto& faces = store().faces;
    for (size_t i = 0; i < faces.size(); ++i)
        if (faces[i]->key == font) return int(i);
    faces.push_back(std::make_unique<Face>(font));
    return int(faces.size()) - 1;
}

/// One line: what would break it or has no shape becomes a space.
QString singleLine(const std::string& text) {
    QString result = QString::fromStdString(text);
    for (QChar& character : result)
        if (character.category() == QChar::Other_Control ||
            character.category() == QChar::Separator_Line ||
            character.category() == QChar::Separator_Paragraph)
            character = QLatin1Char(' ');
    return result;
}

QString cut(const QString& text, const QFontMetricsF& metrics, double room) {
    if (room < 0 || metrics.horizontalAdvance(text) <= room) return text;
    const QString result = metrics.elidedText(text, Qt::ElideRight, room);
    return metrics.horizontalAdvance(result) <= room ? result : QString();
}

void layOut(LumoTextLine* line) {
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    QTextLayout layout(line->text, line->font);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine only = layout.createLine();
    if (only.isValid()) {
        only.setLineWidth(1e6);
        only.setPosition(QPointF(0, -only.ascent()));
    }
    layout.endLayout();
    line->runs = layout.glyphRuns();
}

LumoTextLine* newLine(const LineKey& key) {
    const Face& face = *store().faces[size_t(key.face)];
    auto line = std::make_unique<LumoTextLine>();
    line->font = face.font;
    line->text = cut(singleLine(key.text), face.metrics, key.room);
    line->width = face.metrics.horizontalAdvance(line->text);
    line->height = face.metrics.height();
    line->ascent = face.metrics.ascent();
    if (!line->text.isEmpty()) layOut(line.get());
    ++store().layouts;
    return line.release();
}

}  // namespace

const LumoTextLine& lumoTextLine(const std::string& text, const LumoFont& font, double room) {
    const LineKey key{faceIndex(font), room < 0 ? -1 : room, text};
    auto& lines = store().lines;
    if (const LumoTextLine* const known = lines.object(key)) return *known;
    LumoTextLine* const line = newLine(key);
    lines.insert(key, line);
    return *line;
}

void lumoDrawTextLine(QPainter* painter, QPointF topLeft, const LumoTextLine& line) {
    const QPointF baseline = topLeft + QPointF(0, line.ascent);
    if (painter->paintEngine()->type() != QPaintEngine::Raster) {
        // A document keeps its text as text.
        painter->setFont(line.font);
        painter->drawText(baseline, line.text);
        return;
    }
    for (const QGlyphRun& run : line.runs)
        painter->drawGlyphRun(baseline, run);
}

long lumoTextLayouts() {
    return store().layouts;
}

LumoDoubleSize LumoLayoutHelper::measureText(const std::string& text, const LumoFont& font) const {
    const LumoTextLine& line = lumoTextLine(text, font, -1);
    return {line.width, line.height};
}

std::string LumoLayoutHelper::elide(const std::string& text, const LumoFont& font,
                                    double width) const {
    return lumoTextLine(text, font, std::max(width, 0.0)).text.toStdString();
}

LumoLayoutHelper* lumoCreateLayoutHelper() {
    return new LumoLayoutHelper;
}

const LumoLayoutHelper& lumoLayoutHelper() {
    static const LumoLayoutHelper shared;
    return shared;
}
