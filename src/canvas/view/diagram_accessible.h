#pragma once

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include <QAccessible>
#include <QObject>

#include "engine/event_listener.h"
#include "platform/lumo/lumo_types.h"

class LumoObject;

namespace QB::DiagramLumo {

class QBLumoDiagram;
class QBLumoObject;
class QBLumoUIView;

/// What assistive technology sees of a diagram: below the view stand the items and the links that
/// show, below an item its edit button and the rows of its fields.
///
/// Qt knows accessible interfaces of widgets only. Those of the diagram's objects are made when
/// somebody asks for them, a row's when somebody asks for that row. They hold no object but its
/// serial, and look it up at each call; one whose object has left is invalid at once, and gone from
/// Qt's registry at the latest with the next change of the diagram.
///
/// Ownership: the view's. Qt's registry owns the interfaces; this class takes them out of it.
/// Thread: the one of the screen.
class DiagramAccessible : public QObject, private QBEventListener {
public:
    /// An object of the diagram, or a part of an item.
    struct Place {
        uint64_t serial = 0;  // of the item or link
        int part = whole;     // or editButton, or the number of a row
        bool operator<(const Place& other) const {
            return serial != other.serial ? serial < other.serial : part < other.part;
        }
        bool operator==(const Place& other) const {
            return serial == other.serial && part == other.part;
        }
    };
    static constexpr int whole = -1;
    static constexpr int editButton = -2;

    explicit DiagramAccessible(QBLumoUIView* view);
    ~DiagramAccessible() override;

    QBLumoUIView* view() const { return m_view; }
    QBLumoDiagram* diagram() const;
    /// The items and links that show, items first, each kind in the order of making: a press, which
    /// raises an item, changes no index.
    const std::vector<QBLumoObject*>& shownObjects();
    /// Where @p object stands among them, or -1.
    int indexOfShown(const QBLumoObject* object);
    /// An item or link of the diagram, also one that does not show; null if it has left.
    QBLumoObject* find(uint64_t serial);
    /// The interface of the view itself.
    QAccessibleInterface* root() const;
    /// Made if it is missing.
    QAccessibleInterface* interfaceOf(const Place& place);
    /// Of the object or row that the keyboard is at, or null.
    QAccessibleInterface* focusedInterface();
    /// The interface of @p place has died.
    void interfaceDied(const Place& place);
    /// Interfaces of objects and parts that live now.
    size_t interfaceCount() const { return m_interfaces.size(); }

    /// Pixels of the screen that a rectangle of the diagram takes.
    QRect onScreen(const LumoRect& rect) const;
    /// In the diagram's space.
    LumoPoint inDiagram(int screenX, int screenY) const;

    /// The view got the keyboard focus.
    void focusArrived();

private:
    /// What was told of an interface: another value is news.
    struct Told {
        QString name;
        bool selected = false;
        bool checked = false;
        LumoRect rect;  // in the diagram's space
    };
    struct Entry {
        QAccessible::Id id = 0;
        Told told;
    };

    void contentChanged();
    void takeDiagram();
    void buildIndex();
    bool isIndexFresh() const;
    void dropInterfaces(uint64_t serial);
    void dropInterface(const Place& place);
    void dropGone();
    void tellCreated();
    void tellChanges();
    void tellChange(const Place& place, const Told& now);
    void tellFocus();
    static void tell(QAccessibleInterface* interface, QAccessible::Event event);

    QBLumoUIView* const m_view;          // not owned: the owner
    QBLumoDiagram* m_diagram = nullptr;  // not owned; the one that is listened to
    std::unique_ptr<QBEventListener> m_listener;
    std::map<Place, Entry> m_interfaces;
    std::vector<QBLumoObject*> m_shown;
    std::unordered_map<uint64_t, QBLumoObject*> m_bySerial;
    std::vector<LumoObject*> m_indexed;  // the children that the index was built of
    int m_indexedMode = 0;
    bool m_indexStale = true;
    bool m_dying = false;
    uint64_t m_newestTold = 0;  // serial: objects after it are new
};

/// Makes Qt ask for the interface of a QBLumoUIView here. May be called again.
void installDiagramAccessible();

}  // namespace QB::DiagramLumo
