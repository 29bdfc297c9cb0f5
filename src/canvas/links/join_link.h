#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "canvas/base/animation.h"
#include "canvas/base/object.h"
#include "canvas/links/join_symbol.h"
#include "canvas/links/link_geometry.h"

class LumoTimer;

namespace QB::DiagramLumo {

class QBLumoJoinLinkAdaptor;

/// The edge between two items: a line between adaptors, with the symbol of the join type in its
/// middle. Stands either for a table relation, with a pair of item adaptors, or for a field
/// relation, with a pair of field adaptors; the diagram's relation mode tells which of both shows.
/// Without a pair, or between one adaptor and itself, it is neither drawn nor hit.
/// Ownership: a child of the diagram; put it below the items: `addChild(link, 0)`. Adaptors and
/// links go in any order.
class QBLumoJoinLink : public QBLumoObject {
public:
    using AdaptorPair = std::pair<QBLumoJoinLinkAdaptor*, QBLumoJoinLinkAdaptor*>;

    /// A click opens the editor after a while in which it may become a double click; a double click
    /// opens it at once; either only once.
    struct DoubleClickGestureData {
        bool waiting = false;  // for a second click
        /// A click has begun here. A double click takes that back: its second release, which a
        /// popup may take, is no click.
        bool pressed = false;
        int64_t firedAt = -1;        // milliseconds of a steady clock
        LumoTimer* timer = nullptr;  // owned
        DoubleClickGestureData() = default;
        virtual ~DoubleClickGestureData();
        DoubleClickGestureData(const DoubleClickGestureData&) = delete;
        DoubleClickGestureData& operator=(const DoubleClickGestureData&) = delete;
    };

    QBLumoJoinLink();
    ~QBLumoJoinLink() override;

    /// As SQLJoinType: 0 custom ... 6 full outer.
    void setJoinType(int type);
    int getJoinType() const { return m_joinType; }
    /// Shown with type 0 only.
    void setLabel(const std::string& label);
    const std::string& getLabel() const { return m_label; }

    /// Null for either takes the pair away.
    void setTableAdaptors(QBLumoJoinLinkAdaptor* left, QBLumoJoinLinkAdaptor* right);
    /// Nothing happens if either is null.
    void addFieldAdaptors(QBLumoJoinLinkAdaptor* left, QBLumoJoinLinkAdaptor* right);
    void removeAllAdaptors();
    /// Field pairs, then the table pair if both are set.
    std::vector<AdaptorPair> allAdaptorPairs() const;
    void removeAdaptorPairs(const std::function<bool(const AdaptorPair&)>& predicate);
    /// As the first pair is; true without one.
    bool isVisibleInRelationMode(int mode) const;
    /// Pairs that show in the diagram's mode.
    std::vector<AdaptorPair> shownAdaptorPairs() const;

    /// In own space, as of the last layout.
    LumoPoint midPoint() const { return m_primary.middle(); }
    bool hitTest(LumoPoint point, bool line, bool symbol) const;
    /// One for each pair, as of the last layout.
    const std::vector<Route>& routes() const { return m_routes; }
    /// The one that is drawn.
    const Route& shownRoute() const { return m_primary; }
    /// Visible, with a line to be seen.
    bool isShown() const { return getVisible() && !m_primary.isEmpty(); }
    /// Lights up for 2.5 seconds, if the link shows.
    void playPromptAnimation();
    bool isPromptRunning() const { return m_promptRunning; }
    /// Grows with each link made: a stable order.
    uint64_t serial() const { return m_serial; }

    bool getVisible() const override;
    bool getSelectable() const override;
    LumoRect customDirtyRect() const override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;
    void removedFromDiagram() override;
    bool shouldTriggerMouseDown(LumoEvent event) override;
    bool shouldTriggerMouseMove(LumoEvent event) override;
    bool shouldTriggerMouseUp(LumoEvent event) override;
    bool shouldTriggerMouseDoubleClick(LumoEvent event) override;

protected:
    void customLayout() override;
    /// After the items, at which links dock.
    int layoutOrder() const override { return 1; }
    void selectionChanged() override;

private:
    // join_link.cpp: pairs and layout
    void detachFromOrphans(const std::vector<AdaptorPair>& removed);
    void pairsChanged();
    std::vector<AdaptorPair> pairsInTree() const;
    void takeRoutes(const LumoRect& rect, std::vector<Route> routes);
    void tellSides(const std::vector<AdaptorPair>& pairs) const;

    // join_link_gesture.cpp
    void registerGesture();
    bool handleDown(const LumoEvent& event);
    bool handleUp(const LumoEvent& event);
    bool handleDoubleClick(const LumoEvent& event);
    void waitForSecondClick(LumoControl* control);
    void cancelGesture();
    void fireDoubleClicked();

    // join_link_paint.cpp
    void measureBoxes();
    JoinSymbol symbol() const;
    double promptProgress() const;
    QPainterPath wholeLine() const;
    void paintHaloLine(LumoPainter* painter, const LumoColor& color, double h) const;
    void paintLine(LumoPainter* painter) const;
    void paintPromptBack(LumoPainter* painter) const;
    void paintPromptFront(LumoPainter* painter) const;

    QBLumoJoinLinkAdaptor* m_tableLeft = nullptr;   // not owned: adaptors tell when they go
    QBLumoJoinLinkAdaptor* m_tableRight = nullptr;  // not owned
    std::vector<AdaptorPair> m_fieldPairs;          // not owned
    DoubleClickGestureData m_doubleClick;
    int32_t m_joinType = 0;
    std::string m_label;
    std::vector<Route> m_routes;  // in own space
    Route m_primary;              // the first that is not empty
    LumoRect m_routeBox;          // what it paints, in own space
    LumoRect m_labelBox;          // of the text at its symbol; empty without one
    QBLumoAnimation m_promptAnimation;
    bool m_promptRunning = false;
    const uint64_t m_serial;
};

}  // namespace QB::DiagramLumo
