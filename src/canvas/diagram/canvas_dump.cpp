#include "canvas/diagram/canvas_dump.h"

#include <map>
#include <sstream>

#include "canvas/controls/list_view.h"
#include "canvas/controls/scroll_view.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"

namespace QB::DiagramLumo {

namespace {

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        if (c == '\n')
            result += "\\n";
        else
            result += c;
    }
    return result + '"';
}

std::string text(LumoPoint point) {
    return std::to_string(point.x) + ',' + std::to_string(point.y);
}

std::string text(LumoSize size) {
    return std::to_string(size.width) + 'x' + std::to_string(size.height);
}

std::string text(const LumoRect& rect) {
    return text(rect.origin) + ' ' + text(rect.size);
}

const char* joinTypeName(int type) {
    static const char* const names[] = {"custom", "comma", "inner", "left",
                                        "right",  "cross", "full"};
    return type >= 0 && type < 7 ? names[type] : "unknown";
}

const char* sidesText(std::pair<bool, bool> sides) {
    if (sides.first) return sides.second ? "left and right" : "left";
    return sides.second ? "right" : "none";
}

/// Writes one diagram. Items go by number and title: titles need not differ.
class Dump {
public:
    explicit Dump(const QBLumoDiagram* diagram) : m_diagram(diagram) {
        for (const QBLumoItem* item : diagram->items()) {
            const std::string number = '#' + std::to_string(m_names.size() + 1) + ' ';
            m_names[item] = number + (item->getBody() ? quoted(item->getBody()->titleText()) : "-");
        }
    }

    std::string write() {
        m_out << "canvas " << text(m_diagram->getRect().size)
              << (m_diagram->getRelationMode() == TableRelation ? " tables" : " fields") << '\n';
        for (const LumoObject* child : m_diagram->getChildren())
            writeChild(child);
        writeSelection();
        if (m_diagram->isLinkDragActive()) m_out << "a link is being drawn\n";
        return m_out.str();
    }

private:
    void writeChild(const LumoObject* child) {
        if (const auto* const item = dynamic_cast<const QBLumoItem*>(child))
            writeItem(item);
        else if (const auto* const link = dynamic_cast<const QBLumoJoinLink*>(child))
            writeLink(link);
        else
            m_out << "object at " << text(child->getRect()) << '\n';
    }

    void writeItem(const QBLumoItem* item) {
        m_out << "item " << m_names[item] << " at " << text(item->getRect());
        writeFlags(item);
        if (item->isMoving()) m_out << " moving";
        if (item->isResizing()) m_out << " resizing";
        if (item->isSizedByUser()) m_out << " sized";
        m_out << '\n';
        if (const QBLumoBaseItemBody* const body = item->getBody()) writeBody(body);
        for (const auto* adaptor : item->findChildren<QBLumoItemJoinLinkAdaptor>(false))
            writeAdaptor("adaptor", adaptor);
    }

    void writeFlags(const LumoObject* object) {
        if (object->getSelected()) m_out << " selected";
        if (!object->getVisible()) m_out << " hidden";
        if (object == m_diagram->focusedObject()) writeFocus();
    }

    void writeBody(const QBLumoBaseItemBody* body) {
        m_out << "  body " << text(body->getRect());
        if (const auto* const textBody = dynamic_cast<const QBLumoTextBasedItemBody*>(body))
            m_out << " text " << quoted(textBody->getText());
        m_out << '\n';
        QBLumoListView* const list = body->listView();
        if (!list->rows().empty())
            m_out << "  list at " << text(body->scrollView()->getRect()) << " scrolled by "
                  << body->scrollView()->getContentOffsetY() << '\n';
        for (const QBLumoListView::Row& row : list->rows())
            writeRow(row);
        std::multimap<std::string, const QBLumoFieldJoinLinkAdaptor*> adaptors;
        for (const auto* adaptor : body->findChildren<QBLumoFieldJoinLinkAdaptor>(false))
            adaptors.emplace(fieldOf(adaptor), adaptor);
        for (const auto& [field, adaptor] : adaptors)
            writeAdaptor("adaptor " + field, adaptor);
    }

    void writeRow(const QBLumoListView::Row& row) {
        const auto name = row.find("FieldName");
        const auto ticked = row.find("Selected");
        m_out << "  [" << (ticked != row.end() && ticked->second.toInt() ? 'x' : ' ') << "] "
              << (name == row.end() ? "*" : quoted(name->second.toString())) << '\n';
    }

    /// Adaptors without a link mean nothing: they come and go with what was linked once.
    void writeAdaptor(const std::string& name, const QBLumoJoinLinkAdaptor* adaptor) {
        if (adaptor->links().empty()) return;
        m_out << "  " << name << " at " << text(adaptor->getRect()) << " side "
              << sidesText(adaptor->usedSides());
        if (!adaptor->getVisible()) m_out << " hidden";
        m_out << '\n';
    }

    std::string fieldOf(const QBLumoJoinLinkAdaptor* adaptor) const {
        const auto* const field = dynamic_cast<const QBLumoFieldJoinLinkAdaptor*>(adaptor);
        const std::string* const name = field ? field->fieldName() : nullptr;
        return name ? quoted(*name) : "at the title";
    }

    std::string endText(const QBLumoJoinLinkAdaptor* adaptor) {
        const QBLumoItem* const item = adaptor->findParent<QBLumoItem>();
        std::string result = m_names.count(item) ? m_names[item] : "-";
        if (dynamic_cast<const QBLumoFieldJoinLinkAdaptor*>(adaptor))
            result += '.' + fieldOf(adaptor);
        return result;
    }

    void writeLink(const QBLumoJoinLink* link) {
        m_out << "link " << joinTypeName(link->getJoinType());
        if (!link->getLabel().empty()) m_out << ' ' << quoted(link->getLabel());
        writeFlags(link);
        m_out << '\n';
        const auto pairs = link->allAdaptorPairs();
        for (size_t i = 0; i < pairs.size(); ++i) {
            m_out << "  " << endText(pairs[i].first) << " to " << endText(pairs[i].second);
            if (i < link->routes().size()) writeRoute(link, link->routes()[i]);
            m_out << '\n';
        }
    }

    void writeRoute(const QBLumoJoinLink* link, const Route& route) {
        const auto end = [&](LumoPoint point, bool docksLeft) {
            return text(link->translatePoint(point, m_diagram)) + (docksLeft ? " left" : " right");
        };
        m_out << ": " << end(route.start, route.startIsRight) << " to "
              << end(route.end, route.endIsRight);
    }

    void writeSelection() {
        m_out << "selection " << m_diagram->selectedItems().size() << " items, "
              << m_diagram->selectedJoinLinks().size() << " links\n";
    }

    void writeFocus() {
        m_out << " focused";
        if (m_diagram->focusedRow() >= 0) m_out << " in row " << m_diagram->focusedRow();
        if (m_diagram->isResizingByKeys()) m_out << " being resized";
        if (!m_diagram->isFocusRingShown()) m_out << " without ring";
    }

    const QBLumoDiagram* const m_diagram;
    std::map<const QBLumoItem*, std::string> m_names;
    std::ostringstream m_out;
};

}  // namespace

std::string dumpCanvas(const QBLumoDiagram* diagram) {
    return Dump(diagram).write();
}

}  // namespace QB::DiagramLumo
