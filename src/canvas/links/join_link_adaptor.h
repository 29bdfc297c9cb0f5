#pragma once

#include <map>

#include "canvas/base/object.h"

namespace QB::DiagramLumo {

class QBLumoJoinLink;

/// The relation modes of a diagram.
enum RelationMode : int32_t { TableRelation = 1, FieldRelation = 2 };

/// Where links dock at an item. Shared: several links may meet at one adaptor. Lives as long as its
/// item; links come and go.
class QBLumoJoinLinkAdaptor : public QBLumoObject {
public:
    ~QBLumoJoinLinkAdaptor() override;

    void removedFromDiagram() override;
    virtual void attachLink(QBLumoJoinLink* link);
    virtual void detachLink(QBLumoJoinLink* link);
    /// Which sides @p link uses.
    virtual void setLinkSides(QBLumoJoinLink* link, bool left, bool right);
    /// In own space.
    virtual LumoPoint leftConnectionPoint() const;
    virtual LumoPoint rightConnectionPoint() const;
    virtual bool isVisibleInRelationMode(int mode) const = 0;

    bool getVisible() const override;
    bool getSelectable() const override;
    std::vector<QBLumoJoinLink*> links() const;

protected:
    void requireLayoutMarked() override;

    struct Sides {
        bool left = false;
        bool right = false;
    };
    struct LinkOrder {  // by identity, stable from run to run
        bool operator()(const QBLumoJoinLink* a, const QBLumoJoinLink* b) const;
    };
    std::map<QBLumoJoinLink*, Sides, LinkOrder> m_links;  // not owned: links detach themselves
};

/// Stands for a table relation, at the title of the item.
class QBLumoItemJoinLinkAdaptor : public QBLumoJoinLinkAdaptor {
public:
    bool isVisibleInRelationMode(int mode) const override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;
};

/// Stands for a field relation, at the row of the field; at the edge of the list when that row is
/// scrolled out, at the title while there is no such row.
class QBLumoFieldJoinLinkAdaptor : public QBLumoJoinLinkAdaptor {
public:
    /// What the adaptor docks at, or null; not owned.
    LumoObject* getFieldView() const { return m_fieldView; }
    void setFieldView(LumoObject* view);
    bool isVisibleInRelationMode(int mode) const override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;

protected:
    void customLayout() override;

private:
    LumoObject* m_fieldView = nullptr;
};

}  // namespace QB::DiagramLumo
