#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "canvas/base/animation.h"
#include "canvas/base/object.h"
#include "canvas/links/link_geometry.h"

class LumoTimer;

namespace QB::DiagramLumo {

class QBLumoJoinLinkAdaptor;

/// The edge between two items: a line between adaptors, with the symbol of the join type in its
/// middle. Holds a pair of item adaptors and a pair of field adaptors for each shown condition; the
/// diagram's relation mode tells which of them show. Without a pair it is neither drawn nor hit.
/// Ownership: a child of the diagram; put it below the items: `addChild(link, 0)`.
class QBLumoJoinLink : public QBLumoObject {
public:
    using AdaptorPair = std::pair<QBLumoJoinLinkAdaptor*, QBLumoJoinLinkAdaptor*>;

    struct DoubleClickGestureData {
        bool waiting = false;
        bool swallowUp = false;
        LumoTimer* timer = nullptr;  // owned
        virtual ~DoubleClickGestureData();
    };

    QBLumoJoinLink();
    ~QBLumoJoinLink() override;

    /// As SQLJoinType: 0 custom ... 6 full outer.
    void setJoinType(int type);
    int getJoinType() const { return m_joinType; }
    /// Shown with type 0 only.
    void setLabel(const std::string& label);
    const std::string& getLabel() const { return m_label; }

    void setTableAdaptors(QBLumoJoinLinkAdaptor* left, QBLumoJoinLinkAdaptor* right);
    void addFieldAdaptors(QBLumoJoinLinkAdaptor* left, QBLumoJoinLinkAdaptor* right);
    void removeAllAdaptors();
    /// Field pairs, then the table pair if both are set.
    std::vector<AdaptorPair> allAdaptorPairs() const;
    void removeAdaptorPairs(const std::function<bool(const AdaptorPair&)>& predicate);
    bool isVisibleInRelationMode(int mode) const;
    /// Pairs that show in the diagram's mode.
    std::vector<AdaptorPair> shownAdaptorPairs() const;

    /// In own space.
    LumoPoint midPoint() const;
    bool hitTest(LumoPoint point, bool line, bool symbol) const;
    const std::vector<Route>& routes() const { return m_routes; }
    void playPromptAnimation();
    /// Grows with each link made: a stable order.
    uint64_t serial() const { return m_serial; }

    bool getVisible() const override;
    bool getSelectable() const override;
    LumoRect customDirtyRect() const override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;
    bool shouldTriggerMouseDown(LumoEvent event) override;
    bool shouldTriggerMouseMove(LumoEvent event) override;
    bool shouldTriggerMouseUp(LumoEvent event) override;
    bool shouldTriggerMouseDoubleClick(LumoEvent event) override;

protected:
    void customLayout() override;

private:
    friend class QBLumoJoinLinkAdaptor;

    QBLumoJoinLinkAdaptor* m_tableLeft = nullptr;   // not owned: adaptors tell when they go
    QBLumoJoinLinkAdaptor* m_tableRight = nullptr;  // not owned
    std::vector<AdaptorPair> m_fieldPairs;          // not owned
    DoubleClickGestureData m_doubleClick;
    LumoDoublePoint m_center;
    LumoDoublePoint m_centerOffset;
    int32_t m_joinType = 0;
    std::string m_label;
    bool m_routeValid = false;
    std::vector<Route> m_routes;
    Route m_primary;
    QBLumoAnimation m_promptAnimation;
    bool m_promptRunning = false;
    const uint64_t m_serial;
};

}  // namespace QB::DiagramLumo
