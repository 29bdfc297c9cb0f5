#pragma once

#include <QStyledItemDelegate>
#include <QWidget>
#include <functional>
#include <memory>

class QLineEdit;
class QListWidget;

namespace QB {

/// The list of the kinds of join, with a line for a custom one. The arrow keys go through the
/// kinds, the custom one gives the focus to its line; text typed there chooses the custom kind.
/// Thread: main.
class QBJoinSelectionPopupWidget : public QWidget {
    Q_OBJECT

public:
    /// Starts at @p joinType (an SQLJoinType), or at the first kind where that is not offered;
    /// @p customText, which may be null, is read at once.
    QBJoinSelectionPopupWidget(int joinType, const QString* customText, bool showFullOuterJoin,
                               bool showCommaJoin, bool showCustomJoin, QWidget* parent);
    ~QBJoinSelectionPopupWidget() override;

    void setCurrentChangedCallback(std::function<void()> callback);
    void setAcceptCheck(std::function<bool()> check);

    /// The kind chosen, custom if none is; @p customText is set only for a custom one. A custom
    /// text "," is the comma kind.
    void joinSelection(int* type, QString* customText) const;
    /// A kind other than the custom one is chosen, and the check, if any, agrees.
    bool isSelectionValid() const;
    /// As isSelectionValid(), or a custom kind with text.
    bool canBeAccepted() const;
    QListWidget* listWidget() const;
    QLineEdit* customTextEdit() const;  ///< null where no custom kind is offered

    QSize sizeHint() const override;

Q_SIGNALS:
    /// A kind was clicked, the custom one excepted, or Return was pressed, and canBeAccepted().
    void chosen();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class Private;
    const std::unique_ptr<Private> d;
};

/// Paints a kind: its row is a widget, the delegate gives background and separating line.
class QBJoinSelectionPopupWidgetTreeItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace QB
