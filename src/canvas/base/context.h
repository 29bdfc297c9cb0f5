#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "model/variant.h"
#include "platform/lumo/lumo_context.h"

namespace QB::DiagramLumo {

class QBLumoBaseItemBody;
class QBLumoItem;
class QBLumoJoinLink;

/// What the diagram tells of the user's doing. The diagram knows no query: whoever does listens
/// here. A slot is a function or empty; firing an empty slot does nothing. A function may destroy
/// the objects that it is told of, and replace any slot.
class QBLumoContext : public LumoContext {
public:
    /// What the user did to the places of items.
    enum class Arrangement { Moved, MovedByKey, Resized, LaidOut };
    using ItemsSlot = std::function<void(const std::vector<QBLumoItem*>&)>;
    using JoinLinksSlot = std::function<void(const std::vector<QBLumoJoinLink*>&)>;
    using ItemSelectionSlot = std::function<void(QBLumoItem*, bool)>;
    using FieldLinkSlot =
        std::function<void(QBLumoItem*, const std::string&, QBLumoItem*, const std::string&)>;
    using BodySlot = std::function<void(QBLumoBaseItemBody*)>;
    using JoinLinkSlot = std::function<void(QBLumoJoinLink*, bool)>;
    using EmptinessSlot = std::function<void(bool)>;
    using ItemSlot = std::function<void(QBLumoItem*)>;
    using ArrangedSlot = std::function<void(Arrangement)>;

    /// The user deletes selected items; they still stand in the diagram.
    void setItemsWillBeDeleted(ItemsSlot slot);
    void itemsWillBeDeleted(const std::vector<QBLumoItem*>& items);
    void setJoinLinksWillBeDeleted(JoinLinksSlot slot);
    void joinLinksWillBeDeleted(const std::vector<QBLumoJoinLink*>& links);
    /// An item was selected (true) or deselected.
    void setItemSelectionChanged(ItemSelectionSlot slot);
    void itemSelectionChanged(QBLumoItem* item, bool selected);
    /// A drag from a field of one item to a field of another has ended there.
    void setFieldLinkDrawn(FieldLinkSlot slot);
    void fieldLinkDrawn(QBLumoItem* source, const std::string& sourceField, QBLumoItem* target,
                        const std::string& targetField);
    void setItemBodyDoubleClicked(BodySlot slot);
    void itemBodyDoubleClicked(QBLumoBaseItemBody* body);
    /// A click on a link, too: once for a click or a double click.
    void setJoinLinkDoubleClicked(JoinLinkSlot slot);
    void joinLinkDoubleClicked(QBLumoJoinLink* link, bool byUser);
    /// The diagram turned empty (true) or got its first child.
    void setDiagramEmptinessChanged(EmptinessSlot slot);
    void diagramEmptinessChanged(bool empty);
    /// F2 on an item: its alias is to be edited.
    void setItemAliasWanted(ItemSlot slot);
    void itemAliasWanted(QBLumoItem* item);
    /// The user has moved or resized items, or had them arranged: the gesture is over, and at least
    /// one rectangle is another one. Not after setRect by anybody else.
    void setItemsArranged(ArrangedSlot slot);
    void itemsArranged(Arrangement how);

private:
    ItemsSlot m_itemsWillBeDeleted;
    JoinLinksSlot m_joinLinksWillBeDeleted;
    ItemSelectionSlot m_itemSelectionChanged;
    FieldLinkSlot m_fieldLinkDrawn;
    BodySlot m_itemBodyDoubleClicked;
    JoinLinkSlot m_joinLinkDoubleClicked;
    EmptinessSlot m_diagramEmptinessChanged;
    ItemSlot m_itemAliasWanted;
    ArrangedSlot m_itemsArranged;
};

/// What a right click on the canvas carries (LumoUIRightClickParam::block points to one). Objects
/// may be gone when it arrives: compare them with what the diagram holds, do not use them.
struct RightClickBlock {
    LumoObject* clicked = nullptr;            // not owned; null for the empty canvas
    std::vector<LumoObject*> selection;       // not owned
    std::map<std::string, QBVariant> extras;  // "FieldName": of the field, "" for the wildcard
};

}  // namespace QB::DiagramLumo
