#include "apps/joinery-desk/theme.h"

#include <QApplication>
#include <QProxyStyle>
#include <QStyle>
#include <QStyleOption>
#include <initializer_list>
#include <utility>

#include "hostkit/threads.h"
#include "widgets/visible_edges.h"

namespace QB::Desk {
namespace {

struct Shades {
    QColor window, base, alternate, text, faint, button, edge, link, accent, onAccent;
};

Shades lightShades() {
    return {QColor(0xf2f3f5), QColor(0xffffff), QColor(0xf6f8fa), QColor(0x1d2025),
            QColor(0x6d737c), QColor(0xf7f8f9), QColor(0xb4b9c1), QColor(0x1f5fbf),
            QColor(0x2a6fd0), QColor(0xffffff)};
}

Shades darkShades() {
    return {QColor(0x2b2d30), QColor(0x1e1f22), QColor(0x25272a), QColor(0xe3e5e8),
            QColor(0x9097a1), QColor(0x383b40), QColor(0x17181a), QColor(0x6cb2ff),
            QColor(0x2f6fc4), QColor(0xffffff)};
}

QPalette paletteOf(const Shades& shades) {
    QPalette palette(shades.button, shades.window);
    const std::initializer_list<std::pair<QPalette::ColorRole, QColor>> roles = {
        {QPalette::WindowText, shades.text},
        {QPalette::Base, shades.base},
        {QPalette::AlternateBase, shades.alternate},
        {QPalette::Text, shades.text},
        {QPalette::ButtonText, shades.text},
        {QPalette::BrightText, shades.onAccent},
        {QPalette::ToolTipBase, shades.button},
        {QPalette::ToolTipText, shades.text},
        {QPalette::PlaceholderText, shades.faint},
        {QPalette::Highlight, shades.accent},
        {QPalette::HighlightedText, shades.onAccent},
        {QPalette::Link, shades.link},
        {QPalette::Mid, shades.edge}};
    for (const auto& [role, color] : roles)
        palette.setColor(role, color);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, shades.faint);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, shades.edge);
    return palette;
}

const char* const ownStyle = "joinery-fusion";

/// A native style may paint its own colours over a palette; this one takes what it is given, but
/// for edges that nobody would see.
class OwnStyle : public QProxyStyle {
public:
    OwnStyle() : QProxyStyle(QStringLiteral("Fusion")) { setObjectName(QLatin1String(ownStyle)); }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option))
            return drawEdged(element, *button, painter, widget);
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option))
            return drawEdged(element, *frame, painter, widget);
        if (const auto* menu = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            return drawEdged(element, *menu, painter, widget);
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }

private:
    template <typename Option>
    void drawEdged(PrimitiveElement element, Option option, QPainter* painter,
                   const QWidget* widget) const {
        option.palette.setColor(QPalette::Window, edgedWindowColour(option.palette));
        QProxyStyle::drawPrimitive(element, &option, painter, widget);
    }
};

}  // namespace

Theme themeOfName(const QString& name) {
    if (name == QLatin1String("light")) return Theme::Light;
    return name == QLatin1String("dark") ? Theme::Dark : Theme::System;
}

QString nameOfTheme(Theme theme) {
    if (theme == Theme::System) return QStringLiteral("system");
    return theme == Theme::Dark ? QStringLiteral("dark") : QStringLiteral("light");
}

ThemeSwitcher::ThemeSwitcher()
    : m_systemPalette(QApplication::palette())
    , m_systemStyle(QApplication::style()->objectName()) {}

void ThemeSwitcher::apply(Theme theme) {
    // The library is told first: with the palette come the events on which widgets ask for it.
    if (theme == Theme::System) {
        HostKit::followPaletteTheme();
    } else {
        HostKit::setDarkTheme(theme == Theme::Dark);
    }
    const bool isSystem = theme == Theme::System;
    const bool isOwn = QApplication::style()->objectName() == QLatin1String(ownStyle);
    if (isSystem && isOwn) QApplication::setStyle(m_systemStyle);
    if (!isSystem && !isOwn) QApplication::setStyle(new OwnStyle);
    QApplication::setPalette(isSystem
                                 ? m_systemPalette
                                 : paletteOf(theme == Theme::Dark ? darkShades() : lightShades()));
    m_theme = theme;
}

}  // namespace QB::Desk
