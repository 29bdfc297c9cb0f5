#include "widgets/label_palette.h"

#include <algorithm>
#include <cmath>

#include "model/callbacks.h"

namespace QB {
namespace {

constexpr double readableContrast = 4.5;

double linearChannel(double value) {
    return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

/// The relative luminance of WCAG 2, from 0 to 1.
double luminance(const QColor& colour) {
    return 0.2126 * linearChannel(colour.redF()) + 0.7152 * linearChannel(colour.greenF()) +
           0.0722 * linearChannel(colour.blueF());
}

QColor withLightness(const QColor& colour, int lightness) {
    const int hue = std::max(colour.hslHue(), 0);
    return QColor(QColor::fromHsl(hue, colour.hslSaturation(), lightness).rgb());
}

/// The lightness nearest to that of @p colour which can be read on @p background, going towards
/// @p end, 0 or 255; -1 if there is none. Contrast only grows from the background's lightness on.
int readableLightness(const QColor& colour, const QColor& background, int end) {
    const auto isReadable = [&](int lightness) {
        return contrastRatio(withLightness(colour, lightness), background) >= readableContrast;
    };
    if (!isReadable(end)) return -1;
    int readable = end;
    int unreadable = colour.lightness();
    while (std::abs(readable - unreadable) > 1) {
        const int middle = (readable + unreadable) / 2;
        (isReadable(middle) ? readable : unreadable) = middle;
    }
    return readable;
}

}  // namespace

QColor labelColour(LabelColour colour) {
    const bool isDark = Callback::isDarkTheme && Callback::isDarkTheme();
    switch (colour) {
        case LabelColour::Value:
            break;
        case LabelColour::Placeholder:
            return Qt::gray;
        case LabelColour::Operator:
            return QColor(0x09, 0x7B, 0xF7);
        case LabelColour::Invalid:
            return QColor(0xF4, 0x43, 0x36);
    }
    return isDark ? QColor(0xEF, 0xEF, 0xEF) : QColor(0x42, 0x42, 0x42);
}

double contrastRatio(const QColor& a, const QColor& b) {
    const double first = luminance(a);
    const double second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

QColor readableColour(const QColor& colour, const QColor& background) {
    if (contrastRatio(colour, background) >= readableContrast) return colour;
    const int darker = readableLightness(colour, background, 0);
    const int lighter = readableLightness(colour, background, 255);
    const int own = colour.lightness();
    const bool takesDarker = darker >= 0 && (lighter < 0 || own - darker <= lighter - own);
    return withLightness(colour, takesDarker ? darker : lighter);
}

QColor selectedRowColour(const QPalette& palette) {
    const QColor highlight = palette.color(QPalette::Highlight);
    const QColor base = palette.color(QPalette::Base);
    const auto mixed = [](int quarter, int rest) {
        return (quarter + 3 * rest) / 4;
    };
    return QColor(mixed(highlight.red(), base.red()), mixed(highlight.green(), base.green()),
                  mixed(highlight.blue(), base.blue()));
}

}  // namespace QB
