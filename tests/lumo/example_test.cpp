#include <gtest/gtest.h>

#include <QFile>
#include <QtTest>

// example begins
#include "platform/lumo/lumo_diagram.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_view.h"

class Box : public LumoObject {
public:
    Box() {
        registerEventResponder(LumoMouseDown, [this](const LumoEvent& event) {
            m_grip = event.getMousePoint();
            return false;  // what lies below is not pressed
        });
        registerEventResponder(LumoMouseDragging, [this](const LumoEvent& event) {
            setRect({getRect().origin + event.getMousePoint() - m_grip, getRect().size});
            return false;
        });
    }
    void paint(LumoPaintConfig* config, LumoRect rect) override {
        LumoPainter painter(config, this);
        painter.setColor({61, 174, 233, 1});
        painter.addRoundedRect(LumoDoubleRect(getBoundingRect()), 6);
        painter.fill();
        LumoObject::paint(config, rect);  // its children
    }

private:
    LumoPoint m_grip;
};

Box* addBox(LumoDiagram* diagram, const LumoRect& rect) {
    auto box = std::make_unique<Box>();
    box->setRect(rect);
    diagram->addChild(box.get());
    return box.release();  // owned by the diagram now
}
// example ends

#include "support/application.h"

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

TEST(CanvasToolkitPage, ShowsTheExampleThatIsTested) {
    const QByteArray source = contentOf(QStringLiteral(JOINERY_TEST_DATA "/example_test.cpp"));
    const QByteArray first = "// example begins\n";
    const int begin = source.indexOf(first) + first.size();
    const QByteArray example = source.mid(begin, source.indexOf("// example ends") - begin);
    EXPECT_GT(example.size(), 900);
    const QByteArray page = contentOf(QStringLiteral(JOINERY_DOCS "/canvas-toolkit.md"));
    EXPECT_TRUE(page.contains("```cpp\n" + example + "```")) << "copy it into the page";
}

TEST(CanvasToolkitPage, HasAnExampleThatCanBeDragged) {
    QB::Test::needApplication();
    LumoContext context;
    LumoDiagram diagram(&context);
    diagram.setRect({0, 0, 2000, 1500});
    Box* const box = addBox(&diagram, {20, 20, 100, 60});
    LumoUIScrollView view(&context);
    view.init();
    context.setActiveDiagram(view.getControl(), &diagram);
    view.resize(400, 300);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));

    QWindow* const window = view.windowHandle();
    const QPoint corner = view.viewport()->mapTo(&view, QPoint(0, 0));
    QTest::mousePress(window, Qt::LeftButton, {}, corner + QPoint(30, 30));
    QTest::mouseMove(window, corner + QPoint(130, 90));
    QTest::mouseRelease(window, Qt::LeftButton, {}, corner + QPoint(130, 90));
    EXPECT_EQ(box->getRect(), LumoRect(120, 80, 100, 60));
    const QImage shown = view.viewport()->grab().toImage();
    EXPECT_EQ(shown.pixelColor(170, 110).name().toStdString(), "#3daee9");
    EXPECT_NE(shown.pixelColor(70, 50).name().toStdString(), "#3daee9");
}

}  // namespace
