#pragma once

#include <QWidget>
#include <functional>
#include <memory>

class QListWidget;
class QStackedWidget;

/// A list with a page for each of its rows, and buttons that add and remove rows. What rows and
/// pages are is the owner's affair; the last row cannot be removed.
/// Thread: main.
class QBMultipleEditPopupWidget : public QWidget {
    Q_OBJECT

public:
    explicit QBMultipleEditPopupWidget(QWidget* parent = nullptr);
    ~QBMultipleEditPopupWidget() override;

    /// Appends a row that shows @p row and, while it is current, @p page; it becomes current.
    /// Ownership: takes both; removing the row destroys them.
    void addItem(QWidget* row, QWidget* page);

    /// Called with the current row whenever that, or what stands there, has changed; the page is
    /// shown already.
    void setCurrentRowChangedCallback(std::function<void(int row)> callback);
    /// Called with the row that there was, when it and its page are out of list and pages.
    void setItemRemovedCallback(std::function<void(int row)> callback);

    QListWidget* listWidget() const;
    QStackedWidget* pagesWidget() const;

Q_SIGNALS:
    /// The user asks for another row; the owner answers with addItem().
    void signalMultipleEditRowWidgetAddItem(QBMultipleEditPopupWidget* sender);

protected:
    void changeEvent(QEvent* event) override;

private:
    class Private;
    const std::unique_ptr<Private> d;
};
