#pragma once

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "support/application.h"

namespace QB::DiagramLumo {

/// A diagram with plain objects at which links dock.
struct LinkScene {
    explicit LinkScene(QBLumoContext* used = nullptr) : diagram(used ? used : &context, nullptr) {
        Test::needApplication();
        diagram.setRect({0, 0, 1600, 900});
    }

    /// A box of the diagram with an adaptor for table links at its title.
    QBLumoItemJoinLinkAdaptor* dock(const LumoRect& box) {
        auto* const body = new QBLumoObject;
        body->setRect(box);
        diagram.addChild(body);
        auto* const adaptor = new QBLumoItemJoinLinkAdaptor;
        adaptor->setRect({-3, 12, box.size.width + 6, 6});
        body->addChild(adaptor);
        return adaptor;
    }

    QBLumoJoinLink* link(QBLumoJoinLinkAdaptor* left, QBLumoJoinLinkAdaptor* right, int type = 2) {
        auto* const made = new QBLumoJoinLink;
        made->setJoinType(type);
        diagram.addChild(made, 0);
        made->setTableAdaptors(left, right);
        diagram.layout();
        return made;
    }

    /// Moves the box of an adaptor as an item is moved.
    void move(QBLumoJoinLinkAdaptor* adaptor, LumoPoint to) {
        LumoObject* const box = adaptor->getParent();
        box->setRect({to, box->getRect().size});
        box->setRequireToVerifyLayout(true, true);
        diagram.layout();
    }

    LumoPoint inDiagram(const QBLumoJoinLink* link, LumoPoint point) const {
        return link->translatePoint(point, &diagram);
    }

    QBLumoContext context;
    QBLumoDiagram diagram;
};

}  // namespace QB::DiagramLumo
