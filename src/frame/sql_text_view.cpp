#include "frame/sql_text_view.h"

#include <QMimeData>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextLayout>

#include "model/callbacks.h"
#include "widgets/fixed_width_font.h"

namespace QB {
namespace {

/// Lines above and below the visible ones that get their colours with them.
constexpr int marginLines = 20;
/// A line is coloured up to here: beyond it lie lists of values that nobody reads, and each colour
/// costs the layout of a line.
constexpr int coloredColumns = 20000;
constexpr int tabColumns = 4;

/// What each line keeps in its user state: the index of the state at its start and whether its
/// colours are set. Qt gives new lines -1.
constexpr int unknownLine = -1;

int lineRecord(int stateIndex, bool isColored) {
    return stateIndex * 2 + (isColored ? 1 : 0);
}
int stateIndexOf(const QTextBlock& line) {
    return line.userState() == unknownLine ? 0 : line.userState() / 2;
}
bool isColored(const QTextBlock& line) {
    return line.userState() != unknownLine && line.userState() % 2 == 1;
}

struct Colors {
    std::array<QRgb, 6> tokens;  // by SqlTokenKind
    QRgb mark;
    QRgb error;
};

// Each stands out from its background with a contrast of at least 4.5 to 1.
constexpr Colors lightColors = {
    {0xff0033b3, 0xff7a3e9d, 0xff067d17, 0xffb02a00, 0xff6a737d, 0xff00627a},
    0xffffeaa8,
    0xffd01c1c};
constexpr Colors darkColors = {
    {0xff7aa6ff, 0xffc792ea, 0xff8fce7a, 0xfff0a36b, 0xff9aa5b1, 0xff6fd3e3},
    0xff5a4a12,
    0xffff7070};

}  // namespace

QBSqlTextView::QBSqlTextView(QWidget* parent) : QPlainTextEdit(parent) {
    m_states.append(SqlLexState());
    setUndoRedoEnabled(false);
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setLayoutDirection(Qt::LeftToRight);  // as SQL is in every language
    setFont(fixedWidthFont());
    showTabs();
    updateColors();
    connect(document(), &QTextDocument::contentsChange, this,
            [this](int position, int, int added) { followStates(position, added); });
    connect(this, &QPlainTextEdit::updateRequest, this, &QBSqlTextView::colorVisibleLines);
}

void QBSqlTextView::setFamily(DatabaseType family) {
    if (family == m_lexer.family()) return;
    m_lexer = SqlHighlightLexer(family);
    followAllStates();
    colorVisibleLines();
}

void QBSqlTextView::setSqlText(const std::string& text) {
    const QString newText = documentText(text);
    if (newText == m_text) return;
    // Marks belong to the text that they were set for; Qt would stretch them over the change.
    setMarks({});
    replaceDifference(newText);
    m_text = newText;
    colorVisibleLines();
}

void QBSqlTextView::replaceDifference(const QString& newText) {
    const TextDifference difference = differenceBetween(m_text, newText);
    const int horizontal = horizontalScrollBar()->value();
    int vertical = verticalScrollBar()->value();
    const int oldLineCount = blockCount();
    const QTextBlock last = document()->findBlock(difference.start + difference.oldLength);
    const bool isAboveView = last.blockNumber() < firstVisibleBlock().blockNumber();

    const QScopedValueRollback<bool> guard(m_isColoring, true);
    QTextCursor cursor = cursorOver({difference.start, difference.oldLength});
    cursor.insertText(newText.mid(difference.start, difference.newLength));
    if (isAboveView) vertical += blockCount() - oldLineCount;
    restorePlace(horizontal, vertical);
}

QTextCursor QBSqlTextView::cursorOver(TextSpan span) {
    QTextCursor cursor(document());
    cursor.setPosition(span.start);
    cursor.setPosition(span.start + span.length, QTextCursor::KeepAnchor);
    return cursor;
}

void QBSqlTextView::restorePlace(int horizontal, int vertical) {
    horizontalScrollBar()->setValue(horizontal);
    verticalScrollBar()->setValue(vertical);
}

void QBSqlTextView::followStates(int position, int addedLength) {
    const int changeEnd = position + addedLength;
    QTextBlock line = document()->findBlock(position);
    // Which of two lines keeps its record when they are split or joined is Qt's affair; the line
    // before the change is untouched.
    if (line.previous().isValid()) line = line.previous();
    int index = line.previous().isValid() ? stateIndexOf(line) : 0;
    bool isKnown = false;
    while (line.isValid() && !isKnown) {
        line.setUserState(lineRecord(index, false));
        index = indexOfState(m_lexer.lexLine(line.text(), m_states.at(index), nullptr));
        ++m_scannedLineCount;
        line = line.next();
        isKnown = line.isValid() && line.position() > changeEnd &&
                  line.userState() != unknownLine && stateIndexOf(line) == index;
    }
}

void QBSqlTextView::followAllStates() {
    forgetColors();
    for (QTextBlock line = document()->begin(); line.isValid(); line = line.next())
        line.setUserState(unknownLine);
    followStates(0, document()->characterCount());
}

int QBSqlTextView::indexOfState(const SqlLexState& state) {
    const int known = m_states.indexOf(state);
    if (known >= 0) return known;
    m_states.append(state);
    return m_states.size() - 1;
}

void QBSqlTextView::forgetColors() {
    for (QTextBlock line = document()->begin(); line.isValid(); line = line.next())
        if (isColored(line)) line.setUserState(lineRecord(stateIndexOf(line), false));
}

void QBSqlTextView::colorVisibleLines() {
    // Setting colours asks for an update, which leads here again.
    if (m_isColoring || !isVisible()) return;
    const QScopedValueRollback<bool> guard(m_isColoring, true);
    const int lineHeight = qMax(1, fontMetrics().lineSpacing());
    const int visibleLines = viewport()->height() / lineHeight + 1;
    QTextBlock line = firstVisibleBlock();
    for (int i = 0; i < marginLines && line.previous().isValid(); ++i)
        line = line.previous();
    const int lineLimit = visibleLines + 2 * marginLines;
    int firstChanged = -1;
    int lastEnd = -1;
    for (int i = 0; i < lineLimit && line.isValid(); ++i, line = line.next()) {
        if (!colorLine(line)) continue;
        if (firstChanged < 0) firstChanged = line.position();
        lastEnd = line.position() + line.length();
    }
    if (firstChanged >= 0) document()->markContentsDirty(firstChanged, lastEnd - firstChanged);
}

bool QBSqlTextView::colorLine(QTextBlock& line) {
    if (isColored(line)) return false;
    const int index = stateIndexOf(line);
    QVector<SqlToken> tokens;
    m_lexer.lexLine(line.text().left(coloredColumns), m_states.at(index), &tokens);
    QVector<QTextLayout::FormatRange> ranges;
    ranges.reserve(tokens.size());
    for (const SqlToken& token : qAsConst(tokens)) {
        QTextLayout::FormatRange range;
        range.start = token.start;
        range.length = token.length;
        range.format = m_formats[static_cast<std::size_t>(token.kind)];
        ranges.append(range);
    }
    line.layout()->setFormats(ranges);
    line.setUserState(lineRecord(index, true));
    ++m_coloredLineCount;
    return true;
}

void QBSqlTextView::setMarks(const std::vector<TextSpan>& spans) {
    if (spans == m_marks) return;
    m_marks = spans;
    showMarks();
}

void QBSqlTextView::setErrorSpan(TextSpan span) {
    if (span == errorSpan()) return;
    m_error = span.length > 0 ? cursorOver(span) : QTextCursor();
    showMarks();
}

TextSpan QBSqlTextView::errorSpan() const {
    if (m_error.isNull() || !m_error.hasSelection()) return TextSpan();
    return {m_error.selectionStart(), m_error.selectionEnd() - m_error.selectionStart()};
}

void QBSqlTextView::showMarks() {
    QList<QTextEdit::ExtraSelection> selections;
    for (const TextSpan span : m_marks) {
        QTextEdit::ExtraSelection selection;
        selection.format = m_markFormat;
        selection.cursor = cursorOver(span);
        selections.append(selection);
    }
    if (!m_error.isNull()) selections.append({m_error, m_errorFormat});
    setExtraSelections(selections);
}

void QBSqlTextView::updateColors() {
    const Colors& colors = Callback::isDarkTheme() ? darkColors : lightColors;
    for (std::size_t kind = 0; kind < m_formats.size(); ++kind)
        m_formats[kind].setForeground(QColor(colors.tokens[kind]));
    m_markFormat.setBackground(QColor(colors.mark));
    m_errorFormat.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    m_errorFormat.setUnderlineColor(QColor(colors.error));
    forgetColors();
    colorVisibleLines();
    showMarks();
}

void QBSqlTextView::showTabs() {
    setTabStopDistance(tabColumns * fontMetrics().horizontalAdvance(QLatin1Char(' ')));
}

void QBSqlTextView::changeEvent(QEvent* event) {
    QPlainTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange) showTabs();
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        updateColors();
}

void QBSqlTextView::resizeEvent(QResizeEvent* event) {
    QPlainTextEdit::resizeEvent(event);
    colorVisibleLines();
}

void QBSqlTextView::showEvent(QShowEvent* event) {
    QPlainTextEdit::showEvent(event);
    colorVisibleLines();
}

QMimeData* QBSqlTextView::createMimeDataFromSelection() const {
    // The base would turn no-break spaces into blanks, inside string literals too.
    QString text = textCursor().selectedText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    auto* selected = new QMimeData;
    selected->setText(text);
    return selected;
}

}  // namespace QB
