#include "canvas/items/text_based_item_body.h"

#include <algorithm>
#include <cmath>

#include "canvas/base/canvas_style.h"
#include "canvas/controls/button.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/controls/splitter.h"
#include "canvas/items/item_geometry.h"
#include "canvas/items/text_wrap.h"
#include "platform/lumo/lumo_paint.h"

namespace QB::DiagramLumo {

namespace {

constexpr int textMarginX = 8;
constexpr int textMarginY = 4;
constexpr int buttonMargin = 7;
const char* const editImage = "ResID_BtnSubqueryEdit";

LumoRect insetBy(const LumoRect& rect, const LumoPadding& insets) {
    return {lumoMinX(rect) + insets.left, lumoMinY(rect) + insets.top,
            std::max(lumoWidth(rect) - insets.left - insets.right, 0),
            std::max(lumoHeight(rect) - insets.top - insets.bottom, 0)};
}

}  // namespace

/// The text, as much of it as the area holds.
class QBLumoTextBasedItemBody::TextArea : public QBLumoObject {
public:
    explicit TextArea(const std::string* text) : m_text(text) {}

    bool isCut() const { return m_wrapped.isCut; }

    void wrap() {
        const LumoRect room = lumoInflateRect(getBoundingRect(), -textMarginX, -textMarginY);
        m_wrapped = wrappedText(*m_text, lumoWidth(room), int(lumoHeight(room) / lineHeight()));
        invalidate();
    }

    void paint(LumoPaintConfig* config, LumoRect rect) override {
        LumoPainter painter(config, this);
        painter.setColor(themePalette().text);
        const double width = lumoWidth(getRect()) - 2 * textMarginX;
        double y = textMarginY;
        for (const std::string& line : m_wrapped.lines) {
            painter.drawText(line, Style::itemFont, LumoAlignLeft,
                             {textMarginX, y, width, lineHeight()});
            y += lineHeight();
        }
        QBLumoObject::paint(config, rect);
    }

protected:
    void customLayout() override {
        QBLumoObject::customLayout();
        if (m_wrappedSize == getRect().size) return;
        m_wrappedSize = getRect().size;
        wrap();
    }

private:
    static double lineHeight() {
        return std::ceil(lumoLayoutHelper().measureText(" ", Style::itemFont).height);
    }

    const std::string* const m_text;  // not owned: the body's
    WrappedText m_wrapped;
    LumoSize m_wrappedSize;
};

QBLumoTextBasedItemBody::QBLumoTextBasedItemBody()
    : m_splitter(new QBLumoSplitter(false)), m_textArea(new TextArea(&m_text)) {
    setRect(LumoRect({0, 0}, defaultTextBodySize()));
    m_splitter->setVisible(false);
    addChild(m_splitter);
    addChild(m_textArea);
    // The list lives in a pane, whose size it takes.
    m_scroll->setMarginConstraint(0);
    m_scroll->setVisible(false);
    m_splitter->getSecondPane()->addChild(m_scroll);
    for (QBLumoObject* pane : {m_splitter->getFirstPane(), m_splitter->getSecondPane()})
        pane->rectChanged()->addListener([this](QBLumoObject*, LumoRect) { placeInPanes(); },
                                         guarantor());
    takeDividerColor();
}

QBLumoTextBasedItemBody::~QBLumoTextBasedItemBody() = default;

void QBLumoTextBasedItemBody::setText(const std::string& text) {
    if (text == m_text) return;
    m_text = text;
    m_textArea->wrap();
}

bool QBLumoTextBasedItemBody::isTextElided() const {
    return m_textArea->isCut();
}

LumoRect QBLumoTextBasedItemBody::textRect() const {
    return m_textArea->translateRect(m_textArea->getBoundingRect(), this);
}

void QBLumoTextBasedItemBody::setEditButtonHandler(
    std::function<void(QBLumoTextBasedItemBody*)> handler) {
    if (!handler) {
        if (m_editButton) removeChild(m_editButton);
        delete m_editButton;
        m_editButton = nullptr;
        return;
    }
    if (!m_editButton) {
        m_editButton = new QBLumoButton;
        m_editButton->setImage(editImage);
        addChild(m_editButton);
        setRequireToVerifyLayout(true);
    }
    m_editButton->setClickHandler([this, handler](QBLumoButton*) { handler(this); });
}

TitleText QBLumoTextBasedItemBody::title() const {
    return {std::string(), getAlias()};
}

LumoRect QBLumoTextBasedItemBody::titleTextRect() const {
    LumoRect rect = QBLumoBaseItemBody::titleTextRect();
    if (m_editButton)
        rect.size.width =
            std::max(rect.size.width - lumoWidth(m_editButton->getRect()) - buttonMargin, 0);
    return rect;
}

LumoSize QBLumoTextBasedItemBody::minimumSize() const {
    LumoSize size = QBLumoBaseItemBody::minimumSize();
    if (m_editButton) size.width += lumoWidth(m_editButton->getRect()) + buttonMargin;
    return size;
}

void QBLumoTextBasedItemBody::themeChanged() {
    QBLumoBaseItemBody::themeChanged();
    takeDividerColor();
}

void QBLumoTextBasedItemBody::takeDividerColor() {
    m_splitter->setLineColor(itemColors(false).border);
}

void QBLumoTextBasedItemBody::fieldsChanged() {
    const bool hasFields = !fieldNames().empty();
    if (hasFields == m_splitter->getVisible()) return;
    m_splitter->setVisible(hasFields);
    m_scroll->setVisible(hasFields);
    LumoObject* const place =
        hasFields ? m_splitter->getFirstPane() : static_cast<LumoObject*>(this);
    place->addChild(m_textArea);
    setRequireToVerifyLayout(true);
}

void QBLumoTextBasedItemBody::customLayout() {
    QBLumoBaseItemBody::customLayout();
    const LumoRect content = insetBy(getBoundingRect(), fieldListInsets);
    m_splitter->setRect(content);
    placeInPanes();
    if (!m_splitter->getVisible()) m_textArea->setRect(content);
    if (!m_editButton) return;
    const LumoSize size = m_editButton->getRect().size;
    m_editButton->setRect(
        {{lumoWidth(getRect()) - size.width - buttonMargin, (Style::titleHeight - size.height) / 2},
         size});
}

void QBLumoTextBasedItemBody::placeInPanes() {
    if (!m_splitter->getVisible()) return;
    m_textArea->setRect(m_splitter->getFirstPane()->getBoundingRect());
    m_scroll->setRect(m_splitter->getSecondPane()->getBoundingRect());
}

}  // namespace QB::DiagramLumo
