#include <cmath>

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include "platform/lumo/lumo_object.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_picture_cache.h"
#include "platform/lumo/lumo_text.h"
#include "support/application.h"

namespace {

constexpr LumoColor red{255, 0, 0, 1};
constexpr LumoColor green{0, 255, 0, 1};
const LumoFont rowFont("Sans Serif", 11);

using Part = int (*)(QRgb);
using Draw = std::function<void(LumoPainter*)>;

/// A transparent image, painted with @p draw through a transform.
QImage drawn(QSize size, const QTransform& transform, const Draw& draw) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setTransform(transform);
    LumoPaintConfig config(&painter);
    LumoPainter lumo(&config, nullptr);
    draw(&lumo);
    return image;
}

/// Painted pixels, those at edges by how much of them is covered; of one colour, by its part.
double area(const QImage& image, Part part = nullptr) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            sum += (part ? part(pixel) : qAlpha(pixel)) / 255.0;  // parts are premultiplied
        }
    return sum;
}

int difference(const QImage& a, const QImage& b) {
    int most = a.size() == b.size() ? 0 : 255;
    for (int y = 0; most < 255 && y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            for (const Part part : {Part(qRed), Part(qGreen), Part(qBlue), Part(qAlpha)})
                most = std::max(most, std::abs(part(p) - part(q)));
        }
    return most;
}

// ---- painting ----

TEST(Painter, JoinsFilledNeighboursWithoutASeamAtAnyZoom) {
    for (const double zoom : {0.25, 0.5, 0.83, 1.0, 1.25, 1.1 * 1.1})
        for (const double shift : {0.0, 0.3, 0.5, 0.77}) {
            const QTransform at = QTransform().translate(shift, shift).scale(zoom, zoom);
            const QImage image = drawn({120, 300}, at, [](LumoPainter* painter) {
                for (int row = 0; row < 10; ++row) {
                    painter->addRect(10, 20 * row, 60, 20);
                    painter->fill();
                }
                painter->addRect(80, 0, 0.2, 200);  // thin, but there
                painter->fill();
            });
            const int x = int(40 * zoom);
            for (int y = 2; y < int(198 * zoom); ++y)
                ASSERT_EQ(qAlpha(image.pixel(x, y)), 255) << zoom << ' ' << shift << ' ' << y;
            EXPECT_GE(area(image.copy(int(75 * zoom), 20, 12, 10)), 10) << zoom;
        }
}

TEST(Painter, RestoresTheStateOfTheQPainterWhateverItDid) {
    QImage image(50, 50, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter qt(&image);
    qt.setPen(QPen(Qt::blue, 3));
    qt.setBrush(Qt::cyan);
    qt.setOpacity(0.75);
    qt.translate(5, 5);
    qt.setRenderHint(QPainter::Antialiasing, false);
    const QTransform transform = qt.worldTransform();
    const QPainter::RenderHints hints = qt.renderHints();
    LumoPaintConfig config(&qt);
    LumoObject parent;
    auto* const child = new LumoObject;
    child->setRect({7, 8, 9, 10});
    parent.addChild(child);
    {
        LumoPainter lumo(&config, child);
        lumo.restore();  // nothing saved
        lumo.setColor(red);
        lumo.addRect(0, 0, 5, 5);
        lumo.fill();
        EXPECT_EQ(QColor(image.pixel(12, 13)), QColor(191, 0, 0).rgb()) << "at the object";
        lumo.save();
        lumo.rotate(30);
        lumo.scale(2);
        lumo.addRect(0, 0, 5, 5);
        lumo.clip();
        lumo.addLine(0, 0, 9, 9);
        lumo.stroke();
        lumo.save();  // both are left open
    }
    EXPECT_EQ(qt.pen(), QPen(Qt::blue, 3));
    EXPECT_EQ(qt.brush(), QBrush(Qt::cyan));
    EXPECT_DOUBLE_EQ(qt.opacity(), 0.75);
    EXPECT_EQ(qt.worldTransform(), transform);
    EXPECT_EQ(qt.renderHints(), hints);
    EXPECT_FALSE(qt.hasClipping());
}

// ---- text ----

class Text : public testing::Test {
protected:
    void SetUp() override { QB::Test::needApplication(); }
};

TEST_F(Text, OfElevenPointsIsFifteenPixelsAndLaidOutOnce) {
    QFont font(QStringLiteral("Sans Serif"));
    font.setPixelSize(15);
    const LumoDoubleSize size = lumoLayoutHelper().measureText("customer_id", rowFont);
    EXPECT_NEAR(size.height, QFontMetricsF(font).height(), 0.01);
    const long before = lumoTextLayouts();
    for (const double scale : {1.0, 0.83, 2.0})
        drawn({200, 80}, QTransform::fromScale(scale, scale), [](LumoPainter* painter) {
            painter->drawText("customer_id", rowFont, LumoAlignLeft,
                              lumoMakeDoubleRect(0, 0, 90, 20));
        });
    EXPECT_EQ(lumoTextLayouts(), before);
}

TEST_F(Text, IsCutWhereItsRectangleEnds) {
    const LumoLayoutHelper& helper = lumoLayoutHelper();
    const std::string whole = "a rather long name of a column";
    const std::string cut = helper.elide(whole, rowFont, 80);
    EXPECT_LE(helper.measureText(cut, rowFont).width, 80);
    EXPECT_GT(helper.measureText(cut, rowFont).width, 60);
    EXPECT_EQ(cut.substr(cut.size() - 3), "\u2026");
    EXPECT_EQ(helper.elide("short", rowFont, 80), "short");
    EXPECT_EQ(helper.elide(whole, rowFont, 2), "");
    EXPECT_EQ(helper.elide("two\nlines\t", rowFont, 200), "two lines ");

    for (const double scale : {0.35, 0.83, 1.0, 1.25, 2.0, 4.0})
        for (const int align : {LumoAlignLeft, LumoAlignCenter, LumoAlignRight}) {
            LumoDrawTextResult result;
            const QImage image =
                drawn({500, 100}, QTransform::fromScale(scale, scale), [&](LumoPainter* painter) {
                    painter->drawText(whole, rowFont, align | LumoAlignElide,
                                      lumoMakeDoubleRect(20, 0, 80, 20), &result);
                });
            EXPECT_GT(area(image), 20 * scale);
            const int right = int(std::ceil(100 * scale)) + 1;
            EXPECT_EQ(area(image.copy(0, 0, int(20 * scale) - 1, 100)), 0) << scale;
            EXPECT_EQ(area(image.copy(right, 0, 500 - right, 100)), 0) << scale;
        }
}

// ---- images ----

/// Squares of one colour: "a" of 16 pixels and its finer one, "b.png" alone.
class Squares : public LumoImageResourceProvider {
public:
    ~Squares() override { setCurrent(nullptr); }
    unsigned long loadImage(const std::string& name, char** data) override {
        asked.push_back(name);
        if (name != "a" && name != "a@2x" && name != "x.y/b.png") return 0;
        QImage image(name == "a@2x" ? 32 : 16, name == "a@2x" ? 32 : 16, QImage::Format_RGB32);
        image.fill(name == "a@2x" ? Qt::red : Qt::green);
        QBuffer buffer(&m_bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        *data = m_bytes.data();
        return size_t(m_bytes.size());
    }
    std::vector<std::string> asked;

private:
    QByteArray m_bytes;
};

TEST(Image, IsLoadedOnceForAllAndDrawnFinerOnAFineDevice) {
    LumoImage none;
    EXPECT_FALSE(none.loadFromFile("a"));  // no provider yet
    Squares provider;
    LumoImageResourceProvider::setCurrent(&provider);
    LumoImage a, again, b;
    EXPECT_TRUE(a.loadFromFile("a"));
    EXPECT_TRUE(again.loadFromFile("a"));
    EXPECT_TRUE(b.loadFromFile("x.y/b.png"));
    EXPECT_FALSE(none.loadFromFile("missing"));
    EXPECT_EQ(provider.asked,
              (std::vector<std::string>{"a", "a@2x", "x.y/b.png", "x.y/b@2x.png", "missing"}));
    EXPECT_EQ(a.getSize(), (LumoSize{16, 16}));
    for (const int scale : {1, 2}) {
        const QImage image =
            drawn({40, 40}, QTransform::fromScale(scale, scale), [&](LumoPainter* painter) {
                painter->drawImage(a, 0.5, {0, 0, 16, 16});
            });
        EXPECT_NEAR(area(image, scale == 1 ? Part(qGreen) : Part(qRed)), 128 * scale * scale, 3)
            << scale;
    }
    LumoImageResourceProvider::setCurrent(nullptr);
    EXPECT_FALSE(again.loadFromFile("a"));
    EXPECT_EQ(a.getSize(), (LumoSize{16, 16}));
}

// ---- pictures of objects ----

/// Something of all that an item shows.
class Card : public LumoObject {
public:
    explicit Card(LumoSize size = {200, 120}) {
        setRect({{0, 0}, size});
        setCachedAsPicture(true);
        auto* const row = new Row;
        row->setRect({7, 33, 150, 20});
        addChild(row);
    }
    void paint(LumoPaintConfig* config, LumoRect rect) override {
        ++paints;
        LumoPainter painter(config, this);
        painter.setColor({250, 250, 250, 1});
        painter.addRoundedRect(LumoDoubleRect(getBoundingRect()), 6);
        painter.fillPreserve();
        painter.setColor({99, 99, 99, 1});
        painter.stroke();
        painter.setColor(mark);
        painter.addRect(10, 60, 33, 17);
        painter.fill();
        painter.drawLine(3, 90, 180, 113);
        LumoObject::paint(config, rect);
    }
    LumoRect customDirtyRect() const override { return lumoInflateRect(getBoundingRect(), 1, 1); }
    LumoObject* row() const { return getChildren().front(); }
    int paints = 0;
    LumoColor mark = red;

private:
    struct Row : LumoObject {
        void paint(LumoPaintConfig* config, LumoRect) override {
            LumoPainter painter(config, this);
            painter.drawText("order_date", rowFont, LumoAlignElide, {4, 0, 140, 20});
            painter.addArc(140, 10, 3, 0, 360);
            painter.fill();
        }
    };
};

/// The space of the screen, and of the pass before.
class ObjectPicture : public Text {
protected:
    QImage pass(double zoom, QPointF scroll, double ratio, LumoPictureCache* used) {
        QImage image(QSize(900, 500), QImage::Format_RGB32);
        image.fill(QColor(230, 235, 240));
        image.setDevicePixelRatio(ratio);
        QPainter painter(&image);
        painter.translate(-scroll);
        painter.scale(zoom, zoom);
        LumoPaintConfig config(&painter, used);
        root.paint(&config, {0, 0, 5000, 5000});
        return image;
    }
    Card* add(LumoPoint at, LumoSize size = {200, 120}) {
        auto* const card = new Card(size);
        card->setRect({at, size});
        root.addChild(card);
        return card;
    }
    LumoObject root;
    LumoPictureCache cache;
};

TEST_F(ObjectPicture, LooksAsIfItWerePaintedAtEveryZoomAndPlace) {
    const Card* const first = add({3, 5});
    const Card* const second = add({211, 52});
    for (const double ratio : {1.0, 1.25, 2.0})
        for (const double zoom : {0.83, 1.0, 1.1, 1.25, 0.35})
            for (const QPointF scroll : {QPointF(0, 0), QPointF(-3.4, 1.6)}) {
                const QImage direct = pass(zoom, scroll, ratio, nullptr);
                const int paints = first->paints + second->paints;
                EXPECT_LE(difference(direct, pass(zoom, scroll, ratio, &cache)), 3)
                    << ratio << ' ' << zoom << ' ' << scroll.x();
                EXPECT_LE(difference(direct, pass(zoom, scroll, ratio, &cache)), 3);
                EXPECT_LE(first->paints + second->paints, paints + 2);
                EXPECT_EQ(cache.count(), 2);
            }
}

TEST_F(ObjectPicture, IsKeptByAMoveAndRenewedByAChangeInside) {
    Card* const card = add({10, 10});
    const auto sameAsDirect = [&] {
        const QImage cached = pass(0.83, {}, 1, &cache);
        const int paints = card->paints;
        const bool same = difference(cached, pass(0.83, {}, 1, nullptr)) <= 2;
        card->paints = paints;
        return same;
    };
    EXPECT_TRUE(sameAsDirect());
    for (int x = 11; x < 20; ++x) {
        card->setRect({x, 10, 200, 120});
        EXPECT_TRUE(sameAsDirect()) << x;
    }
    EXPECT_EQ(card->paints, 1);
    card->row()->setVisible(false);
    EXPECT_TRUE(sameAsDirect());
    EXPECT_EQ(card->paints, 2);
    card->mark = green;
    card->invalidate();
    EXPECT_TRUE(sameAsDirect());
    EXPECT_EQ(card->paints, 3);
    pass(1.0, {}, 1, &cache);
    EXPECT_EQ(cache.count(), 1);
    cache.drop(card);
    EXPECT_EQ(cache.count(), 0);
}

TEST_F(ObjectPicture, StaysWithinItsBoundAndNeverThrowsOutWhatThePassStillShows) {
    // A bit over 4 MB each: 16 fit into 64 * 2^20 bytes.
    for (int i = 0; i < 20; ++i)
        add({i, i}, {1000, 1000});
    pass(1, {}, 1, &cache);
    EXPECT_EQ(cache.count(), 16);
    EXPECT_LE(cache.bytes(), 64 << 20);
    const auto paints = [&] {
        int sum = 0;
        for (const Card* card : root.findChildren<Card>(false))
            sum += card->paints;
        return sum;
    };
    const int before = paints();
    pass(1, {}, 1, &cache);
    EXPECT_EQ(paints(), before + 4);

    // What is not shown any more makes room for what is.
    for (Card* card : root.findChildren<Card>(false))
        card->setVisible(false);
    const Card* const late = add({0, 0}, {1000, 1000});
    Card* const huge = add({0, 0}, {2100, 2100});
    pass(1, {}, 1, &cache);
    pass(1, {}, 1, &cache);
    EXPECT_EQ(late->paints, 1);
    EXPECT_EQ(huge->paints, 2) << "too large for a picture";
    EXPECT_LE(cache.bytes(), 64 << 20);
}

}  // namespace
