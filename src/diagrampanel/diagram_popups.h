#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <memory>

#include "model/components.h"
#include "popups/panel_popup.h"

namespace QB {

class QBPanelWidget;
struct TextLanguage;

/// The popups that open at the items and links of the diagram, and what their answers do to the
/// query, with the panel as the sender. One at a time; asked for another while one is open, nothing
/// happens.
///
/// The component is known by its id, and looked up in the current layer when an answer comes; the
/// popup closes as cancelled as soon as it is no longer there, or the engine is gone. An answer
/// during a parse changes nothing.
///
/// A member of the panel, named last, so that it goes first (see QBPanelPopup). Components need
/// not outlive the call. Rectangles and points are in pixels of the view.
/// Thread: main.
class DiagramPopups : public QObject {
    Q_OBJECT

public:
    using Source = Component::SQL::SQLAbstractSourceComponent;
    using Subquery = Component::SQL::SQLSubquerySourceComponent;
    using Join = Component::SQL::SQLJoinSourceNodeComponent;

    /// @p panel is the parent of the popups, @p view what they are placed at; neither is owned,
    /// both outlive this object.
    DiagramPopups(QBPanelWidget* panel, QWidget* view);
    ~DiagramPopups() override;

    /// A line with the alias. A name by which another source goes is refused: the user is told and
    /// goes on from what was typed. An empty one takes the alias away.
    void editAlias(const Source* source, const QRect& place);
    /// The text of the subquery, in several lines. One that is no SELECT is refused in that way.
    void editSubqueryText(const Subquery* subquery, const QRect& place);
    /// The join editor. @p left and @p right are the sources that the link connects; may be null.
    void editJoin(Join* join, Source* left, Source* right, const QPoint& place);

    bool isOpen() const { return m_popup.isOpen(); }
    /// Closes the open popup, if any, as cancelled.
    void cancel() { m_popup.cancel(); }

private:
    void connectEngine();
    void closeOrphan();
    bool isThere(long id) const;
    TextLanguage language() const;
    /// As long as that component is there; a popup there is for it.
    QBPopupAnchorFinder at(const QRect& place, const QString& name, long id);
    // These return what is wrong with the text, in words; empty if nothing.
    QString takeAlias(long id, const QString& typed);
    QString takeSubqueryText(long id, const QString& typed);

    QBPanelWidget* const m_panel;  // not owned
    QWidget* const m_view;         // not owned
    QPointer<const QObject> m_emitter;
    long m_edited = -1;    // the id of what the popup is open for
    QBPanelPopup m_popup;  // last, so that it goes before what its answers use
};

}  // namespace QB
