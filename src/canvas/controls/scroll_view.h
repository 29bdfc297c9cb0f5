#pragma once

#include "canvas/base/margin_constraint.h"
#include "engine/event_trigger.h"
#include "platform/lumo/lumo_virtual_scroll_view.h"

namespace QB::DiagramLumo {

class QBLumoObject;

/// A part of an item that scrolls its content, vertically unless told otherwise.
class QBLumoScrollView : public LumoVirtualScrollView,
                         public LumoVirtualScrollViewDelegate,
                         public QBLumoObjectMarginConstraintAddOn {
public:
    QBLumoScrollView();
    ~QBLumoScrollView() override;

    /// Fired after the content moved.
    QBEventTrigger<QBLumoScrollView*>* contentOffsetChangedTrigger() { return &m_offsetChanged; }
    /// Fired with the rectangle that the view had.
    QBEventTrigger<QBLumoScrollView*, LumoRect>* rectChanged() { return &m_rectChanged; }

    /// The parent of what scrolls. Owned by the view.
    virtual QBLumoObject* getContentObject() const;

    void setHorizontalScrollEnabled(bool enabled);
    /// Holds the content still, for a drag that begins in it.
    void setVerticalScrollDisabled(bool disabled);
    bool isVerticalScrollDisabled() const { return m_verticalScrollDisabled; }

    void setRect(const LumoRect& rect) override;
    void setContentWidth(long width) override;
    void setContentHeight(long height) override;
    void scrollViewContentOffsetChanged(LumoVirtualScrollView* view) override;
    bool scrollViewShouldScroll(LumoVirtualScrollView* view, bool vertical) override;

protected:
    void customLayout() override;

private:
    QBEventTrigger<QBLumoScrollView*> m_offsetChanged;
    QBEventTrigger<QBLumoScrollView*, LumoRect> m_rectChanged;
    bool m_horizontalScrollEnabled = false;
    bool m_verticalScrollDisabled = false;
    QBLumoObject* m_content = nullptr;  // owned as a child of the toolkit's content object
};

}  // namespace QB::DiagramLumo
