#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "canvas/diagram/diagram.h"

namespace QB::DiagramLumo {

class QBLumoBaseItemBody;
class QBLumoSplitter;

/// All that the keys do: where the focus is, and what a key means there. Keys mean other things
/// among the rows of an item, while a link is drawn and while an item is resized.
class QBLumoDiagram::Keyboard {
public:
    explicit Keyboard(QBLumoDiagram* diagram) : m_diagram(diagram) {}

    LumoObject* focused() const { return m_focused; }
    int row() const { return m_row; }
    bool isRingShown() const { return m_ringShown; }
    bool isResizing() const { return m_resize.has_value(); }

    void setFocus(LumoObject* object, int row);
    bool focusNext(bool forward);
    /// True if the key did something.
    bool keyDown(const LumoEvent& event);

    /// The mouse was pressed on @p object, or on the canvas for null: the focus follows, what the
    /// keys have begun ends.
    void pressed(LumoObject* object);
    /// Ends a link that was begun by keys, if there is one.
    void endLink(bool tell);
    /// @p object leaves.
    void forget(LumoObject* object);

private:
    using Place = std::pair<LumoObject*, LumoRect>;
    using Action = bool (Keyboard::*)(const LumoEvent&);
    /// @p keys: exactly these are held, or anyKeys.
    struct Binding {
        int32_t keyCode;
        int32_t keys;
        Action action;
    };
    static constexpr int32_t anyKeys = -1;
    struct Resize {
        QBLumoItem* item;  // not owned
        LumoRect start;
        bool sizedByUser;
        double splitterRatio;
    };

    bool call(const std::vector<Binding>& bindings, const LumoEvent& event, bool* found);
    bool callForMode(const LumoEvent& event, bool* found);
    bool callAmongRows(const LumoEvent& event, bool* found);
    bool callWhileLinking(const LumoEvent& event, bool* found);
    bool callWhileResizing(const LumoEvent& event, bool* found);

    // ---- focus ----

    void place(LumoObject* object, int row, bool showRing);
    void invalidateRing() const;
    std::vector<Place> readingPlaces() const;
    QBLumoItem* focusedItem() const;
    static int rowCount(const QBLumoItem* item);
    static const std::string* fieldAt(const QBLumoItem* item, int row);
    static int rowOfField(const QBLumoItem* item, const std::string& name);
    LumoPoint focusPoint() const;

    // ---- anywhere ----

    bool moveItems(const LumoEvent& event);
    bool deleteSelected(const LumoEvent& event);
    bool zoom(const LumoEvent& event);
    bool leaveForward(const LumoEvent& event);
    bool leaveBackward(const LumoEvent& event);
    bool select(const LumoEvent& event);
    bool toggleSelected(const LumoEvent& event);
    bool selectAll(const LumoEvent& event);
    bool open(const LumoEvent& event);
    bool editText(const LumoEvent& event);
    bool askForAlias(const LumoEvent& event);
    bool askForMenu(const LumoEvent& event);
    bool giveUp(const LumoEvent& event);
    bool swallow(const LumoEvent& event);

    // ---- among rows ----

    bool enterRows(const LumoEvent& event);
    bool leaveRows(const LumoEvent& event);
    bool walkRows(const LumoEvent& event);
    bool tickRow(const LumoEvent& event);

    // ---- a link ----

    bool isLinking() const;
    bool beginLink(const LumoEvent& event);
    bool nextTarget(const LumoEvent& event);
    bool walkTargetRows(const LumoEvent& event);
    bool drawLink(const LumoEvent& event);
    bool giveUpLink(const LumoEvent& event);
    void followFocus();

    // ---- a resize ----

    bool beginResize(const LumoEvent& event);
    bool resizeBy(const LumoEvent& event);
    bool moveSplitter(const LumoEvent& event);
    bool keepSize(const LumoEvent& event);
    bool restoreSize(const LumoEvent& event);
    /// The item stays as it is now.
    void endResize();
    static QBLumoSplitter* splitterOf(const QBLumoItem* item);

    QBLumoDiagram* const m_diagram;   // not owned: the owner
    LumoObject* m_focused = nullptr;  // not owned: a child
    int m_row = -1;
    bool m_ringShown = false;
    std::optional<LumoRect> m_lastPlace;  // of what had the focus and went
    QBLumoItem* m_linkItem = nullptr;     // not owned; where the keys began a link
    int m_linkRow = -1;
    std::optional<Resize> m_resize;
};

}  // namespace QB::DiagramLumo
