// What the parts of a frame cost, painted into an image of 1600 x 900: a painter that is made and
// draws nothing, or one rectangle, six objects deep; straight and bent lines; a row's text; a card
// of ten rows, painted, from its kept picture, and moved.
//
// Rooms: lumo

#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>

#include "platform/lumo/lumo_object.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_picture_cache.h"
#include "support/application.h"

namespace {

const LumoFont rowFont("Sans Serif", 11);

struct Screen {
    Screen() : image(1600, 900, QImage::Format_RGB32), painter((image.fill(Qt::white), &image)) {}
    QImage image;
    QPainter painter;
};

template <typename Draw>
void measure(benchmark::State& state, const LumoObject* object, const Draw& draw) {
    QB::Test::needApplication();
    Screen screen;
    LumoPaintConfig config(&screen.painter);
    for (auto _ : state) {
        LumoPainter* const painter = lumoCreatePainterWithObject(&config, object);
        draw(painter);
        lumoDestroyPainter(painter);
    }
}

/// The innermost of six objects.
struct Nest {
    Nest() {
        deepest = &root;
        for (int i = 0; i < 5; ++i) {
            auto* const child = new LumoObject;
            child->setRect({10, 10, 400, 300});
            deepest->addChild(child);
            deepest = child;
        }
    }
    LumoObject root;
    LumoObject* deepest;
};

void painterAlone(benchmark::State& state) {
    const Nest nest;
    measure(state, nest.deepest, [](LumoPainter* painter) { benchmark::DoNotOptimize(painter); });
}
BENCHMARK(painterAlone);

void painterAndRectangle(benchmark::State& state) {
    const Nest nest;
    measure(state, nest.deepest, [](LumoPainter* painter) {
        painter->addRect(0, 0, 20, 20);
        painter->fill();
    });
}
BENCHMARK(painterAndRectangle);

void rowText(benchmark::State& state) {
    measure(state, nullptr, [](LumoPainter* painter) {
        painter->drawText("customer_id", rowFont, LumoAlignElide, {40, 40, 150, 20});
    });
}
BENCHMARK(rowText);

/// A route of three segments: 0 flat and segment by segment, 1 a flat polyline, 2 round ends.
void route(benchmark::State& state) {
    const long way = state.range(0);
    measure(state, nullptr, [way](LumoPainter* painter) {
        const LumoDoublePoint points[] = {{200, 200}, {208, 200}, {592, 500}, {600, 500}};
        painter->setLineWidth(2);
        painter->setLineCap(way == 2 ? LumoCapRound : LumoCapFlat);
        if (way != 0) painter->moveTo(points[0].x, points[0].y);
        for (int i = 1; i < 4; ++i) {
            if (way == 0)
                painter->drawLine(points[i - 1].x, points[i - 1].y, points[i].x, points[i].y);
            else
                painter->lineTo(points[i].x, points[i].y);
        }
        if (way != 0) painter->stroke();
    });
}
BENCHMARK(route)->DenseRange(0, 2);

class Card : public LumoObject {
public:
    Card() {
        setRect({100, 100, 200, 230});
        setCachedAsPicture(true);
    }
    void paint(LumoPaintConfig* config, LumoRect) override {
        LumoPainter painter(config, this);
        painter.setColor({250, 250, 250, 1});
        painter.addRoundedRect(LumoDoubleRect(getBoundingRect()), 6);
        painter.fillPreserve();
        painter.setColor({99, 99, 99, 1});
        painter.stroke();
        for (int row = 0; row < 10; ++row)
            painter.drawText("column_" + std::to_string(row), rowFont, LumoAlignElide,
                             {30, 30 + 20.0 * row, 150, 20});
    }
};

enum CardWay { Painted, Kept, Moved, Changed };

void card(benchmark::State& state, CardWay way, double zoom) {
    QB::Test::needApplication();
    Screen screen;
    screen.painter.scale(zoom, zoom);
    LumoObject root;
    auto* const object = new Card;
    root.addChild(object);
    LumoPictureCache cache;
    int step = 0;
    for (auto _ : state) {
        if (way == Moved) object->setRect({100 + ++step % 50, 100, 200, 230});
        if (way == Changed) object->invalidate();
        LumoPaintConfig config(&screen.painter, way == Painted ? nullptr : &cache);
        root.paint(&config, {0, 0, 2000, 2000});
    }
}
BENCHMARK_CAPTURE(card, painted, Painted, 1.0);
BENCHMARK_CAPTURE(card, kept, Kept, 1.0);
BENCHMARK_CAPTURE(card, keptAtOddZoom, Kept, 0.83);
BENCHMARK_CAPTURE(card, movedAtOddZoom, Moved, 0.83);
BENCHMARK_CAPTURE(card, changed, Changed, 1.0);

}  // namespace
