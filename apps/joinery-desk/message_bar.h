#pragma once

#include <QFrame>
#include <QPointer>
#include <QString>
#include <array>
#include <functional>

class QLabel;
class QPushButton;
class QToolButton;

namespace QB::Desk {

/// A line above a pane that tells what went wrong, or what happened, until it is closed, or asks.
/// Its text can be selected and copied. Hidden while there is nothing to tell. Main thread.
class MessageBar : public QFrame {
    Q_OBJECT

public:
    enum class Kind { Note, Error, Question };

    explicit MessageBar(QWidget* parent = nullptr);

    void show(Kind kind, const QString& text);
    /// What the user may answer: the button's text, and what follows.
    struct Answer {
        QString text;
        std::function<void()> chosen;
    };
    /// Calls what belongs to the button that the user presses; @p other may be without text. The
    /// question gets the focus. It is over when it is answered, closed (Escape), withdrawn, or
    /// another message takes its place.
    void ask(const QString& text, Answer answer, Answer other = {});
    bool isAsking() const { return m_chosen[0] != nullptr; }
    /// Shows an error that a change of the query may mend.
    void showOfQuery(const QString& error);
    /// The query changed: questions and such errors were about the one before.
    void withdrawOfQuery();
    /// What is being told; empty while hidden.
    QString text() const;

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void choose(std::size_t index);
    void forgetAnswers();
    void retranslate();
    void color();

    Kind m_kind = Kind::Note;
    QLabel* m_icon;                                 // owned by the widget
    QLabel* m_text;                                 // owned by the widget
    std::array<QPushButton*, 2> m_answers;          // owned by the widget
    QToolButton* m_close;                           // owned by the widget
    std::array<std::function<void()>, 2> m_chosen;  ///< empty: nothing is being asked
    QPointer<QWidget> m_focusBefore;  // not owned: had the focus when the question came
    bool m_isColoring = false;
    bool m_isOfQuery = false;
};

}  // namespace QB::Desk
