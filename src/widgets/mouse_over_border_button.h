#pragma once

#include <QPushButton>

namespace QB {

/// A push button that is flat until the mouse is over it.
class QBMouseOverBorderButton : public QPushButton {
    Q_OBJECT

public:
    explicit QBMouseOverBorderButton(QWidget* parent = nullptr);

protected:
    void enterEvent(QEvent* event) override;
    void leaveEvent(QEvent* event) override;
};

}  // namespace QB
