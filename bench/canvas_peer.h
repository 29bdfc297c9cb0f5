#pragma once

#include <cmath>
#include <vector>

#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QPainter>
#include <QPixmap>

#include "canvas/base/canvas_style.h"
#include "canvas/diagram/diagram.h"
#include "canvas/items/base_item_body.h"
#include "canvas/items/item.h"
#include "canvas/links/join_link.h"
#include "canvas/links/join_link_adaptor.h"
#include "canvas/links/join_symbol.h"
#include "canvas/links/link_geometry.h"

namespace QB::DiagramLumo {

/// What a diagram costs as a QGraphicsScene that is as good as its items allow: one item a table,
/// kept as a pixmap of the device, and one a link, painted as flat lines and a shared pixmap. It
/// shows what the canvas shows: frame, title, the rows in view with box and text, a bar, the marks
/// where links dock; lines with round stubs and a turned symbol.
namespace Peer {

inline QColor colorOf(const LumoColor& color) {
    QColor result(color.red, color.green, color.blue);
    result.setAlphaF(color.alpha);
    return result;
}

inline QRectF rectOf(const LumoRect& rect) {
    return {qreal(rect.origin.x), qreal(rect.origin.y), qreal(rect.size.width),
            qreal(rect.size.height)};
}

inline const QFont& itemFont() {
    static const QFont font = [] {
        QFont made(QString::fromStdString(Style::itemFont.family));
        made.setPixelSize(15);
        return made;
    }();
    return font;
}

class Link;

class Table : public QGraphicsItem {
public:
    explicit Table(const QBLumoItem& item) : m_size(rectOf(item.getRect()).size()) {
        const QBLumoBaseItemBody& body = *item.getBody();
        m_title = QString::fromStdString(body.titleText());
        m_rows.push_back({QStringLiteral("*"), body.isWildcardSelected()});
        for (const std::string& field : body.fieldNames())
            m_rows.push_back({QString::fromStdString(field), body.isFieldSelected(field)});
        setPos(rectOf(item.getRect()).topLeft());
        setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
        setCacheMode(DeviceCoordinateCache);
    }

    QRectF boundingRect() const override { return {{0, 0}, m_size}; }
    QRectF bodyRect() const {
        return boundingRect().adjusted(itemInsetX, itemInsetY, -itemInsetX, -itemInsetY);
    }
    /// Where links dock, in the scene: at the title, left and right.
    LumoRect dock() const {
        const QRectF body = bodyRect().translated(pos());
        return {int(body.left()) - 3, int(body.top()) + Style::titleHeight / 2 - 3,
                int(body.width()) + 6, 6};
    }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) override {
        painter->setFont(itemFont());
        paintFrame(painter);
        painter->save();
        painter->setClipRect(listRect());
        QRectF row = listRect();
        row.setHeight(fieldRowHeight);
        for (const Row& shown : m_rows) {
            if (row.top() >= listRect().bottom()) break;
            paintRow(painter, row, shown);
            row.translate(0, fieldRowHeight);
        }
        painter->restore();
        paintBar(painter);
        paintMarks(painter);
    }

    std::vector<Link*> links;  // not owned: the scene owns both

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant& value) override;

private:
    struct Row {
        QString text;
        bool ticked = false;
    };

    QRectF listRect() const { return bodyRect().adjusted(1, Style::titleHeight + 1, -6, -6); }

    void paintFrame(QPainter* painter) const {
        const QRectF body = bodyRect().adjusted(0.5, 0.5, -0.5, -0.5);
        if (isSelected()) {
            painter->setPen(QPen(colorOf(Style::accentHalf), 8));
            painter->setBrush(Qt::NoBrush);
            painter->drawRoundedRect(body, Style::cornerRadius, Style::cornerRadius);
        }
        painter->setPen(QColor(140, 146, 152));
        painter->setBrush(Qt::white);
        painter->drawRoundedRect(body, Style::cornerRadius, Style::cornerRadius);
        QRectF title = body;
        title.setHeight(Style::titleHeight);
        painter->fillRect(title.adjusted(1, 1, -1, 0), QColor(229, 233, 237));
        painter->drawLine(title.bottomLeft(), title.bottomRight());
        painter->setPen(Qt::black);
        drawText(painter, title.adjusted(8, 0, -8, 0), m_title);
    }

    static void drawText(QPainter* painter, const QRectF& place, const QString& text) {
        painter->drawText(
            place, Qt::AlignVCenter | Qt::TextSingleLine,
            QFontMetricsF(itemFont()).elidedText(text, Qt::ElideRight, place.width()));
    }

    static void paintRow(QPainter* painter, const QRectF& row, const Row& shown) {
        const QRectF box(row.left() + 7.5, row.top() + 3.5, 13, 13);
        painter->setPen(QColor(148, 148, 148));
        painter->setBrush(shown.ticked ? colorOf(Style::symbolAccent) : QColor(Qt::white));
        painter->drawRoundedRect(box, 2, 2);
        if (shown.ticked) {
            const QPointF mark[] = {{box.left() + 2, box.top() + 7},
                                    {box.left() + 5, box.top() + 11},
                                    {box.left() + 11, box.top() + 3}};
            painter->setPen(QPen(Qt::white, 1.5));
            painter->drawPolyline(mark, 3);
        }
        painter->setPen(Qt::black);
        drawText(painter, row.adjusted(28, 0, -10, 0), shown.text);
    }

    void paintBar(QPainter* painter) const {
        const QRectF list = listRect();
        const qreal content = qreal(m_rows.size()) * fieldRowHeight;
        if (content <= list.height()) return;
        painter->setPen(Qt::NoPen);
        painter->setBrush(QColor(0, 0, 0, 90));
        painter->drawRoundedRect(
            QRectF(list.right() - 8, list.top(), 6, list.height() * list.height() / content), 3, 3);
    }

    void paintMarks(QPainter* painter) const {
        if (links.empty()) return;
        painter->setPen(QPen(colorOf(Style::linkGrey), 2));
        painter->setBrush(Qt::white);
        const qreal y = bodyRect().top() + Style::titleHeight / 2.0;
        painter->drawEllipse(QPointF(bodyRect().left(), y), 3, 3);
        painter->drawEllipse(QPointF(bodyRect().right(), y), 3, 3);
    }

    const QSizeF m_size;
    QString m_title;
    std::vector<Row> m_rows;
};

/// One of all links of a type, at a scale.
inline const QPixmap& symbolPixmap(int joinType, double scale) {
    static std::map<std::pair<int, int>, QPixmap> made;
    QPixmap& pixmap = made[{joinType, int(std::lround(scale * 1000))}];
    if (!pixmap.isNull()) return pixmap;
    const double fineness = 2 * scale;
    pixmap = QPixmap(int(std::ceil(46 * fineness)), int(std::ceil(30 * fineness)));
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.scale(pixmap.width() / 46.0, pixmap.height() / 30.0);
    LumoPaintConfig config(&painter);
    LumoPainter symbol(&config, nullptr);
    paint_drawJoinImage(&symbol, {{23, 15}, 0, joinType, "", {255, 255, 255, 1}});
    return pixmap;
}

class Link : public QGraphicsItem {
public:
    Link(Table* left, Table* right, int joinType, const std::string& label)
        : m_left(left)
        , m_right(right)
        , m_joinType(joinType)
        , m_label(QString::fromStdString(label)) {
        m_labelFont = itemFont();
        m_labelFont.setPixelSize(11);
        setZValue(-1);
        left->links.push_back(this);
        right->links.push_back(this);
        follow();
    }

    void follow() {
        prepareGeometryChange();
        const auto endOf = [](const LumoRect& rect) {
            const int y = rect.origin.y + rect.size.height / 2;
            return AdaptorEnd{rect, {rect.origin.x, y}, {rect.origin.x + rect.size.width, y}};
        };
        const AdaptorEnd left = endOf(m_left->dock());
        const AdaptorEnd right = endOf(m_right->dock());
        m_route = routeBetween(left, right, linkCentre(left, right));
    }

    QRectF boundingRect() const override { return rectOf(routeBox(m_route)); }

    void paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*) override {
        const QPointF middle = pointOf(m_route.middle());
        painter->setPen(QPen(colorOf(Style::linkGrey), 2, Qt::SolidLine, Qt::FlatCap));
        for (const LumoPoint stub : {m_route.startStub(), m_route.endStub()}) {
            const QLineF leg(middle, pointOf(stub));
            if (leg.length() > symbolReach)
                painter->drawLine(QLineF(leg.pointAt(symbolReach / leg.length()), leg.p2()));
        }
        painter->setPen(QPen(colorOf(Style::linkGrey), 2, Qt::SolidLine, Qt::RoundCap));
        painter->drawLine(pointOf(m_route.start), pointOf(m_route.startStub()));
        painter->drawLine(pointOf(m_route.endStub()), pointOf(m_route.end));
        const double scale = painter->worldTransform().m11();
        painter->translate(middle);
        painter->rotate(m_joinType == 0 ? uprightAngle(m_route.angle()) : m_route.angle());
        painter->drawPixmap(QRectF(-23, -15, 46, 30), symbolPixmap(m_joinType, scale), QRectF());
        if (m_joinType != 0 || m_label.isEmpty()) return;
        painter->setFont(m_labelFont);
        painter->setPen(colorOf(Style::labelAccent));
        painter->drawText(QRectF(-20, 14, 40, 14), Qt::AlignCenter, m_label);
    }

private:
    static QPointF pointOf(LumoPoint point) { return {qreal(point.x), qreal(point.y)}; }

    Table* const m_left;   // not owned
    Table* const m_right;  // not owned
    const int m_joinType;
    const QString m_label;
    QFont m_labelFont;
    Route m_route;
};

inline QVariant Table::itemChange(GraphicsItemChange change, const QVariant& value) {
    if (change == ItemPositionHasChanged)
        for (Link* link : links)
            link->follow();
    return QGraphicsItem::itemChange(change, value);
}

class View : public QGraphicsView {
public:
    /// Shows what @p diagram shows now.
    explicit View(const QBLumoDiagram& diagram) {
        const LumoSize size = diagram.getRect().size;
        m_scene.setSceneRect(0, 0, size.width, size.height);
        setScene(&m_scene);
        setBackgroundBrush(colorOf(diagram.getBackgroundColor()));
        setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        setAlignment(Qt::AlignLeft | Qt::AlignTop);
        setFrameShape(NoFrame);
        std::map<const QBLumoItem*, Table*> tables;
        for (const QBLumoItem* item : diagram.items())
            m_scene.addItem(tables[item] = new Table(*item));
        for (const QBLumoJoinLink* link : diagram.joinLinks()) {
            if (!link->isShown()) continue;
            const auto [left, right] = link->allAdaptorPairs().front();
            m_scene.addItem(new Link(tables.at(left->findParent<QBLumoItem>()),
                                     tables.at(right->findParent<QBLumoItem>()),
                                     link->getJoinType(), link->getLabel()));
        }
    }

    int paintPasses() const { return m_paintPasses; }

protected:
    void paintEvent(QPaintEvent* event) override {
        ++m_paintPasses;
        QGraphicsView::paintEvent(event);
    }

private:
    QGraphicsScene m_scene;
    int m_paintPasses = 0;
};

}  // namespace Peer
}  // namespace QB::DiagramLumo
