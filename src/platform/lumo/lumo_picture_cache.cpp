#include "platform/lumo/lumo_picture_cache.h"

#include <QCache>
#include <QImage>
#include <QPainter>

#include "platform/lumo/lumo_object.h"
#include "platform/lumo/lumo_paint.h"
#include "platform/lumo/lumo_paint_device.h"

namespace {

constexpr int mostBytes = 64 * 1024 * 1024;
/// One picture takes at most a quarter: an item that fills the screen at a high zoom is painted
/// directly, its visible part alone.
constexpr qint64 mostBytesEach = mostBytes / 4;

struct Picture {
    QImage image;
    QPoint offset;        // of its first pixel from the object's origin on the device
    uint64_t serial = 0;  // of the object when the picture was made
    uint64_t lastPass = 0;
};

/// The pixels around the object's origin that it paints, with one more for smooth edges.
QRect pixelsOf(const LumoObject& object, double scale) {
    const LumoRect visual = object.customDirtyRect();
    const QRectF scaled(visual.origin.x * scale, visual.origin.y * scale, visual.size.width * scale,
                        visual.size.height * scale);
    return scaled.toAlignedRect().adjusted(-1, -1, 1, 1);
}

QImage paintPicture(LumoObject* object, const QRect& pixels, double scale) {
    QImage image(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(-pixels.topLeft());
    painter.scale(scale, scale);
    LumoPaintConfig config(&painter, nullptr, object);
    object->paint(&config, object->customDirtyRect());
    return image;
}

qint64 bytesOf(const QRect& pixels) {
    return qint64(pixels.width()) * pixels.height() * 4;
}

}  // namespace

struct LumoPictureCache::State {
    /// Begins a pass if @p config is of another one than before.
    void enter(const LumoPaintConfig& config);
    Picture* fresh(LumoObject* object);
    Picture* make(LumoObject* object, const QRect& pixels);

    QCache<const LumoObject*, Picture> pictures{mostBytes};
    double scale = 0;
    uint64_t pass = 0;
    qint64 passBytes = 0;  // of the pictures that this pass used
};

void LumoPictureCache::State::enter(const LumoPaintConfig& config) {
    if (config.passId() == pass) return;
    pass = config.passId();
    passBytes = 0;
    if (qFuzzyCompare(config.scale(), scale)) return;
    scale = config.scale();
    pictures.clear();
}

Picture* LumoPictureCache::State::fresh(LumoObject* object) {
    Picture* const picture = pictures.object(object);
    return picture && picture->serial == object->pictureSerial() ? picture : nullptr;
}

Picture* LumoPictureCache::State::make(LumoObject* object, const QRect& pixels) {
    // Asked before: what is invalidated while it paints is painted again by the next pass.
    const uint64_t serial = object->pictureSerial();
    auto* const picture =
        new Picture{paintPicture(object, pixels, scale), pixels.topLeft(), serial, 0};
    pictures.insert(object, picture, int(bytesOf(pixels)));
    return picture;
}

LumoPictureCache::LumoPictureCache() : m_state(std::make_unique<State>()) {}
LumoPictureCache::~LumoPictureCache() = default;

bool LumoPictureCache::paint(LumoObject* object, LumoPaintConfig* config) {
    if (!config->onPixelGrid()) return false;
    m_state->enter(*config);
    Picture* picture = m_state->fresh(object);
    if (!picture) {
        const QRect pixels = pixelsOf(*object, m_state->scale);
        const qint64 bytes = bytesOf(pixels);
        // A pass that needs more than the bound would throw out its own pictures one by one.
        if (bytes > mostBytesEach || m_state->passBytes + bytes > mostBytes) return false;
        picture = m_state->make(object, pixels);
    }
    if (picture->lastPass != config->passId()) m_state->passBytes += picture->image.sizeInBytes();
    picture->lastPass = config->passId();
    const QPoint origin = config->deviceOrigin(object).toPoint();
    lumoDrawOnDevice(config->qtPainter(), origin + picture->offset, picture->image);
    return true;
}

void LumoPictureCache::drop(const LumoObject* object) {
    m_state->pictures.remove(object);
}

void LumoPictureCache::clear() {
    m_state->pictures.clear();
}

int LumoPictureCache::count() const {
    return m_state->pictures.count();
}

long LumoPictureCache::bytes() const {
    return m_state->pictures.totalCost();
}
