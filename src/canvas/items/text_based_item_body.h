#pragma once

#include <functional>
#include <string>

#include "canvas/items/base_item_body.h"

namespace QB::DiagramLumo {

class QBLumoButton;
class QBLumoSplitter;

/// A subquery or an expression: its text, a button that opens it, and its fields, if there are any,
/// beside the text. The alias is its title.
class QBLumoTextBasedItemBody : public QBLumoBaseItemBody {
public:
    QBLumoTextBasedItemBody();
    ~QBLumoTextBasedItemBody() override;

    const std::string& getText() const { return m_text; }
    void setText(const std::string& text);
    /// True if there is more text than shows.
    bool isTextElided() const;
    /// Where the text shows, in own space.
    LumoRect textRect() const;
    /// An empty function takes the button away.
    void setEditButtonHandler(std::function<void(QBLumoTextBasedItemBody*)> handler);
    bool hasEditButton() const { return m_editButton; }
    QBLumoButton* editButton() const { return m_editButton; }
    /// Between text and fields; not visible without fields.
    QBLumoSplitter* splitter() const { return m_splitter; }

    LumoSize minimumSize() const override;  // with room for the button
    void themeChanged() override;

protected:
    TitleText title() const override;
    LumoRect titleTextRect() const override;
    void fieldsChanged() override;
    void customLayout() override;

private:
    class TextArea;
    void placeInPanes();
    void takeDividerColor();

    std::string m_text;
    QBLumoSplitter* m_splitter = nullptr;  // owned as a child
    TextArea* m_textArea = nullptr;        // owned as a child of the body, or of the first pane
    QBLumoButton* m_editButton = nullptr;  // owned as a child; null without a handler
};

}  // namespace QB::DiagramLumo
