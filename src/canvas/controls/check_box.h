#pragma once

#include <functional>

#include "canvas/base/object.h"

namespace QB::DiagramLumo {

class QBLumoCheckBox : public QBLumoObject {
public:
    QBLumoCheckBox();

    bool isChecked() const { return m_checked; }
    /// Tells nobody.
    void setChecked(bool checked);
    /// Tells the handler if it is a change.
    void setCheckedByUser(bool checked);
    void setChangeHandler(std::function<void(QBLumoCheckBox*)> handler);

    void paint(LumoPaintConfig* config, LumoRect rect) override;
    virtual bool responderMouseDown(LumoEvent event);
    virtual bool responderMouseUp(LumoEvent event);

private:
    bool m_checked = false;
    std::function<void(QBLumoCheckBox*)> m_changed;
};

}  // namespace QB::DiagramLumo
