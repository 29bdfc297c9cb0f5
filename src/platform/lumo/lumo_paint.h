#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QPainterPath>
#include <QPen>
#include <QTransform>

#include "platform/lumo/lumo_types.h"

class LumoObject;
class LumoPictureCache;
class QImage;
class QPainter;

/// Where a paint pass goes: a QPainter whose transform at the start maps the diagram's space to the
/// device. Lives for one pass.
///
/// Pixels: on an image or a window whose transform does not turn, an object with isCachedAsPicture
/// lies on whole device pixels, so that its picture and its direct paint are the same at any zoom.
class LumoPaintConfig {
public:
    /// @p cache keeps pictures of objects between passes; null paints everything anew (export).
    /// @p top is the object in whose space the painter stands; null for the diagram.
    explicit LumoPaintConfig(QPainter* painter, LumoPictureCache* cache = nullptr,
                             const LumoObject* top = nullptr);
    LumoPaintConfig(const LumoPaintConfig&) = delete;
    LumoPaintConfig& operator=(const LumoPaintConfig&) = delete;

    QPainter* qtPainter() const { return m_painter; }
    LumoPictureCache* pictureCache() const { return m_cache; }
    /// Device pixels for one pixel of the diagram: zoom times device pixel ratio.
    double scale() const { return m_scale; }
    /// True if the device has pixels and the transform moves and scales evenly only.
    bool onPixelGrid() const { return m_onPixelGrid; }
    /// Where the origin of @p object, a descendant of the diagram, lies on the device.
    QPointF deviceOrigin(const LumoObject* object) const;
    /// The world transform that puts the QPainter into the space of @p object; null: of the start.
    QTransform worldTransform(const LumoObject* object) const;
    /// No other pass has the same.
    uint64_t passId() const { return m_passId; }
    /// On a device that cannot clip (SVG), the object that would clip: of what lies in it, only
    /// what is wholly in sight is painted. Null elsewhere. Kept by LumoObject::paintChildren.
    const LumoObject* cutBy = nullptr;
    /// For measurements: objects that painted in this pass.
    int paintedObjects = 0;

private:
    QPainter* const m_painter;        // not owned
    LumoPictureCache* const m_cache;  // not owned
    const LumoObject* const m_top;    // not owned
    const QTransform m_root;
    const QTransform m_world;  // of the QPainter at the start
    const double m_scale;
    const bool m_onPixelGrid;
    const uint64_t m_passId;
};

/// Result of drawing text.
struct LumoDrawTextResult {
    LumoDoubleSize size;  // what the text took
};

enum LumoTextAlign : int {
    LumoAlignLeft = 0,
    LumoAlignCenter = 1,
    LumoAlignRight = 2,
    LumoAlignElide = 4,  // with one of the others: cut at the end by "…"
};
enum LumoLineCap : int { LumoCapFlat = 0, LumoCapRound = 1 };
enum LumoLineJoin : int { LumoJoinMiter = 0, LumoJoinRound = 1, LumoJoinBevel = 2 };
/// The ways to combine two pictures or actions, pixel by pixel of the whole rectangle. Any other
/// number draws the second over the first.
enum LumoComposeMode : int {
    LumoComposeErase = 1,   // the first without what the second covers
    LumoComposeAtop = 2,    // the second over the first, only where the first is
    LumoComposeInside = 3,  // pictures: the source where the destination is; actions: the first
                            // where the second is
};

/// An image from a provider, shared by all who ask for one name. Where the provider has a finer one
/// of twice the size ("NAME@2x", "PATH@2x.png"), that is drawn on a fine device; the size is always
/// that of the first.
class LumoImage {
public:
    LumoImage();
    ~LumoImage();
    /// Asks the provider in force (see LumoImageResourceProvider); false leaves the image empty.
    bool loadFromFile(const std::string& name);
    LumoSize getSize() const;
    /// The one to draw at @p scale device pixels a logical one.
    const QImage& image(double scale = 1) const;

private:
    friend class LumoImageResourceProvider;
    struct Files;
    std::shared_ptr<const Files> m_files;
};

/// Gives the bytes of images by name.
class LumoImageResourceProvider {
public:
    LumoImageResourceProvider() = default;
    virtual ~LumoImageResourceProvider() = default;
    LumoImageResourceProvider(const LumoImageResourceProvider&) = delete;
    LumoImageResourceProvider& operator=(const LumoImageResourceProvider&) = delete;

    /// Puts the address of the encoded image in @p data and returns its length in bytes; 0 if there
    /// is none. The bytes belong to the provider and live as long as it does.
    virtual unsigned long loadImage(const std::string& name, char** data) = 0;

    /// The provider that LumoImage asks; null for none. Not owned. A change forgets what was loaded
    /// before; images that are in use stay.
    static void setCurrent(LumoImageResourceProvider* provider);
    static LumoImageResourceProvider* current();
};

/// Paint actions that are kept and replayed, on a surface of a size. To an action, the start of its
/// config is the top left corner of the surface.
class LumoPicture {
public:
    using Action = std::function<void(LumoPaintConfig*)>;

    void registerPaintAction(Action action, LumoDoubleSize size);
    LumoDoubleSize size() const { return m_size; }
    void replay(LumoPaintConfig* config) const;

private:
    std::vector<Action> m_actions;
    LumoDoubleSize m_size;
};

/// Draws with a path, a colour and a few pens into the pass of a config. Text and lines are
/// antialiased; the path is filled by the winding rule.
///
/// At the start: opaque black, width 1, flat ends, mitred corners, no dash, an empty path.
/// State: touches the QPainter from the first drawing, clip or transform on, and then restores it
/// exactly when destroyed. Painters of one pass end in the opposite order of their first drawing.
/// Cost: next to nothing while nothing is drawn.
class LumoPainter {
public:
    /// In the space of @p object; null: of the config's start.
    LumoPainter(LumoPaintConfig* config, const LumoObject* object);
    ~LumoPainter();
    LumoPainter(const LumoPainter&) = delete;
    LumoPainter& operator=(const LumoPainter&) = delete;

    void setColor(const LumoColor& color);
    void setLineWidth(double width);
    void setLineCap(int cap);
    void setLineJoin(int join);
    /// Lengths drawn and left out, in turn, in logical pixels; empty for a solid line.
    void setLineDash(const std::vector<double>& dash);

    void moveTo(double x, double y);
    void lineTo(double x, double y);
    void addLine(double x0, double y0, double x1, double y1);
    void addRect(double x, double y, double w, double h);
    void addRect(const LumoDoubleRect& rect);
    /// A sub-path from @p startDegrees clockwise to @p endDegrees; a full turn is a circle.
    void addArc(double cx, double cy, double r, double startDegrees, double endDegrees);
    /// The same, joined by a line to the point where the path stands.
    void arcTo(double cx, double cy, double r, double startDegrees, double endDegrees);
    void addRoundedRect(const LumoDoubleRect& rect, double radius);
    void addPath(const QPainterPath& path);
    void closePath();
    void clearPath();

    /// A rectangle alone in the path is laid on whole device pixels, at least one: neighbours meet
    /// without a seam at any zoom.
    void fill();
    void fillPreserve();
    void stroke();
    /// One straight segment with flat ends, without a path: a third of the cost of a stroked
    /// polyline. stroke takes this road by itself for single segments.
    void drawLine(double x0, double y0, double x1, double y1);
    void clip();  // to the path, consumed; until restore

    /// One line, in the vertical middle of @p rect; it does not leave @p rect to the right or left
    /// if @p align has LumoAlignElide.
    void drawText(const std::string& text, const LumoFont& font, int align,
                  const LumoDoubleRect& rect, LumoDrawTextResult* result = nullptr);
    void drawImage(const LumoImage& image, double alpha, const LumoDoubleRect& rect);
    void drawImage(const QImage& image, double alpha, const LumoDoubleRect& rect);
    void drawPicture(const LumoPicture& picture, LumoDoublePoint point, double alpha);
    void drawPictureInRect(const LumoPicture& picture, double alpha, const LumoDoubleRect& rect);
    /// Both are scaled into @p rect and combined at the resolution of the device, see
    /// LumoComposeMode. What they paint outside is cut.
    void composePictures(const LumoPicture& destination, const LumoPicture& source, int mode,
                         const LumoDoubleRect& rect);
    /// The same of two actions whose configs start at the top left corner of @p rect.
    void composePaintActions(const LumoPicture::Action& first, const LumoPicture::Action& second,
                             int mode, const LumoDoubleRect& rect);

    void save();
    void restore();
    void translate(double dx, double dy);
    void rotate(double degrees);
    void scale(double factor);

    LumoPaintConfig* config() const { return m_config; }

private:
    /// What save keeps.
    struct Pen {
        LumoColor color{0, 0, 0, 1};
        double width = 1;
        int cap = LumoCapFlat;
        int join = LumoJoinMiter;
        std::vector<double> dash;
    };

    QPainter* begin();
    QPainterPath& path();
    QPen qtPen() const;
    bool endsAreThin() const;
    bool pathIsSegments() const;
    void strokeSegments();
    void fillRectangle(const QRectF& rect);

    LumoPaintConfig* const m_config;   // not owned
    const LumoObject* const m_object;  // not owned
    bool m_begun = false;              // the QPainter's state is saved
    Pen m_pen;
    std::vector<Pen> m_saved;
    std::optional<QRectF> m_rectangle;  // the whole path, while it is one rectangle
    QPainterPath m_path;
};

/// A painter in the space of the config's start.
[[nodiscard]] LumoPainter* lumoCreatePainter(LumoPaintConfig* config);
/// A painter translated into the space of @p object.
[[nodiscard]] LumoPainter* lumoCreatePainterWithObject(LumoPaintConfig* config,
                                                       const LumoObject* object);
void lumoDestroyPainter(LumoPainter* painter);

/// Measures text as it is drawn. Metrics are kept by font, laid out lines in a bounded cache.
class LumoLayoutHelper {
public:
    virtual ~LumoLayoutHelper() = default;
    virtual LumoDoubleSize measureText(const std::string& text, const LumoFont& font) const;
    /// @p text cut at the end by "…" so that it is not wider than @p width; empty if not even that
    /// has room.
    virtual std::string elide(const std::string& text, const LumoFont& font, double width) const;
};
[[nodiscard]] LumoLayoutHelper* lumoCreateLayoutHelper();
/// The one that everybody shares.
const LumoLayoutHelper& lumoLayoutHelper();
