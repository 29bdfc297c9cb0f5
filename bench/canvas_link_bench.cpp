// 300 links in view, painted into an image of 1600 x 900: at its own size, and small with all that
// the canvas holds in view. On the screen's road symbols come from shared pictures; "vectors" is
// the road of an export. "selected" and "prompted" are the worst that all links can ask for at
// once.
//
// Rooms: canvas

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <random>

#include "canvas/base/context.h"
#include "canvas/diagram/diagram.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "platform/lumo/lumo_picture_cache.h"
#include "support/application.h"

namespace QB::DiagramLumo {
namespace {

/// Links between boxes that lie at random in @p extent.
struct Web {
    Web(int links, LumoSize extent) {
        Test::needApplication();
        diagram.setRect({{0, 0}, extent});
        std::mt19937 dice(6);
        const auto roll = [&dice](int end) {
            return std::uniform_int_distribution<int>(0, end)(dice);
        };
        for (int i = 0; i < links; ++i) {
            auto* const link = new QBLumoJoinLink;
            link->setJoinType(2 + i % 5);
            diagram.addChild(link, 0);
            QBLumoJoinLinkAdaptor* ends[2] = {};
            for (auto& end : ends) {
                auto* const box = new QBLumoObject;
                box->setRect({roll(extent.width - 200), roll(extent.height - 230), 200, 230});
                diagram.addChild(box);
                end = new QBLumoItemJoinLinkAdaptor;
                end->setRect({-3, 12, 206, 6});
                box->addChild(end);
            }
            link->setTableAdaptors(ends[0], ends[1]);
        }
        diagram.layout();
    }

    /// Leaves out what items paint, with the markers of adaptors: on the screen they are pictures.
    void hideBoxes() {
        for (auto* adaptor : diagram.findChildren<QBLumoItemJoinLinkAdaptor>(true))
            adaptor->getParent()->setVisible(false);
    }

    QBLumoContext context;
    QBLumoDiagram diagram{&context, nullptr};
};

enum Look { Plain, Vectors, Selected, Prompted };

void paintLinks(benchmark::State& state, int links, double scale, Look look) {
    Web web(links, {int(1600 / scale), int(900 / scale)});
    for (QBLumoJoinLink* link : web.diagram.joinLinks()) {
        link->setSelected(look == Selected);
        if (look == Prompted) link->playPromptAnimation();
    }
    web.hideBoxes();
    web.diagram.getAnimationTimer()->step(0.5);
    LumoPictureCache cache;
    QImage image(1600, 900, QImage::Format_RGB32);
    for (auto _ : state) {
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.scale(scale, scale);
        LumoPaintConfig config(&painter, look == Vectors ? nullptr : &cache);
        web.diagram.paint(&config, web.diagram.getBoundingRect());
    }
    state.counters["links"] = links;
}

void moveOneBox(benchmark::State& state) {
    Web web(300, {1600, 900});
    const auto boxes = web.diagram.findChildren<QBLumoItemJoinLinkAdaptor>(true);
    LumoObject* const box = boxes.front()->getParent();
    int step = 0;
    for (auto _ : state) {
        box->setRect({{100 + step++ % 200, 100}, box->getRect().size});
        box->setRequireToVerifyLayout(true, true);
        web.diagram.layout();
    }
}

void layoutAll(benchmark::State& state) {
    Web web(int(state.range(0)), {6000, 4000});
    for (auto _ : state) {
        web.diagram.setRequireToVerifyLayout(true, true);
        web.diagram.layout();
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(paintLinks, table_123, 123, 1.0, Plain)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paintLinks, scale_1, 300, 1.0, Plain)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paintLinks, scale_035, 300, 0.35, Plain)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paintLinks, vectors, 300, 1.0, Vectors)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paintLinks, selected, 300, 1.0, Selected)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(paintLinks, prompted, 300, 1.0, Prompted)->Unit(benchmark::kMillisecond);
BENCHMARK(moveOneBox)->Unit(benchmark::kMicrosecond);
BENCHMARK(layoutAll)->Range(256, 4096)->Unit(benchmark::kMicrosecond)->Complexity();

}  // namespace
}  // namespace QB::DiagramLumo
