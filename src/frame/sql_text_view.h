#pragma once

#include <QPlainTextEdit>
#include <QTextCharFormat>
#include <QTextCursor>
#include <array>
#include <string>
#include <vector>

#include "frame/sql_highlight_lexer.h"
#include "frame/text_spans.h"
#include "model/export.h"

namespace QB {

/// Shows SQL text, coloured by the rules of a server family: read-only, selectable by mouse and
/// keyboard, in a fixed-width font, without line wrap. A subclass may let the user edit it.
///
/// Made for texts of megabytes: a new text replaces only what differs from the old one, the state
/// at the start of each line is followed from there until it meets the known one again, and only
/// lines that show, and a few around them, are coloured. Main thread only.
class QB_EXPORT QBSqlTextView : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit QBSqlTextView(QWidget* parent = nullptr);

    void setFamily(DatabaseType family);
    DatabaseType family() const { return m_lexer.family(); }

    /// Shows @p text, UTF-8. Selection and place in the text stay as far as the text is the same.
    void setSqlText(const std::string& text);

    /// Marks these stretches, in positions of the document, and no others.
    void setMarks(const std::vector<TextSpan>& spans);

    /// Underlines this stretch as wrong, beside the marks; one without length takes the underline
    /// away. It keeps to its characters while the text is edited.
    void setErrorSpan(TextSpan span);
    /// Where the underline is now; without length if there is none.
    TextSpan errorSpan() const;

    /// Chooses the colours again, for the theme that Callback::isDarkTheme tells.
    void updateColors();

    /// Work done so far, for measuring: lines whose colours were set, and lines whose state was
    /// followed.
    int coloredLineCount() const { return m_coloredLineCount; }
    int scannedLineCount() const { return m_scannedLineCount; }

protected:
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    QMimeData* createMimeDataFromSelection() const override;

private:
    void replaceDifference(const QString& newText);
    QTextCursor cursorOver(TextSpan span);
    void restorePlace(int horizontal, int vertical);
    void followStates(int position, int addedLength);
    void followAllStates();
    void forgetColors();
    void colorVisibleLines();
    bool colorLine(QTextBlock& line);
    int indexOfState(const SqlLexState& state);
    void showMarks();
    void showTabs();

    SqlHighlightLexer m_lexer;
    QString m_text;                 // as the document holds it
    QVector<SqlLexState> m_states;  // all that occurred; lines hold an index into it
    std::vector<TextSpan> m_marks;
    std::array<QTextCharFormat, 6> m_formats;  // by SqlTokenKind
    QTextCharFormat m_markFormat;
    QTextCursor m_error;  // selects what is underlined; null: nothing
    QTextCharFormat m_errorFormat;
    bool m_isColoring = false;
    int m_coloredLineCount = 0;
    int m_scannedLineCount = 0;
};

}  // namespace QB
