// The canvas against a QGraphicsView of the same diagram (canvas_peer.h), step by step in turn in
// one run: full repaint, a step of a drag of one item, a step of panning; at its own size and with
// all 200 items of 30 rows and 300 links in view, in a viewport of 1920 x 1080. Both are real
// windows on the offscreen platform: a step sends mouse events to the viewport, moves a bar or asks
// for an update, and then runs the event loop until the paint event has gone through the backing
// store. "ours" and "peer" are medians in milliseconds of the processor, which others that run do
// not stretch as much as those of the clock; "ratio" is meant to be at most 1, a drag at most 4 ms,
// a full repaint at most 16 ms.
//
// Then what it takes to build such a diagram (at most 50 ms) and to open it, first paint included
// (at most 300 ms), and how all of it grows.
//
// Rooms: canvas

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <memory>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmapCache>
#include <QScrollBar>

#include "bench/canvas_peer.h"
#include "canvas/base/context.h"
#include "canvas/playground/demo_diagram.h"
#include "canvas/view/lumo_ui_view.h"
#include "platform/lumo/lumo_control.h"
#include "support/application.h"

namespace QB::DiagramLumo {
namespace {

constexpr int fieldCount = 30;
constexpr QSize viewportSize(1920, 1080);

int linksFor(int items) {
    return items * 3 / 2;
}

void showAt(QAbstractScrollArea* area) {
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->resize(viewportSize);
    area->show();
    QApplication::processEvents();
}

/// The canvas, as it is shown by a host.
struct Canvas {
    explicit Canvas(int items) {
        Test::needApplication();
        view.reset(QBLumoUIView::create(&context, nullptr));
        diagram = std::make_unique<QBLumoDiagram>(&context, view->getControl());
        diagram->setBackgroundColor(themePalette().canvas);
        fillDemoDiagram(diagram.get(), items, linksFor(items), fieldCount);
        context.setActiveDiagram(view->getControl(), diagram.get());
    }
    ~Canvas() { view.reset(); }

    QBLumoContext context;
    std::unique_ptr<QBLumoUIView> view;
    std::unique_ptr<QBLumoDiagram> diagram;
};

/// The peer shows what the canvas shows.
std::unique_ptr<Peer::View> makePeer(const Canvas& canvas) {
    QPixmapCache::setCacheLimit(64 * 1024);  // kB, as the canvas's
    auto peer = std::make_unique<Peer::View>(*canvas.diagram);
    showAt(peer.get());
    const double zoom = canvas.view->getControl()->getZoom();
    peer->setTransform(QTransform::fromScale(zoom, zoom));
    peer->horizontalScrollBar()->setValue(canvas.view->horizontalScrollBar()->value());
    peer->verticalScrollBar()->setValue(canvas.view->verticalScrollBar()->value());
    QApplication::processEvents();
    return peer;
}

// ---- steps: the same for both ----

/// Runs the event loop until @p view has painted.
template <typename View>
void paintNow(View& view, int passesBefore) {
    for (int round = 0; round < 10 && view.paintPasses() == passesBefore; ++round)
        QApplication::processEvents();
}

void sendMouse(QWidget* viewport, QEvent::Type type, QPoint place) {
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, viewport->mapTo(viewport->window(), place),
                      viewport->mapToGlobal(place), button, held, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &event);
}

template <typename View>
class Repaints {
public:
    explicit Repaints(View& view) : m_view(view) {}
    void step() { m_view.viewport()->update(); }

private:
    View& m_view;
};

/// Holds the item at @p place by its title and moves it to and fro.
template <typename View>
class Drags {
public:
    Drags(View& view, QPoint place) : m_view(view), m_place(place) {
        sendMouse(view.viewport(), QEvent::MouseButtonPress, place);
        m_place += QPoint(30, 20);
        sendMouse(view.viewport(), QEvent::MouseMove, m_place);
        QApplication::processEvents();
    }
    ~Drags() { sendMouse(m_view.viewport(), QEvent::MouseButtonRelease, m_place); }
    void step() {
        constexpr int there = 20;
        const int direction = m_steps++ / there % 2 == 0 ? 1 : -1;
        m_place += QPoint(4, 3) * direction;
        sendMouse(m_view.viewport(), QEvent::MouseMove, m_place);
    }

private:
    View& m_view;
    QPoint m_place;
    int m_steps = 0;
};

template <typename View>
class Pans {
public:
    explicit Pans(View& view) : m_view(view) {}
    void step() {
        constexpr int there = 10;
        const int direction = m_steps++ / there % 2 == 0 ? 1 : -1;
        for (QScrollBar* bar : {m_view.horizontalScrollBar(), m_view.verticalScrollBar()})
            bar->setValue(bar->value() + 16 * direction);
    }

private:
    View& m_view;
    int m_steps = 0;
};

// Not inlined: their instructions are counted by name.
template <typename Steps>
[[gnu::noinline]] void measuredRepaint(QBLumoUIView& view, Steps& steps) {
    const int before = view.paintPasses();
    steps.step();
    paintNow(view, before);
}

template <typename Steps>
[[gnu::noinline]] void measuredDrag(QBLumoUIView& view, Steps& steps) {
    const int before = view.paintPasses();
    steps.step();
    paintNow(view, before);
}

[[gnu::noinline]] void measuredBuild(QBLumoDiagram* diagram, int items) {
    fillDemoDiagram(diagram, items, linksFor(items), fieldCount);
    diagram->layout();
}

// ---- comparisons ----

/// That this thread has had of the processor.
double processorSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

double median(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + long(times.size() / 2), times.end());
    return times[times.size() / 2];
}

/// Seconds that a step takes with the paint that it causes; negative without one.
template <typename View, typename Steps>
double timeOf(View& view, Steps& steps) {
    const int before = view.paintPasses();
    const double start = processorSeconds();
    steps.step();
    paintNow(view, before);
    const double seconds = processorSeconds() - start;
    return view.paintPasses() > before ? seconds : -1;
}

template <typename OurSteps, typename PeerSteps>
void compare(benchmark::State& state, QBLumoUIView& view, OurSteps& ourSteps, Peer::View& peer,
             PeerSteps& peerSteps) {
    std::vector<double> ours;
    std::vector<double> theirs;
    for (int i = 0; i < 4; ++i) {  // pictures and fonts
        timeOf(view, ourSteps);
        timeOf(peer, peerSteps);
    }
    for (auto _ : state) {
        ours.push_back(timeOf(view, ourSteps));
        theirs.push_back(timeOf(peer, peerSteps));
        state.SetIterationTime(std::max(ours.back(), 0.0));
        if (ours.back() < 0 || theirs.back() < 0)
            return state.SkipWithError("a step painted nothing");
    }
    state.counters["ours"] = median(ours) * 1000;
    state.counters["peer"] = median(theirs) * 1000;
    state.counters["ratio"] = median(ours) / median(theirs);
    state.counters["objects"] = view.objectsInLastPass();
}

/// Shows at @p percent of the own size, or 0 to have everything in view.
void zoomTo(QBLumoUIView& view, int percent) {
    if (percent == 0)
        view.fitToView();
    else
        view.getControl()->setZoom(percent / 100.0, {0, 0});
    QApplication::processEvents();
}

/// On the title of an item in the second row and column.
QPoint gripOf(const Canvas& canvas) {
    const auto items = canvas.diagram->items();
    const auto columns = size_t(std::sqrt(double(items.size()) * 1.6));
    const LumoControlPoint place = canvas.view->getControl()->diagramSpaceToControlSpace(
        items[columns + 1]->getRect().origin + LumoPoint{100, 19});
    return {place.x, place.y};
}

struct Pair {
    Pair(int items, int percent) : canvas(items) {
        showAt(canvas.view.get());
        zoomTo(*canvas.view, percent);
        peer = makePeer(canvas);
    }
    Canvas canvas;
    std::unique_ptr<Peer::View> peer;
};

void fullRepaint(benchmark::State& state) {
    Pair pair(200, int(state.range(0)));
    Repaints ours(*pair.canvas.view);
    Repaints theirs(*pair.peer);
    compare(state, *pair.canvas.view, ours, *pair.peer, theirs);
}

void dragStep(benchmark::State& state) {
    Pair pair(200, int(state.range(0)));
    Drags ours(*pair.canvas.view, gripOf(pair.canvas));
    Drags theirs(*pair.peer, gripOf(pair.canvas));
    compare(state, *pair.canvas.view, ours, *pair.peer, theirs);
}

void panStep(benchmark::State& state) {
    Pair pair(200, int(state.range(0)));
    Pans ours(*pair.canvas.view);
    Pans theirs(*pair.peer);
    compare(state, *pair.canvas.view, ours, *pair.peer, theirs);
}

// Percent of the own size; 0 has everything in view, where nothing is left to pan: 40 is near.
BENCHMARK(fullRepaint)->Arg(100)->Arg(0)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(dragStep)->Arg(100)->Arg(0)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(panStep)->Arg(100)->Arg(40)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- building and growth ----

void build(benchmark::State& state) {
    Test::needApplication();
    const int items = int(state.range(0));
    QBLumoContext context;
    for (auto _ : state) {
        const double start = processorSeconds();
        auto diagram = std::make_unique<QBLumoDiagram>(&context, nullptr);
        measuredBuild(diagram.get(), items);
        state.SetIterationTime(processorSeconds() - start);
    }
    state.SetComplexityN(items);
}

/// A host puts a layer into the view that it has.
void open(benchmark::State& state) {
    const int items = int(state.range(0));
    Canvas canvas(1);
    showAt(canvas.view.get());
    for (auto _ : state) {
        const int before = canvas.view->paintPasses();
        const double start = processorSeconds();
        auto diagram = std::make_unique<QBLumoDiagram>(&canvas.context, canvas.view->getControl());
        fillDemoDiagram(diagram.get(), items, linksFor(items), fieldCount);
        canvas.context.setActiveDiagram(canvas.view->getControl(), diagram.get());
        if (state.range(1) == 0) canvas.view->fitToView();
        paintNow(*canvas.view, before);
        state.SetIterationTime(processorSeconds() - start);
        canvas.context.setActiveDiagram(canvas.view->getControl(), canvas.diagram.get());
    }
}

void layoutAll(benchmark::State& state) {
    Canvas canvas(int(state.range(0)));
    for (auto _ : state) {
        canvas.diagram->setRequireToVerifyLayout(true, true);
        canvas.diagram->layout();
    }
    state.SetComplexityN(state.range(0));
}

/// All of the diagram, whatever its size, as an export paints it.
void paintAll(benchmark::State& state) {
    Canvas canvas(int(state.range(0)));
    QImage image(viewportSize, QImage::Format_RGB32);
    for (auto _ : state) {
        QPainter painter(&image);
        LumoUIScrollView::renderTo(&painter, canvas.diagram.get(), canvas.diagram->getRect(),
                                   image.rect());
    }
    state.SetComplexityN(state.range(0));
}

void repaintAmong(benchmark::State& state) {
    Canvas canvas(int(state.range(0)));
    showAt(canvas.view.get());
    Repaints steps(*canvas.view);
    for (auto _ : state)
        measuredRepaint(*canvas.view, steps);
    state.counters["bytes"] = canvas.view->objectsInLastPass();
}

void dragAmong(benchmark::State& state) {
    Canvas canvas(int(state.range(0)));
    showAt(canvas.view.get());
    Drags steps(*canvas.view, gripOf(canvas));
    for (auto _ : state)
        measuredDrag(*canvas.view, steps);
    state.counters["bytes"] = canvas.view->objectsInLastPass();
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(250)->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(build)->Arg(200)->Apply(sizes)->UseManualTime()->Complexity();
BENCHMARK(open)->Args({200, 100})->Args({200, 0})->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(layoutAll)->Apply(sizes)->Complexity();
BENCHMARK(paintAll)->Apply(sizes)->Complexity();
BENCHMARK(repaintAmong)->Apply(sizes)->Iterations(20);
BENCHMARK(dragAmong)->Apply(sizes)->Iterations(20);

}  // namespace
}  // namespace QB::DiagramLumo
