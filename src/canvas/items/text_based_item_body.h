#pragma once

#include <functional>

#include "canvas/items/base_item_body.h"

namespace QB::DiagramLumo {

class QBLumoButton;
class QBLumoSplitter;

/// A subquery or an expression: its text, a button that opens it, and its fields, if there are any,
/// beside the text.
class QBLumoTextBasedItemBody : public QBLumoBaseItemBody {
public:
    QBLumoTextBasedItemBody();
    ~QBLumoTextBasedItemBody() override;

    const std::string& getText() const { return m_text; }
    void setText(const std::string& text);
    /// An empty function takes the button away.
    void setEditButtonHandler(std::function<void(QBLumoTextBasedItemBody*)> handler);
    bool hasEditButton() const;

    std::string titleText() const override;
    bool isTitleElided() const override;
    LumoSize minimumSize() const override;
    void paint(LumoPaintConfig* config, LumoRect rect) override;
    void themeChanged() override;

protected:
    void customLayout() override;

private:
    class TextArea;
    std::string m_text;
    QBLumoSplitter* m_splitter = nullptr;  // owned as a child
    TextArea* m_textArea = nullptr;        // owned as a child of the first pane
    QBLumoButton* m_editButton = nullptr;  // owned as a child; null without a handler
};

}  // namespace QB::DiagramLumo
