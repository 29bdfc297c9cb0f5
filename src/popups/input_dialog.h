#pragma once

#include <QDialog>
#include <memory>

namespace QB {

/// A modal dialog around a content widget, with OK and Cancel. Show it with open() or show(); it
/// emits finished() once, whichever way it ends, and destroys itself then.
/// Thread: main.
class QBInputDialog : public QDialog {
    Q_OBJECT

public:
    explicit QBInputDialog(QWidget* parent = nullptr);
    ~QBInputDialog() override;

    /// Replaces the content, which is destroyed as soon as it is safe, and gives it the focus.
    /// Buttons in @p content lose autoDefault: Return is OK.
    /// Ownership: the dialog takes @p content, which may be null.
    void setContent(QWidget* content);
    QWidget* content() const;

    /// For a content that has nothing to take back. Escape still cancels.
    void setCancelHidden(bool isHidden);

public Q_SLOTS:
    /// Ends with @p code, a QDialog::DialogCode.
    void closeDialog(int code);

protected:
    void changeEvent(QEvent* event) override;

private:
    class Private;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
