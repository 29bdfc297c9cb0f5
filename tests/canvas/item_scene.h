#pragma once

#include <string>
#include <vector>

#include <QImage>
#include <QPainter>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/database_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "platform/lumo/lumo_paint.h"
#include "support/application.h"
#include "support/plain_control.h"

namespace QB::DiagramLumo {

/// A diagram of 1600 x 900 in a control that shows all of it.
struct ItemScene {
    ItemScene() : control(&context, {1600, 900}), diagram(&context, &control) {
        Test::needApplication();
        diagram.setRect({0, 0, 1600, 900});
        context.setActiveDiagram(&control, &diagram);
    }

    QBLumoDatabaseItemBody* table(const std::string& name, LumoPoint at,
                                  const std::vector<std::string>& fields = {}) {
        auto* const body = new QBLumoDatabaseItemBody;
        body->setTableName(name);
        add(body, at);
        body->setFields(fields);
        diagram.layout();
        return body;
    }

    QBLumoTextBasedItemBody* text(const std::string& alias, LumoPoint at,
                                  const std::string& content,
                                  const std::vector<std::string>& fields = {}) {
        auto* const body = new QBLumoTextBasedItemBody;
        body->setAlias(alias);
        body->setText(content);
        add(body, at);
        body->setFields(fields);
        diagram.layout();
        return body;
    }

    void add(QBLumoBaseItemBody* body, LumoPoint at) {
        auto* const item = new QBLumoItem;
        item->setBody(body);
        item->setRect({at, item->getRect().size});
        diagram.addChild(item);
    }

    /// The middle of a row's label (row 0 is the wildcard), in the diagram.
    LumoPoint row(QBLumoBaseItemBody* body, size_t index) {
        const LumoRect rect = body->listView()->rowRect(index);
        return body->listView()->translatePoint({60, rect.origin.y + rect.size.height / 2},
                                                &diagram);
    }
    LumoPoint title(QBLumoBaseItemBody* body) { return body->translatePoint({60, 15}, &diagram); }

    QImage picture(double scale) {
        diagram.layout();
        QImage image(int(1600 * scale), int(900 * scale), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.scale(scale, scale);
        LumoPaintConfig config(&painter);
        diagram.paint(&config, diagram.getBoundingRect());
        return image;
    }

    QBLumoContext context;
    Test::PlainControl control;
    QBLumoDiagram diagram;
};

inline std::vector<std::string> numberedFields(int count) {
    std::vector<std::string> fields;
    for (int i = 1; i <= count; ++i)
        fields.push_back("field_" + std::to_string(i));
    return fields;
}

}  // namespace QB::DiagramLumo
