#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "canvas/base/object.h"
#include "canvas/controls/list_view.h"
#include "canvas/items/item_look.h"
#include "engine/event_listener.h"
#include "model/names.h"

namespace QB::DiagramLumo {

class QBLumoDiagram;
class QBLumoFieldJoinLinkAdaptor;
class QBLumoItem;
class QBLumoScrollView;

/// What all bodies share: an alias, a list of fields with check boxes, the adaptors at which links
/// dock at fields, and the presses that select the item.
class QBLumoBaseItemBody : public QBLumoObject, public QBEventListener {
public:
    class FieldCellDelegate;              // these three: field_list.h
    class FieldCellBackground;            //
    class ScrollViewExtraActionReceiver;  //

    QBLumoBaseItemBody();
    ~QBLumoBaseItemBody() override;

    const std::string& getAlias() const { return m_alias; }
    void setAlias(const std::string& alias);
    /// Rows for the wildcard and each field, in order; without fields there are no rows at all.
    /// Adaptors dock again at the rows of their fields, their links are laid out anew. Ticks belong
    /// to names: they stay when rows come and go.
    void setFields(const std::vector<std::string>& fields);
    /// Before any field: whether names of fields that differ in case alone are of different ones.
    void setNamesHaveCase(bool haveCase) { m_namesHaveCase = haveCase; }
    const std::vector<std::string>& fieldNames() const { return m_fields; }  // no wildcard
    bool hasField(const std::string& name) const { return m_rowOf.count(keyOf(name)) > 0; }
    /// These tell nobody. Rows of one name are ticked together.
    void setFieldSelected(const std::string& name, bool selected);
    void setWildcardSelected(bool selected);
    void clearFieldSelection();
    /// Ticks just these; touches only the rows that change.
    void setFieldSelection(const std::set<std::string>& names, bool wildcard);
    bool isFieldSelected(const std::string& name) const { return m_ticked.count(keyOf(name)) > 0; }
    bool isWildcardSelected() const { return m_wildcardTicked; }
    /// As a click on the box of a row (0 is the wildcard): ticks it and tells the item's handler.
    void tickRowByUser(size_t row, bool selected);
    /// Scrolls as little as needed to show a row.
    void scrollToRow(size_t row);
    /// The adaptor for links at @p name, made on first use; docked at the title while there is no
    /// such field. Owned by this body.
    QBLumoFieldJoinLinkAdaptor* adaptorForField(const std::string& name);
    /// Has the links at its fields laid out anew, also those of an item that does not show.
    void markAdaptors();
    QBLumoListView* listView() const { return m_list; }
    QBLumoScrollView* scrollView() const { return m_scroll; }
    QBLumoItem* item() const;
    QBLumoDiagram* lumoDiagram() const;
    /// The strip at the top, in own space.
    LumoRect titleRect() const;
    /// One line that names the source: the title as shown, not cut.
    std::string titleText() const { return title().whole(); }
    bool isTitleElided() const;
    /// What the title's text covers, in own space.
    LumoRect titleTextPlace() const;

    virtual bool isItemSelected() const;
    virtual LumoSize minimumSize() const;  // 30 x 30
    virtual bool responderMouseDown(LumoEvent event);
    virtual bool responderMouseUp(LumoEvent event);
    virtual bool responderMouseDoubleClick(LumoEvent event);
    /// Takes the colours of the theme in force.
    virtual void themeChanged();
    /// Frame and title, then the children.
    void paint(LumoPaintConfig* config, LumoRect rect) override;

protected:
    virtual TitleText title() const = 0;
    /// Where the title's text may stand, in own space.
    virtual LumoRect titleTextRect() const;
    /// The dashes of the border; empty for a solid one.
    virtual const std::vector<double>& borderDash() const;
    /// There are other fields now.
    virtual void fieldsChanged();
    void customLayout() override;

    QBLumoScrollView* m_scroll = nullptr;  // owned as a child
    QBLumoListView* m_list = nullptr;      // owned as a child of the scroll view's content

private:
    void buildFieldList();
    void syncList();
    void setRowsForFields();
    void dockAdaptors();
    void undockAdaptors();
    QBLumoListView::Cell* cellOf(const std::string& name) const;
    void showTick(size_t row, bool ticked);
    void showTicksOf(const std::string& name);
    std::string keyOf(const std::string& name) const { return foldedName(name, m_namesHaveCase); }

    std::string m_alias;
    std::unique_ptr<FieldCellDelegate> m_delegate;
    ScrollViewExtraActionReceiver* m_overlay = nullptr;  // owned by the scroll view
    // All by keyOf() their names.
    std::map<std::string, QBLumoFieldJoinLinkAdaptor*> m_adaptors;  // owned as children
    std::vector<std::string> m_fields;
    std::unordered_multimap<std::string, size_t> m_rowOf;
    bool m_namesHaveCase = true;
    std::set<std::string> m_ticked;
    bool m_wildcardTicked = false;
    ItemColors m_colors;
    ItemColors m_selectedColors;
};

}  // namespace QB::DiagramLumo
