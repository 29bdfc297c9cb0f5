#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QPainterPath>
#include <QTransform>

#include "platform/lumo/lumo_types.h"

class LumoObject;
class LumoPictureCache;
class QImage;
class QPainter;

/// Where a paint pass goes: a QPainter whose transform at the start maps the diagram's space to the
/// device. Lives for one pass.
class LumoPaintConfig {
public:
    /// @p cache keeps pictures of objects between passes; null paints everything anew (export).
    explicit LumoPaintConfig(QPainter* painter, LumoPictureCache* cache = nullptr);

    QPainter* qtPainter() const { return m_painter; }
    LumoPictureCache* pictureCache() const { return m_cache; }
    /// Device pixels for one pixel of the diagram: zoom times device pixel ratio.
    double scale() const { return m_scale; }
    const QTransform& diagramToDevice() const { return m_root; }
    /// For measurements: objects that painted in this pass.
    int paintedObjects = 0;

private:
    QPainter* const m_painter;        // not owned
    LumoPictureCache* const m_cache;  // not owned
    QTransform m_root;
    double m_scale = 1;
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
/// The ways to combine two pictures or actions.
enum LumoComposeMode : int {
    LumoComposeErase = 1,   // the first without what the second covers
    LumoComposeAtop = 2,    // the second over the first, only where the first is
    LumoComposeInside = 3,  // pictures: the source where the destination is; actions: the first
                            // where the second is
};

/// An image from a provider, kept once for each name.
class LumoImage {
public:
    LumoImage();
    ~LumoImage();
    /// Asks the provider in force (see LumoImageResourceProvider); false leaves the image empty.
    bool loadFromFile(const std::string& name);
    LumoSize getSize() const;
    const QImage& image() const;

private:
    std::shared_ptr<const QImage> m_image;
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

    /// The provider that LumoImage asks; null for none. Not owned.
    static void setCurrent(LumoImageResourceProvider* provider);
    static LumoImageResourceProvider* current();
};

/// Paint actions that are kept and replayed, on a surface of a size.
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

/// Draws with a path, a colour and a few pens into the pass of a config. Restores what it changed
/// when destroyed. Text and lines are antialiased.
class LumoPainter {
public:
    LumoPainter(LumoPaintConfig* config, const LumoObject* object);
    ~LumoPainter();
    LumoPainter(const LumoPainter&) = delete;
    LumoPainter& operator=(const LumoPainter&) = delete;

    void setColor(const LumoColor& color);
    void setLineWidth(double width);
    void setLineCap(int cap);
    void setLineJoin(int join);
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

    void fill();
    void fillPreserve();
    void stroke();
    /// Straight segments with flat ends, without a path: a third of the cost of stroke.
    void drawLine(double x0, double y0, double x1, double y1);
    void clip();  // to the path, consumed; until restore

    /// One line; nothing is drawn outside of @p rect if @p align has LumoAlignElide.
    void drawText(const std::string& text, const LumoFont& font, int align,
                  const LumoDoubleRect& rect, LumoDrawTextResult* result = nullptr);
    void drawImage(const LumoImage& image, double alpha, const LumoDoubleRect& rect);
    void drawPicture(const LumoPicture& picture, LumoDoublePoint point, double alpha);
    void drawPictureInRect(const LumoPicture& picture, double alpha, const LumoDoubleRect& rect);
    void composePictures(const LumoPicture& destination, const LumoPicture& source, int mode,
                         const LumoDoubleRect& rect);
    void composePaintActions(const LumoPicture::Action& first, const LumoPicture::Action& second,
                             int mode, const LumoDoubleRect& rect);

    void save();
    void restore();
    void translate(double dx, double dy);
    void rotate(double degrees);
    void scale(double factor);

    LumoPaintConfig* config() const;

private:
    struct State;
    const std::unique_ptr<State> m_state;
};

/// A painter in the space of the config's start.
[[nodiscard]] LumoPainter* lumoCreatePainter(LumoPaintConfig* config);
/// A painter translated into the space of @p object.
[[nodiscard]] LumoPainter* lumoCreatePainterWithObject(LumoPaintConfig* config,
                                                       const LumoObject* object);
void lumoDestroyPainter(LumoPainter* painter);

/// Measures text. Metrics are kept by font.
class LumoLayoutHelper {
public:
    virtual ~LumoLayoutHelper() = default;
    virtual LumoDoubleSize measureText(const std::string& text, const LumoFont& font) const;
    /// @p text cut at the end by "…" so that it is not wider than @p width.
    virtual std::string elide(const std::string& text, const LumoFont& font, double width) const;
};
[[nodiscard]] LumoLayoutHelper* lumoCreateLayoutHelper();
/// The one that everybody shares.
const LumoLayoutHelper& lumoLayoutHelper();
