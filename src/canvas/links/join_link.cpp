#include "canvas/links/join_link.h"

#include <algorithm>
#include <map>

#include "canvas/diagram/diagram.h"
#include "canvas/links/join_link_adaptor.h"

namespace QB::DiagramLumo {
namespace {

constexpr double promptSeconds = 2.5;

uint64_t nextSerial() {
    static uint64_t last = 0;
    return ++last;
}

const LumoObject* rootOf(const LumoObject* object) {
    while (object->getParent())
        object = object->getParent();
    return object;
}

/// Seen from @p space, an object of the same tree.
AdaptorEnd endOf(const QBLumoJoinLinkAdaptor* adaptor, const LumoObject* space) {
    const LumoRect rect = adaptor->translateRect(adaptor->getBoundingRect(), space);
    return {rect, rect.origin + adaptor->leftConnectionPoint(),
            rect.origin + adaptor->rightConnectionPoint()};
}

bool holds(const std::vector<QBLumoJoinLink::AdaptorPair>& pairs,
           const QBLumoJoinLinkAdaptor* adaptor) {
    return std::any_of(pairs.begin(), pairs.end(), [adaptor](const auto& pair) {
        return pair.first == adaptor || pair.second == adaptor;
    });
}

}  // namespace

QBLumoJoinLink::QBLumoJoinLink() : m_promptAnimation(promptSeconds), m_serial(nextSerial()) {
    setSelectable(true);
    registerGesture();
}

QBLumoJoinLink::~QBLumoJoinLink() {
    const std::vector<AdaptorPair> pairs = allAdaptorPairs();
    m_fieldPairs.clear();
    m_tableLeft = m_tableRight = nullptr;
    detachFromOrphans(pairs);
}

// ---- what it stands for ----

void QBLumoJoinLink::setJoinType(int type) {
    if (m_joinType == type) return;
    invalidate();
    m_joinType = type;
    measureBoxes();
    invalidate();
}

void QBLumoJoinLink::setLabel(const std::string& label) {
    if (m_label == label) return;
    invalidate();
    m_label = label;
    measureBoxes();
    invalidate();
}

void QBLumoJoinLink::setTableAdaptors(QBLumoJoinLinkAdaptor* left, QBLumoJoinLinkAdaptor* right) {
    const bool isPair = left && right;
    const AdaptorPair before(m_tableLeft, m_tableRight);
    m_tableLeft = isPair ? left : nullptr;
    m_tableRight = isPair ? right : nullptr;
    if (before.first) detachFromOrphans({before});
    if (isPair) {
        left->attachLink(this);
        right->attachLink(this);
    }
    pairsChanged();
}

void QBLumoJoinLink::addFieldAdaptors(QBLumoJoinLinkAdaptor* left, QBLumoJoinLinkAdaptor* right) {
    if (!left || !right) return;
    left->attachLink(this);
    right->attachLink(this);
    m_fieldPairs.emplace_back(left, right);
    pairsChanged();
}

void QBLumoJoinLink::removeAllAdaptors() {
    removeAdaptorPairs([](const AdaptorPair&) { return true; });
}

std::vector<QBLumoJoinLink::AdaptorPair> QBLumoJoinLink::allAdaptorPairs() const {
    std::vector<AdaptorPair> pairs = m_fieldPairs;
    if (m_tableLeft) pairs.emplace_back(m_tableLeft, m_tableRight);
    return pairs;
}

void QBLumoJoinLink::removeAdaptorPairs(const std::function<bool(const AdaptorPair&)>& predicate) {
    std::vector<AdaptorPair> removed;
    std::vector<AdaptorPair> kept;
    for (const AdaptorPair& pair : m_fieldPairs)
        (predicate(pair) ? removed : kept).push_back(pair);
    m_fieldPairs = std::move(kept);
    if (m_tableLeft && predicate({m_tableLeft, m_tableRight})) {
        removed.emplace_back(m_tableLeft, m_tableRight);
        m_tableLeft = m_tableRight = nullptr;
    }
    if (removed.empty()) return;
    detachFromOrphans(removed);
    pairsChanged();
}

/// Leaves the ends of @p removed pairs that no other pair of this link holds.
void QBLumoJoinLink::detachFromOrphans(const std::vector<AdaptorPair>& removed) {
    const std::vector<AdaptorPair> remaining = allAdaptorPairs();
    for (const AdaptorPair& pair : removed)
        for (QBLumoJoinLinkAdaptor* adaptor : {pair.first, pair.second})
            if (!holds(remaining, adaptor)) adaptor->detachLink(this);
}

/// What is on the screen goes now; the next layout finds the new routes.
void QBLumoJoinLink::pairsChanged() {
    invalidate();
    m_routes.clear();
    m_primary = Route();
    measureBoxes();
    setRequireToVerifyLayout(true);
}

// ---- visibility ----

bool QBLumoJoinLink::isVisibleInRelationMode(int mode) const {
    if (!m_fieldPairs.empty()) return m_fieldPairs.front().first->isVisibleInRelationMode(mode);
    return !m_tableLeft || m_tableLeft->isVisibleInRelationMode(mode);
}

std::vector<QBLumoJoinLink::AdaptorPair> QBLumoJoinLink::shownAdaptorPairs() const {
    std::vector<AdaptorPair> pairs = allAdaptorPairs();
    const int mode = relationModeOf(this);
    if (mode == 0) return pairs;
    const auto isHidden = [mode](const AdaptorPair& pair) {
        return !pair.first->isVisibleInRelationMode(mode);
    };
    pairs.erase(std::remove_if(pairs.begin(), pairs.end(), isHidden), pairs.end());
    return pairs;
}

bool QBLumoJoinLink::getVisible() const {
    if (!QBLumoObject::getVisible()) return false;
    const int mode = relationModeOf(this);
    return mode == 0 || isVisibleInRelationMode(mode);
}

bool QBLumoJoinLink::getSelectable() const {
    if (!QBLumoObject::getSelectable()) return false;
    const int mode = relationModeOf(this);
    return mode == 0 || isVisibleInRelationMode(mode);
}

// ---- layout ----

/// Adaptors lie in this link's tree by now: items are laid out before links.
void QBLumoJoinLink::customLayout() {
    QBLumoObject::customLayout();
    const std::vector<AdaptorPair> pairs = pairsInTree();
    if (pairs.empty()) return takeRoutes(getRect(), {});

    const LumoObject* const space = getParent();
    const LumoDoublePoint centre =
        linkCentre(endOf(pairs.front().first, space), endOf(pairs.front().second, space));
    LumoRect adaptors;
    std::vector<Route> routes;
    for (const AdaptorPair& pair : pairs) {
        const AdaptorEnd left = endOf(pair.first, space);
        const AdaptorEnd right = endOf(pair.second, space);
        adaptors = lumoUnionRect(adaptors, lumoUnionRect(left.rect, right.rect));
        routes.push_back(routeBetween(left, right, centre));
    }
    const LumoRect rect = linkRect(adaptors);
    for (Route& route : routes)
        route = route.movedBy(LumoPoint{} - rect.origin);
    takeRoutes(rect, std::move(routes));
    tellSides(pairs);
}

std::vector<QBLumoJoinLink::AdaptorPair> QBLumoJoinLink::pairsInTree() const {
    if (!getParent()) return {};
    std::vector<AdaptorPair> pairs = allAdaptorPairs();
    const LumoObject* const root = rootOf(this);
    const auto isElsewhere = [root](const AdaptorPair& pair) {
        return rootOf(pair.first) != root || rootOf(pair.second) != root;
    };
    pairs.erase(std::remove_if(pairs.begin(), pairs.end(), isElsewhere), pairs.end());
    return pairs;
}

void QBLumoJoinLink::takeRoutes(const LumoRect& rect, std::vector<Route> routes) {
    if (rect == getRect() && routes == m_routes) return;
    invalidate();
    setRect(rect);
    m_routes = std::move(routes);
    const auto primary = std::find_if(m_routes.begin(), m_routes.end(),
                                      [](const Route& route) { return !route.isEmpty(); });
    m_primary = primary == m_routes.end() ? Route() : *primary;
    measureBoxes();
    invalidate();
}

/// One adaptor may be an end of several routes; @p pairs stand in the order of routes.
void QBLumoJoinLink::tellSides(const std::vector<AdaptorPair>& pairs) const {
    std::map<QBLumoJoinLinkAdaptor*, std::pair<bool, bool>> sides;  // left, right
    for (size_t i = 0; i < pairs.size(); ++i) {
        const Route& route = m_routes[i];
        auto& start = sides[pairs[i].first];
        auto& end = sides[pairs[i].second];
        if (route.isEmpty()) continue;
        (route.startIsRight ? start.first : start.second) = true;
        (route.endIsRight ? end.first : end.second) = true;
    }
    for (const auto& entry : sides)
        entry.first->setLinkSides(const_cast<QBLumoJoinLink*>(this), entry.second.first,
                                  entry.second.second);
}

// ---- state ----

bool QBLumoJoinLink::hitTest(LumoPoint point, bool line, bool symbol) const {
    return LinkHit{m_primary, m_joinType, getVisible()}.hits(point, line, symbol);
}

void QBLumoJoinLink::selectionChanged() {
    QBLumoObject::selectionChanged();
    invalidate();
    for (const AdaptorPair& pair : allAdaptorPairs()) {
        pair.first->invalidate();
        pair.second->invalidate();
    }
}

void QBLumoJoinLink::removedFromDiagram() {
    cancelGesture();
    if (auto* const diagram = dynamic_cast<QBLumoDiagram*>(this->diagram()))
        diagram->getAnimationTimer()->stopAnimation(&m_promptAnimation);
    m_promptRunning = false;
    QBLumoObject::removedFromDiagram();
}

void QBLumoJoinLink::playPromptAnimation() {
    auto* const diagram = dynamic_cast<QBLumoDiagram*>(this->diagram());
    if (!diagram || !getVisible()) return;
    m_promptAnimation.setUpdateFunction([this](QBLumoAnimation* animation) {
        m_promptRunning = true;  // for the box of the waves, which go now
        invalidate();
        m_promptRunning = animation->elapsed() < animation->duration();
        flushDirtyRect();
    });
    diagram->getAnimationTimer()->playAnimation(&m_promptAnimation);
}

}  // namespace QB::DiagramLumo
