#include <QApplication>
#include <QDir>
#include <QTest>
#include <cstdio>
#include <string>

#include "canvas/base/canvas_style.h"
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
#include "model/callbacks.h"
#include "platform/lumo/lumo_control.h"

// Usage: canvas_pictures FOLDER light|dark. The scale is that of QT_SCALE_FACTOR.

using namespace QB::DiagramLumo;

namespace {

bool dark = false;

/// A window on a small diagram.
class Scene {
public:
    explicit Scene(QSize size) {
        LumoImageResourceProvider::setCurrent(&m_images);
        m_view.reset(QBLumoUIView::create(&m_context, nullptr));
        diagram = std::make_unique<QBLumoDiagram>(&m_context, m_view->getControl());
        diagram->setBackgroundColor(themePalette().canvas);
        m_context.setActiveDiagram(m_view->getControl(), diagram.get());
        m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        m_view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        m_view->resize(size);
    }

    QBLumoItem* add(QBLumoBaseItemBody* body, LumoPoint at,
                    const std::vector<std::string>& fields) {
        auto* const item = new QBLumoItem;
        item->setBody(body);
        item->setRect({at, item->getRect().size});
        diagram->addChild(item);
        body->setFields(fields);
        return item;
    }

    QBLumoItem* table(const std::string& name, const std::string& alias, LumoPoint at,
                      const std::vector<std::string>& fields) {
        auto* const body = new QBLumoDatabaseItemBody;
        body->setTableName(name);
        body->setAlias(alias);
        return add(body, at, fields);
    }

    QBLumoItem* text(const std::string& alias, const std::string& words, LumoPoint at,
                     const std::vector<std::string>& fields) {
        auto* const body = new QBLumoTextBasedItemBody;
        body->setAlias(alias);
        body->setText(words);
        body->setEditButtonHandler([](QBLumoTextBasedItemBody*) {});
        return add(body, at, fields);
    }

    void show() {
        m_view->show();
        (void)QTest::qWaitForWindowExposed(m_view.get());
        QCoreApplication::processEvents();
    }
    void press(LumoPoint at) {
        QTest::mousePress(m_view->windowHandle(), Qt::LeftButton, {}, onWindow(at));
    }
    void move(LumoPoint at) {
        QTest::mouseMove(m_view->windowHandle(), onWindow(at));
        QCoreApplication::processEvents();
    }
    void key(Qt::Key key) { QTest::keyClick(m_view->windowHandle(), key); }

    bool save(const QString& file) {
        QTest::qWait(50);
        std::printf("%s\n", qUtf8Printable(file));
        return m_view->grab().save(file);
    }

    std::unique_ptr<QBLumoDiagram> diagram;

private:
    QPoint onWindow(LumoPoint at) const {
        const LumoControlPoint point = m_view->getControl()->diagramSpaceToControlSpace(at);
        return m_view->viewport()->mapTo(m_view.get(), QPoint(point.x, point.y));
    }

    QBLumoImageResourceProvider_LINUX m_images;
    QBLumoContext m_context;
    std::unique_ptr<QBLumoUIView> m_view;
};

/// A pair of small tables for each join type, flat and steep.
bool linkTypes(const QString& file, int relationMode, bool selected) {
    Scene scene({1000, 720});
    for (int type = 0; type <= 6; ++type) {
        if (type == 1) continue;  // a comma has no link
        const int place = type == 0 ? 0 : type - 1;
        const int x = 20 + place % 2 * 490;
        const int y = 10 + place / 2 * 240;
        QBLumoItem* const left = scene.table("left_" + std::to_string(type), "", {x, y + 80},
                                             {"id", "name", "owner_id"});
        QBLumoItem* const right =
            scene.table("right", "r", {x + 260, y}, {"id", "owner_id", "title"});
        addDemoLink(scene.diagram.get(), left, "owner_id", right, "id", type);
    }
    scene.diagram->setRelationMode(relationMode);
    scene.show();
    if (selected) scene.diagram->selectAll();
    return scene.save(file);
}

bool itemKinds(const QString& file) {
    Scene scene({1000, 420});
    QBLumoItem* const film =
        scene.table("film", "f", {20, 20},
                    {"film_id", "title", "description", "release_year", "language_id", "length",
                     "rating", "last_update", "special_features", "fulltext"});
    film->getBody()->setFieldSelected("title", true);
    film->getBody()->setFieldSelected("length", true);
    scene.table("a_table_with_a_name_that_is_too_long", "alias", {270, 20}, {"id"});
    scene.table("", "", {270, 200}, {});
    scene.text("recent", "SELECT customer_id, max(rental_date)\nFROM rental\nGROUP BY customer_id",
               {520, 20}, {"customer_id", "max"});
    scene.text("series", "generate_series(1, 10)", {520, 200}, {});
    scene.show();
    scene.diagram->setFocusedObject(film, 2);
    return scene.save(file);
}

/// A press and moves as a hand makes them.
bool linkBeingDrawn(const QString& file) {
    Scene scene({760, 340});
    scene.table("customer", "c", {30, 40}, {"customer_id", "store_id", "address_id"});
    scene.table("rental", "", {450, 80}, {"rental_id", "customer_id", "rental_date"});
    scene.show();
    scene.press({140, 100});
    for (int x = 160; x <= 560; x += 20)
        scene.move({x, 100 + (x - 160) / 7});
    const bool saved = scene.save(file);
    scene.key(Qt::Key_Escape);
    return saved;
}

bool group(const QString& file) {
    Scene scene({760, 340});
    QBLumoItem* const left = scene.table("city", "", {30, 40}, {"city_id", "country_id"});
    QBLumoItem* const right = scene.table("country", "", {450, 80}, {"country_id", "country"});
    addDemoLink(scene.diagram.get(), left, "country_id", right, "country_id", 2);
    scene.show();
    scene.press({10, 10});
    for (int i = 1; i <= 30; ++i)
        scene.move({10 + i * 22, 10 + i * 8});
    return scene.save(file);
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    if (argc != 3) return std::fprintf(stderr, "canvas_pictures FOLDER light|dark\n"), 1;
    dark = std::string(argv[2]) == "dark";
    QB::Callback::isDarkTheme = [] {
        return dark;
    };
    const QString suffix = QStringLiteral("-%1-%2x.png")
                               .arg(QString::fromLocal8Bit(argv[2]))
                               .arg(qApp->devicePixelRatio());
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    const auto file = [&](const char* name) {
        return folder.filePath(QLatin1String(name) + suffix);
    };
    const bool saved = linkTypes(file("canvas-links"), TableRelation, false) &&
                       linkTypes(file("canvas-links-fields"), FieldRelation, false) &&
                       linkTypes(file("canvas-links-selected"), TableRelation, true) &&
                       itemKinds(file("canvas-items")) && group(file("canvas-band")) &&
                       linkBeingDrawn(file("canvas-drawing"));
    return saved ? 0 : 1;
}
