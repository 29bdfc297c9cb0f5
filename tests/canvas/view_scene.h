#pragma once

#include <QTest>

#include "canvas/base/context.h"
#include "canvas/base/image_resource_provider_linux.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/database_item_body.h"
#include "canvas/items/item.h"
#include "canvas/items/text_based_item_body.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "canvas/playground/demo_diagram.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"
#include "support/application.h"

namespace QB::DiagramLumo {

/// A window of 900 x 600 with films, languages and a subquery; films and languages are linked.
struct ViewScene {
    ViewScene() {
        Test::needApplication();
        LumoImageResourceProvider::setCurrent(&images);
        view.reset(QBLumoUIView::create(&context, nullptr));
        diagram = std::make_unique<QBLumoDiagram>(&context, view->getControl());
        diagram->setBackgroundColor(themePalette().canvas);
        film = table("film", {60, 60}, {"id", "title", "language_id"});
        language = table("language", {500, 200}, {"id", "name"});
        language->setAlias("l");
        recent = new QBLumoTextBasedItemBody;
        recent->setAlias("recent");
        recent->setText("SELECT id FROM rental");
        recent->setEditButtonHandler([this](QBLumoTextBasedItemBody*) { ++edits; });
        add(recent, {60, 350});
        link = addDemoLink(diagram.get(), film->item(), "language_id", language->item(), "id", 2);
        context.setJoinLinkDoubleClicked(
            [this](QBLumoJoinLink* of, bool) { opened.push_back(of); });
        context.setActiveDiagram(view->getControl(), diagram.get());
        view->resize(900, 600);
        view->show();
        QVERIFY2(QTest::qWaitForWindowExposed(view.get()), "the window never showed");
        view->activateWindow();
        settle();
    }
    ~ViewScene() { view.reset(); }

    QBLumoDatabaseItemBody* table(const std::string& name, LumoPoint at,
                                  const std::vector<std::string>& fields) {
        auto* const body = new QBLumoDatabaseItemBody;
        body->setTableName(name);
        add(body, at);
        body->setFields(fields);
        return body;
    }

    void add(QBLumoBaseItemBody* body, LumoPoint at) {
        auto* const item = new QBLumoItem;
        item->setBody(body);
        item->setRect({at, item->getRect().size});
        diagram->addChild(item);
    }

    static void settle() {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
        }
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        QTest::keyClick(view->windowHandle(), key, modifiers);
        settle();
    }

    QBLumoImageResourceProvider_LINUX images;
    QBLumoContext context;
    std::unique_ptr<QBLumoDiagram> diagram;
    std::unique_ptr<QBLumoUIView> view;
    QBLumoDatabaseItemBody* film = nullptr;
    QBLumoDatabaseItemBody* language = nullptr;
    QBLumoTextBasedItemBody* recent = nullptr;
    QBLumoJoinLink* link = nullptr;  // between the tables
    std::vector<QBLumoJoinLink*> opened;
    int edits = 0;
};

}  // namespace QB::DiagramLumo
