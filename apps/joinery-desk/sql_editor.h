#pragma once

#include <QString>
#include <QTextCursor>

#include "frame/sql_text_view.h"

namespace QB::Desk {

/// Where in a text, for the user: both count from 1, columns in characters.
struct TextPlace {
    int line = 1;
    int column = 1;
};

/// The highlighted text as an editor: line numbers with a sign at a line that has an error, and the
/// error underlined. Tab indents by four columns, Shift+Tab takes an indentation back; Ctrl+Tab and
/// Ctrl+Shift+Tab go to the next and the previous widget. Ctrl+Return is left to the parent. Main
/// thread.
class SqlEditor : public QBSqlTextView {
    Q_OBJECT

public:
    explicit SqlEditor(QWidget* parent = nullptr);

    /// The text with "\n" at the end of lines and every other character as it was typed, unlike
    /// toPlainText(), which makes blanks of no-break spaces.
    QString text() const;
    /// Makes @p text the text by one edit, which undo takes back. Only what differs is replaced.
    void replaceText(const QString& text);
    /// Starts anew with @p text: unmodified, and nothing to undo.
    void startAnew(const QString& text);

    /// Marks an error; a place without length marks the character there, a start of -1 none.
    void setError(TextSpan place, const QString& message);
    void clearError() { setError({-1, 0}, QString()); }
    bool hasErrorPlace() const { return !m_errorPlace.isNull(); }
    /// Where the error is now, as the text may have been edited since.
    TextPlace errorPlace() const { return placeOf(m_errorPlace); }
    /// Puts the cursor there, and the focus.
    void goToError();
    TextPlace cursorPlace() const { return placeOf(textCursor()); }

protected:
    /// Files are the window's to open, not text to insert.
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Gutter;

    static TextPlace placeOf(const QTextCursor& cursor);
    void leave(bool forward);
    void indent();
    void changeIndentation(bool isMore);
    int gutterWidth() const;
    void fitGutter();
    void paintGutter(QPaintEvent* event);
    void paintErrorSign(QPainter& painter, int top) const;

    Gutter* m_gutter;          // owned by the widget
    QTextCursor m_errorPlace;  // null: there is none
};

}  // namespace QB::Desk
