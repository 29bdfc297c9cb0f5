#pragma once

#include <QPoint>
#include <QStringList>
#include <algorithm>
#include <vector>

#include "canvas/base/context.h"
#include "canvas/controls/check_box.h"
#include "canvas/controls/list_view.h"
#include "canvas/diagram/diagram.h"
#include "canvas/drawer/diagram_drawer_linux.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"

namespace QB::Test {

using namespace DiagramLumo;

/// Where the parts of a diagram are in its view, for real events, and what they show. A null point:
/// it is not there.
class DiagramPlaces {
public:
    /// Not owned.
    explicit DiagramPlaces(const QBLumoDiagramDrawer_LINUX* drawer) : m_drawer(drawer) {}

    QBLumoDiagram* diagram() const { return m_drawer->diagram(); }
    QBLumoUIView* view() const { return m_drawer->getView(); }
    QBLumoItem* item(const QString& title) const {
        for (QBLumoItem* each : diagram()->items())
            if (titleOf(each) == title) return each;
        return nullptr;
    }
    static QString titleOf(const QBLumoItem* item) {
        return QString::fromStdString(item->getBody()->titleText());
    }

    QPoint inView(LumoPoint point, const LumoObject* of) const {
        const LumoPoint at =
            m_drawer->getContext()->translatePointToControlSpace(point, of, m_drawer->getControl());
        return {at.x, at.y};
    }
    QPoint middleOf(const LumoRect& rect, const LumoObject* of) const {
        return inView({rect.origin.x + rect.size.width / 2, rect.origin.y + rect.size.height / 2},
                      of);
    }
    QPoint titlePlace(const QBLumoItem* item) const {
        return item ? middleOf(item->getBody()->titleRect(), item->getBody()) : QPoint();
    }
    /// Rows count from the wildcard, 0.
    QPoint rowPlace(const QBLumoItem* item, size_t row) const {
        const auto* const cell = item ? item->getBody()->listView()->cellAt(row) : nullptr;
        return cell ? middleOf(cell->getBoundingRect(), cell) : QPoint();
    }
    QPoint boxPlace(const QBLumoItem* item, size_t row) const {
        const auto* const cell = item ? item->getBody()->listView()->cellAt(row) : nullptr;
        const auto boxes =
            cell ? cell->findChildren<QBLumoCheckBox>(true) : std::vector<QBLumoCheckBox*>();
        return boxes.empty() ? QPoint() : middleOf(boxes[0]->getBoundingRect(), boxes[0]);
    }
    QPoint linkPlace(const QBLumoJoinLink* link) const {
        return link ? inView(link->midPoint(), link) : QPoint();
    }

    /// One line for each item and link, in alphabetical order, without places and selection:
    /// "t AS x [*] [a] b", "2 t.a u.a".
    QStringList lines() const {
        QStringList all;
        for (const QBLumoItem* item : diagram()->items())
            all << itemLine(item);
        for (const QBLumoJoinLink* link : diagram()->joinLinks())
            for (const auto& [left, right] : link->allAdaptorPairs())
                all << QString("%1%2 %3 %4")
                           .arg(link->getJoinType())
                           .arg(QString::fromStdString(link->getLabel()), end(left), end(right));
        all.sort();
        return all;
    }

private:
    static QString itemLine(const QBLumoItem* item) {
        const QBLumoBaseItemBody* const body = item->getBody();
        QString line = titleOf(item) + " AS " + QString::fromStdString(body->getAlias());
        if (const auto* const text = dynamic_cast<const QBLumoTextBasedItemBody*>(body))
            line += " {" + QString::fromStdString(text->getText()).simplified() + '}';
        if (!body->fieldNames().empty()) line += body->isWildcardSelected() ? " [*]" : " *";
        for (const std::string& field : body->fieldNames())
            line += QString(body->isFieldSelected(field) ? " [%1]" : " %1")
                        .arg(QString::fromStdString(field));
        return line;
    }
    static QString end(const QBLumoJoinLinkAdaptor* adaptor) {
        const auto* const item = adaptor->findParent<QBLumoItem>();
        const auto* const field = dynamic_cast<const QBLumoFieldJoinLinkAdaptor*>(adaptor);
        const std::string* const name = field ? field->fieldName() : nullptr;
        return (item ? titleOf(item) : "nowhere") + '.' +
               (name    ? QString::fromStdString(*name)
                : field ? "?"
                        : "");
    }

    const QBLumoDiagramDrawer_LINUX* const m_drawer;
};

}  // namespace QB::Test
