#pragma once

#include <QMetaObject>
#include <QWidget>

namespace QB {

/// A turning ring laid over a panel. It runs while it is visible, follows the size of its parent
/// and shows itself above its siblings. All indicators of the process turn together. Main thread.
class QBLoadingIndicatorWidget : public QWidget {
    Q_OBJECT

public:
    explicit QBLoadingIndicatorWidget(QWidget* parent = nullptr);
    ~QBLoadingIndicatorWidget() override;

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void followParent();
    void startTurning();
    void stopTurning();

    QMetaObject::Connection m_turning;  // to the shared timer, while the indicator is shown
};

}  // namespace QB
