#pragma once

#include <QFrame>
#include <QString>

class QLabel;
class QToolButton;

namespace QB::Desk {

/// A line above a pane that tells what went wrong, or what happened, until it is closed. Its text
/// can be selected and copied. Hidden while there is nothing to tell. Main thread.
class MessageBar : public QFrame {
    Q_OBJECT

public:
    enum class Kind { Note, Error };

    explicit MessageBar(QWidget* parent = nullptr);

    void show(Kind kind, const QString& text);
    /// What is being told; empty while hidden.
    QString text() const;

protected:
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void retranslate();
    void color();

    Kind m_kind = Kind::Note;
    QLabel* m_icon;        // owned by the widget
    QLabel* m_text;        // owned by the widget
    QToolButton* m_close;  // owned by the widget
    bool m_isColoring = false;
};

}  // namespace QB::Desk
