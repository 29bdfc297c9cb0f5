#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "canvas/base/object.h"
#include "canvas/controls/list_view.h"
#include "engine/event_listener.h"

namespace QB::DiagramLumo {

class FieldCellDelegate;
class QBLumoFieldJoinLinkAdaptor;
class QBLumoItem;
class QBLumoScrollView;

/// What all bodies share: an alias, a list of fields with check boxes, the adaptors at which links
/// dock at fields, and the presses that select the item.
class QBLumoBaseItemBody : public QBLumoObject, public QBEventListener {
public:
    QBLumoBaseItemBody();
    ~QBLumoBaseItemBody() override;

    const std::string& getAlias() const { return m_alias; }
    void setAlias(const std::string& alias);
    /// Rows for the wildcard and each field, in order. Adaptors dock again at the rows of their
    /// fields, their links are laid out anew; ticks of fields that stay are kept.
    void setFields(const std::vector<std::string>& fields);
    std::vector<std::string> fieldNames() const;  // without the wildcard
    /// Tell nobody.
    void setFieldSelected(const std::string& name, bool selected);
    void setWildcardSelected(bool selected);
    void clearFieldSelection();
    bool isFieldSelected(const std::string& name) const;
    bool isWildcardSelected() const;
    /// The adaptor for links at @p name, made on first use; docked at the title while there is no
    /// such field. Owned by this body.
    QBLumoFieldJoinLinkAdaptor* adaptorForField(const std::string& name);
    QBLumoListView* listView() const { return m_list; }
    QBLumoScrollView* scrollView() const { return m_scroll; }
    QBLumoItem* item() const;
    /// One line that names the source: the title as shown, not cut.
    virtual std::string titleText() const = 0;
    virtual bool isTitleElided() const = 0;

    virtual bool isItemSelected() const;
    virtual LumoSize minimumSize() const;  // 30 x 30
    virtual bool responderMouseDown(LumoEvent event);
    virtual bool responderMouseUp(LumoEvent event);
    virtual bool responderMouseDoubleClick(LumoEvent event);
    /// Takes the colours of the theme in force.
    virtual void themeChanged();

protected:
    void customLayout() override;

    QBLumoScrollView* m_scroll = nullptr;  // owned as a child
    QBLumoListView* m_list = nullptr;      // owned as a child of the scroll view's content

private:
    std::string m_alias;
    std::unique_ptr<FieldCellDelegate> m_delegate;
    std::map<std::string, QBLumoFieldJoinLinkAdaptor*> m_adaptors;  // owned as children
};

}  // namespace QB::DiagramLumo
