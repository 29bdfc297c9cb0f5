#pragma once

#include <QPlainTextEdit>
#include <QWidget>

class QLineEdit;

namespace QB {

/// The two bounds of a BETWEEN, in two lines. Return accepts.
class QBConditionBoundsEdit : public QWidget {
    Q_OBJECT

public:
    QBConditionBoundsEdit(const QString& low, const QString& high, QWidget* parent = nullptr);

    QString low() const;
    QString high() const;

Q_SIGNALS:
    void accepted();

private:
    QLineEdit* const m_low;   // not owned: a child
    QLineEdit* const m_high;  // not owned: a child
};

/// The values of an IN list as one text. Ctrl+Return accepts; Tab leaves the text.
class QBConditionListEdit : public QWidget {
    Q_OBJECT

public:
    explicit QBConditionListEdit(const QString& text, QWidget* parent = nullptr);

    QString text() const { return m_text->toPlainText(); }

Q_SIGNALS:
    void accepted();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPlainTextEdit* const m_text;  // not owned: a child
};

}  // namespace QB
