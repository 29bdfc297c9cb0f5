#pragma once

#include <QColor>
#include <QImage>
#include <cmath>

namespace QB::Test {

/// The mean of 3 x 3 pixels of the image.
inline QColor meanAt(const QImage& image, QPointF place) {
    int sums[3] = {};
    for (int i = 0; i < 9; ++i) {
        const QColor pixel = image.pixelColor(int(std::floor(place.x())) + i % 3 - 1,
                                              int(std::floor(place.y())) + i / 3 - 1);
        sums[0] += pixel.red();
        sums[1] += pixel.green();
        sums[2] += pixel.blue();
    }
    return {sums[0] / 9, sums[1] / 9, sums[2] / 9};
}

}  // namespace QB::Test
