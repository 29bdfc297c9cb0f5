#include "canvas/view/diagram_accessible_names.h"

#include <QStringList>

#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "platform/tolk/text_ids.h"
#include "platform/tolk/tolk.h"

namespace QB::DiagramLumo {

namespace {

constexpr unsigned joinTexts[] = {Tolk::TextCanvasCustomJoin,   Tolk::TextCanvasCommaJoin,
                                  Tolk::TextCanvasInnerJoin,    Tolk::TextCanvasLeftJoin,
                                  Tolk::TextCanvasRightJoin,    Tolk::TextCanvasCrossJoin,
                                  Tolk::TextCanvasFullOuterJoin};

/// A custom join is known by its label.
QString joinText(const QBLumoJoinLink* link) {
    const int type = link->getJoinType();
    if (type == 0 && !link->getLabel().empty()) return QString::fromStdString(link->getLabel());
    const bool known = type >= 0 && type < int(std::size(joinTexts));
    return Tolk::localize(joinTexts[known ? type : 0]);
}

QString itemText(const QBLumoJoinLinkAdaptor* adaptor) {
    const auto* const item = adaptor->findParent<QBLumoItem>();
    return item ? accessibleNameOf(item) : QString();
}

QString endText(const QBLumoJoinLinkAdaptor* adaptor) {
    const auto* const field = dynamic_cast<const QBLumoFieldJoinLinkAdaptor*>(adaptor);
    const std::string* const name = field ? field->fieldName() : nullptr;
    const QString item = itemText(adaptor);
    return name ? item + QLatin1Char('.') + QString::fromStdString(*name) : item;
}

}  // namespace

QString accessibleNameOf(const QBLumoItem* item) {
    return item->getBody() ? QString::fromStdString(item->getBody()->titleText()) : QString();
}

QString accessibleNameOf(const QBLumoJoinLink* link) {
    const auto pairs = link->shownAdaptorPairs();
    if (pairs.empty()) return joinText(link);
    const auto& [left, right] = pairs.front();
    if (dynamic_cast<const QBLumoItemJoinLinkAdaptor*>(left))
        return Tolk::localizeWithArgs(
            Tolk::TextCanvasTablesLinked, joinText(link).toUtf8().constData(),
            itemText(left).toUtf8().constData(), itemText(right).toUtf8().constData());
    QStringList comparisons;
    for (const auto& [from, to] : pairs)
        comparisons << endText(from) + QStringLiteral(" = ") + endText(to);
    return joinText(link) + QStringLiteral(": ") + comparisons.join(QStringLiteral(", "));
}

}  // namespace QB::DiagramLumo
