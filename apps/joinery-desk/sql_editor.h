#pragma once

#include <QString>
#include <QTextCursor>
#include <QTimer>

#include "frame/sql_text_view.h"

namespace QB::Desk {

/// Where in a text, for the user: both count from 1, columns in characters.
struct TextPlace {
    int line = 1;
    int column = 1;
};

/// The highlighted text as an editor: line numbers with a sign at a line that has an error, and the
/// error underlined. Tab indents by four columns, Shift+Tab takes an indentation back; Ctrl+Tab and
/// Ctrl+Shift+Tab go to the next and the previous widget. Ctrl+Return is left to the parent.
///
/// Overlong lines are broken when they come in, where that means nothing to a server: Qt lays a
/// line out as a whole, for every key. A large text goes in bit by bit between other events, and
/// nobody can edit it meanwhile. Main thread.
class SqlEditor : public QBSqlTextView {
    Q_OBJECT

public:
    explicit SqlEditor(QWidget* parent = nullptr);

    /// The text with "\n" at the end of lines and every other character as it was typed, unlike
    /// toPlainText(), which makes blanks of no-break spaces.
    QString text() const;
    /// With what is still to be inserted.
    QString wholeText() const;
    enum class Undo {
        AsOneEdit,    ///< undo takes the edit back
        WithLastEdit  ///< together with the one before; without one the edit stays
    };
    /// Makes @p text the text. Only what differs is replaced.
    void replaceText(const QString& text, Undo undo);
    /// Starts anew with @p text, and nothing to undo; the document counts as modified if so told.
    /// inserted() follows, maybe at once.
    void startAnew(const QString& text, bool isModified = false);
    /// True while a large text is not wholly in yet; text() is that much shorter.
    bool isInserting() const { return !m_waiting.isEmpty(); }
    /// True if overlong lines were broken in what was pasted, or started with, last.
    bool hasBrokenLines() const { return m_hasBrokenLines; }
    /// True while what changes the text is startAnew().
    bool isStarting() const { return m_isStarting; }
    /// Puts the rest in at once.
    void finishInserting();

    /// Marks an error; a place without length marks the character there, a start of -1 none.
    void setError(TextSpan place, const QString& message);
    void clearError() { setError({-1, 0}, QString()); }
    bool hasErrorPlace() const { return !m_errorPlace.isNull(); }
    /// Where the error is now, as the text may have been edited since.
    TextPlace errorPlace() const { return placeOf(m_errorPlace); }
    /// Puts the cursor there, and the focus.
    void goToError();
    TextPlace cursorPlace() const { return placeOf(textCursor()); }

Q_SIGNALS:
    /// The whole text of startAnew(), or of a large paste, is in.
    void inserted();

protected:
    /// Files are the window's to open, not text to insert.
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    class Gutter;

    void insert(const QString& text);
    void insertSlice();
    void endInserting();
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
    QString m_waiting;         // what is still to be inserted
    int m_waitingFrom = 0;     ///< where in m_waiting that begins
    QTextCursor m_insertion;   // where it goes
    QTimer m_sliceTimer;
    bool m_hasBrokenLines = false;
    bool m_startsModified = false;
    bool m_isStarting = false;  ///< what is being inserted is the text of startAnew()
};

}  // namespace QB::Desk
