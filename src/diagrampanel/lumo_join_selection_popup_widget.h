#pragma once

#include <QWidget>
#include <memory>

#include "model/components.h"

namespace QB {

class QBEngine_LINUX;

/// The editor of a join, as it opens from a link of the diagram: the names of the two sources it
/// joins, a button that shows and changes its kind, and the rows of its condition; in their place
/// the column list of a join with USING. Every change is made at once, in a modification of the
/// FROM clause with this widget as the sender, or for the rows the panel in it.
///
/// The join is known by its id, and looked up at every notification: when it is gone, has become a
/// comma, or another layer is shown, goneAway() is emitted and nothing is changed any more. A kind
/// that takes no condition keeps the rows, greyed, for the case that it becomes another one again.
/// Thread: main.
class QBLumoJoinSelectionPopupWidget : public QWidget {
    Q_OBJECT

public:
    /// @p join stands in the current layer of @p engine; neither is owned. @p left and @p right are
    /// the sources that its link connects, either may be null. The join and the sources need not
    /// outlive the call, nor the engine.
    QBLumoJoinSelectionPopupWidget(QBEngine_LINUX* engine,
                                   Component::SQL::SQLJoinSourceNodeComponent* join,
                                   Component::SQL::SQLAbstractSourceComponent* left,
                                   Component::SQL::SQLAbstractSourceComponent* right,
                                   QWidget* parent = nullptr);
    ~QBLumoJoinSelectionPopupWidget() override;

public Q_SLOTS:
    /// Opens the list of the kinds at the button.
    void slotEditJoinType();

Q_SIGNALS:
    /// The join is no longer there to be edited: who shows this closes it, as cancelled. Once.
    void goneAway();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    class Private;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
