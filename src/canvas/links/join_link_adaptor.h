#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "canvas/base/object.h"

class LumoPainter;

namespace QB::DiagramLumo {

class QBLumoJoinLink;

/// The relation modes of a diagram.
enum RelationMode : int32_t { TableRelation = 1, FieldRelation = 2 };

/// The mode of the diagram that @p object lies in; 0 if it lies in none, where all modes show.
int relationModeOf(const LumoObject* object);

/// Where links dock at an item. Shared: several links may meet at one adaptor. Lives as long as its
/// item; links come and go, in any order with it: whoever goes first takes itself out of the other.
class QBLumoJoinLinkAdaptor : public QBLumoObject {
public:
    ~QBLumoJoinLinkAdaptor() override;

    /// Takes the pairs that hold this adaptor out of their links.
    void removedFromDiagram() override;
    virtual void attachLink(QBLumoJoinLink* link);
    virtual void detachLink(QBLumoJoinLink* link);
    /// Which sides @p link, which is attached, uses.
    virtual void setLinkSides(QBLumoJoinLink* link, bool left, bool right);
    /// In own space.
    virtual LumoPoint leftConnectionPoint() const;
    virtual LumoPoint rightConnectionPoint() const;
    virtual bool isVisibleInRelationMode(int mode) const = 0;

    bool getVisible() const override;
    bool getSelectable() const override;
    LumoRect customDirtyRect() const override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;
    std::vector<QBLumoJoinLink*> links() const;
    /// Whether a link docks at the left side (first) and at the right side.
    std::pair<bool, bool> usedSides() const;

protected:
    void requireLayoutMarked() override;
    /// Adds the shape of the marker at @p point to the painter's path.
    virtual void addMarker(LumoPainter* painter, LumoPoint point, bool isLeft) const = 0;

private:
    struct Sides {
        bool left = false;
        bool right = false;
    };
    struct LinkOrder {  // by identity, stable from run to run
        bool operator()(const QBLumoJoinLink* a, const QBLumoJoinLink* b) const;
    };

    bool isShownInMode() const;
    void leaveLinks();
    void paintMarker(LumoPaintConfig* config, bool isLeft) const;

    std::map<QBLumoJoinLink*, Sides, LinkOrder> m_links;  // not owned: links detach themselves
};

/// Stands for a table relation, at the title of the item.
class QBLumoItemJoinLinkAdaptor : public QBLumoJoinLinkAdaptor {
public:
    bool isVisibleInRelationMode(int mode) const override;

protected:
    void addMarker(LumoPainter* painter, LumoPoint point, bool isLeft) const override;
};

/// Stands for a field relation, at the row of the field; at the edge of the list when that row is
/// scrolled out, at the title while there is no such row.
class QBLumoFieldJoinLinkAdaptor : public QBLumoJoinLinkAdaptor {
public:
    /// What the adaptor docks at, or null; not owned: whoever destroys it says null first.
    LumoObject* getFieldView() const { return m_fieldView; }
    void setFieldView(LumoObject* view);
    /// The field of the row that it docks at; null while there is no such row.
    const std::string* fieldName() const;
    bool isVisibleInRelationMode(int mode) const override;

protected:
    void customLayout() override;
    void addMarker(LumoPainter* painter, LumoPoint point, bool isLeft) const override;

private:
    LumoRect bodyRect() const;
    int32_t dockedY() const;

    LumoObject* m_fieldView = nullptr;
};

}  // namespace QB::DiagramLumo
