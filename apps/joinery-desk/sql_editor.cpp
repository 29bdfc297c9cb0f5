#include "apps/joinery-desk/sql_editor.h"

#include <QMimeData>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>

#include "apps/joinery-desk/long_lines.h"
#include "model/callbacks.h"

namespace QB::Desk {
namespace {

constexpr int indentColumns = 4;
constexpr int gutterMargin = 4;  // logical pixels
/// What is inserted at a stroke: takes a few milliseconds, most of them for the lines.
constexpr int sliceLines = 1000;
constexpr int sliceLength = 64 * 1024;

/// Where the slice that begins at @p start ends. A line is never cut: all of it would be laid out
/// again for each piece.
int sliceEnd(const QString& text, int start) {
    int end = start;
    for (int lines = 0; lines < sliceLines && end - start < sliceLength; ++lines) {
        const int found = text.indexOf(QLatin1Char('\n'), end);
        if (found < 0) return text.size();
        end = found + 1;
    }
    return end;
}

QColor signColor() {
    return Callback::isDarkTheme() ? QColor(0xff7070) : QColor(0xd01c1c);
}

/// The character at @p position or, at the end of a line, the last one before it.
TextSpan characterAt(const QTextDocument* document, int position) {
    QTextCursor cursor(document->findBlock(position));
    cursor.setPosition(position);
    if (cursor.atBlockEnd()) cursor.movePosition(QTextCursor::PreviousCharacter);
    if (cursor.block() != document->findBlock(position)) return {position, 0};
    const int start = cursor.position();
    cursor.movePosition(QTextCursor::NextCharacter);
    return {start, cursor.position() - start};
}

int leadingBlanks(const QString& line) {
    int blanks = 0;
    while (blanks < indentColumns && blanks < line.size() && line[blanks] == QLatin1Char(' '))
        ++blanks;
    return blanks == 0 && line.startsWith(QLatin1Char('\t')) ? 1 : blanks;
}

}  // namespace

class SqlEditor::Gutter : public QWidget {
public:
    explicit Gutter(SqlEditor* editor) : QWidget(editor), m_editor(editor) {}

protected:
    void paintEvent(QPaintEvent* event) override { m_editor->paintGutter(event); }
    void wheelEvent(QWheelEvent* event) override { m_editor->wheelEvent(event); }

private:
    SqlEditor* m_editor;  // not owned: the parent
};

SqlEditor::SqlEditor(QWidget* parent) : QBSqlTextView(parent), m_gutter(new Gutter(this)) {
    setTextInteractionFlags(Qt::TextEditorInteraction);
    setUndoRedoEnabled(true);
    connect(this, &QPlainTextEdit::blockCountChanged, this, &SqlEditor::fitGutter);
    connect(this, &QPlainTextEdit::updateRequest, this, [this](const QRect& area, int dy) {
        if (dy != 0) return m_gutter->scroll(0, dy);
        m_gutter->update(0, area.y(), m_gutter->width(), area.height());
    });
    m_sliceTimer.setInterval(0);
    connect(&m_sliceTimer, &QTimer::timeout, this, &SqlEditor::insertSlice);
    fitGutter();
}

// ---- Text

QString SqlEditor::text() const {
    QString text = document()->toRawText();
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    return text;
}

QString SqlEditor::wholeText() const {
    QString whole = text();
    if (isInserting()) whole.insert(m_insertion.position(), m_waiting.mid(m_waitingFrom));
    return whole;
}

void SqlEditor::replaceText(const QString& text, Undo undo) {
    const TextDifference difference = differenceBetween(this->text(), text);
    if (difference.oldLength == 0 && difference.newLength == 0) return;
    const bool isAlone = undo == Undo::WithLastEdit && !document()->isUndoAvailable();
    if (isAlone) setUndoRedoEnabled(false);
    QTextCursor cursor(document());
    undo == Undo::WithLastEdit ? cursor.joinPreviousEditBlock() : cursor.beginEditBlock();
    cursor.setPosition(difference.start);
    cursor.setPosition(difference.start + difference.oldLength, QTextCursor::KeepAnchor);
    cursor.insertText(text.mid(difference.start, difference.newLength));
    cursor.endEditBlock();
    if (isAlone) setUndoRedoEnabled(true);
}

void SqlEditor::startAnew(const QString& text, bool isModified) {
    m_isStarting = true;
    m_startsModified = isModified;
    m_waiting.clear();
    clearError();
    clear();
    setUndoRedoEnabled(false);
    insert(text);
}

void SqlEditor::insertFromMimeData(const QMimeData* source) {
    // The base would build a document of its own first.
    if (source->hasText() && !isReadOnly()) insert(source->text());
}

void SqlEditor::insert(const QString& text) {
    m_waiting = withBrokenLines(text, family());
    m_waitingFrom = sliceEnd(m_waiting, 0);
    m_hasBrokenLines = m_waiting.size() != text.size();
    m_insertion = textCursor();
    m_insertion.insertText(m_waiting.left(m_waitingFrom));
    if (m_waitingFrom == m_waiting.size()) return endInserting();
    setReadOnly(true);
    m_sliceTimer.start();
}

/// Undo takes all slices back at once.
void SqlEditor::insertSlice() {
    const int end = sliceEnd(m_waiting, m_waitingFrom);
    m_insertion.joinPreviousEditBlock();
    m_insertion.insertText(m_waiting.mid(m_waitingFrom, end - m_waitingFrom));
    m_insertion.endEditBlock();
    m_waitingFrom = end;
    if (end == m_waiting.size()) endInserting();
}

void SqlEditor::finishInserting() {
    while (isInserting())
        insertSlice();
}

void SqlEditor::endInserting() {
    m_sliceTimer.stop();
    m_waiting.clear();
    if (isReadOnly()) setReadOnly(false);
    if (!m_isStarting) setTextCursor(m_insertion);
    if (m_isStarting) {
        moveCursor(QTextCursor::Start);
        setUndoRedoEnabled(true);
        document()->setModified(m_startsModified);
    }
    ensureCursorVisible();
    m_isStarting = false;
    Q_EMIT inserted();
}

// ---- The error

void SqlEditor::setError(TextSpan place, const QString& message) {
    const bool hasPlace = place.start >= 0;
    m_errorPlace = hasPlace ? QTextCursor(document()) : QTextCursor();
    if (hasPlace) m_errorPlace.setPosition(qMin(place.start, document()->characterCount() - 1));
    if (hasPlace && place.length == 0) place = characterAt(document(), m_errorPlace.position());
    setErrorSpan(hasPlace ? place : TextSpan());
    m_gutter->setToolTip(message);
    m_gutter->update();
}

void SqlEditor::goToError() {
    if (!hasErrorPlace()) return;
    setTextCursor(m_errorPlace);
    ensureCursorVisible();
    setFocus(Qt::OtherFocusReason);
}

TextPlace SqlEditor::placeOf(const QTextCursor& cursor) {
    const QString before = cursor.block().text().left(cursor.positionInBlock());
    return {cursor.blockNumber() + 1, before.toUcs4().size() + 1};
}

bool SqlEditor::canInsertFromMimeData(const QMimeData* source) const {
    return !source->hasUrls() && QBSqlTextView::canInsertFromMimeData(source);
}

// ---- Keys

void SqlEditor::keyPressEvent(QKeyEvent* event) {
    const bool isTab = event->key() == Qt::Key_Tab;
    const bool isBacktab = event->key() == Qt::Key_Backtab;
    if ((event->modifiers() & Qt::ControlModifier) != 0) {
        if (isTab || isBacktab) return leave(isTab);
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return event->ignore();
    }
    if (isTab) return indent();
    if (isBacktab) return changeIndentation(false);
    QBSqlTextView::keyPressEvent(event);
}

void SqlEditor::leave(bool forward) {
    QWidget::focusNextPrevChild(forward);
}

void SqlEditor::indent() {
    QTextCursor cursor = textCursor();
    const QTextBlock first = document()->findBlock(cursor.selectionStart());
    if (!first.contains(cursor.selectionEnd())) return changeIndentation(true);
    const int column = cursor.selectionStart() - first.position();
    cursor.insertText(QString(indentColumns - column % indentColumns, QLatin1Char(' ')));
    setTextCursor(cursor);
}

void SqlEditor::changeIndentation(bool isMore) {
    QTextCursor selected = textCursor();
    QTextBlock line = document()->findBlock(selected.selectionStart());
    const int last = document()->findBlock(selected.selectionEnd()).blockNumber();
    selected.beginEditBlock();
    for (; line.isValid() && line.blockNumber() <= last; line = line.next()) {
        QTextCursor cursor(line);
        if (isMore && line.length() > 1)
            cursor.insertText(QString(indentColumns, QLatin1Char(' ')));
        if (isMore) continue;
        cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor,
                            leadingBlanks(line.text()));
        cursor.removeSelectedText();
    }
    selected.endEditBlock();
}

// ---- The gutter

int SqlEditor::gutterWidth() const {
    const int digits = qMax(2, QString::number(blockCount()).size());
    const int signSide = fontMetrics().ascent();
    return signSide + digits * fontMetrics().horizontalAdvance(QLatin1Char('9')) + 3 * gutterMargin;
}

void SqlEditor::fitGutter() {
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    const int width = gutterWidth();
    setViewportMargins(isMirrored ? 0 : width, 0, isMirrored ? width : 0, 0);
    const QRect inside = contentsRect();
    const int left = isMirrored ? inside.right() - width + 1 : inside.left();
    m_gutter->setGeometry(left, inside.top(), width, viewport()->height());
}

void SqlEditor::paintGutter(QPaintEvent* event) {
    QPainter painter(m_gutter);
    painter.fillRect(event->rect(), palette().color(QPalette::AlternateBase));
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const int errorLine = hasErrorPlace() ? m_errorPlace.blockNumber() : -1;
    QTextBlock line = firstVisibleBlock();
    QRectF place = blockBoundingGeometry(line).translated(contentOffset());
    while (line.isValid() && place.top() <= event->rect().bottom()) {
        const int top = qRound(place.top());
        painter.drawText(0, top, m_gutter->width() - gutterMargin, fontMetrics().height(),
                         Qt::AlignRight, QString::number(line.blockNumber() + 1));
        if (line.blockNumber() == errorLine) paintErrorSign(painter, top);
        line = line.next();
        place = blockBoundingGeometry(line).translated(contentOffset());
    }
}

/// A disc with an exclamation mark: told by its shape, not by its colour alone.
void SqlEditor::paintErrorSign(QPainter& painter, int top) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal side = fontMetrics().ascent();
    const QRectF disc(gutterMargin, top + (fontMetrics().height() - side) / 2, side, side);
    painter.setPen(Qt::NoPen);
    painter.setBrush(signColor());
    painter.drawEllipse(disc);
    const QColor onDisc = palette().color(QPalette::Base);
    painter.setPen(QPen(onDisc, side / 7, Qt::SolidLine, Qt::RoundCap));
    const QPointF middle = disc.center();
    painter.drawLine(middle - QPointF(0, side * 0.27), middle + QPointF(0, side * 0.06));
    painter.drawPoint(middle + QPointF(0, side * 0.28));
    painter.restore();
}

void SqlEditor::resizeEvent(QResizeEvent* event) {
    QBSqlTextView::resizeEvent(event);
    fitGutter();
}

void SqlEditor::changeEvent(QEvent* event) {
    QBSqlTextView::changeEvent(event);
    if (event->type() == QEvent::FontChange) fitGutter();
    if (event->type() == QEvent::PaletteChange) m_gutter->update();
}

}  // namespace QB::Desk
