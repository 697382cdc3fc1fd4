#include "app/viewer/side/Legible.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace velko::viewer {

namespace {

constexpr double kLeastContrast = 4.5; // of small letters, by the usual measure

double Linear(double dbPart) {
    constexpr double kKnee = 0.04045;
    return dbPart <= kKnee ? dbPart / 12.92 : std::pow((dbPart + 0.055) / 1.055, 2.4);
}

double Luminance(const QColor& color) {
    return 0.2126 * Linear(color.redF()) + 0.7152 * Linear(color.greenF()) +
           0.0722 * Linear(color.blueF());
}

double Contrast(const QColor& one, const QColor& other) {
    constexpr double kGlare = 0.05;
    const auto [dbDark, dbLight] = std::minmax({Luminance(one), Luminance(other)});
    return (dbLight + kGlare) / (dbDark + kGlare);
}

QColor Mixed(const QColor& one, const QColor& other, double dbShare) {
    const auto fnPart = [dbShare](int nOne, int nOther) {
        return static_cast<int>(std::lround(nOne + (nOther - nOne) * dbShare));
    };
    return {fnPart(one.red(), other.red()), fnPart(one.green(), other.green()),
            fnPart(one.blue(), other.blue())};
}

}

QColor LegibleOn(const QColor& ground, const QColor& color, const QColor& letters) {
    constexpr int kSteps = 10;
    for (int nStep = 0; nStep < kSteps; ++nStep) {
        const QColor mixed = Mixed(color, letters, static_cast<double>(nStep) / kSteps);
        if (Contrast(mixed, ground) >= kLeastContrast) {
            return mixed;
        }
    }
    return letters;
}

void DrawReadingMark(QPainter& painter, const QRect& rcRow, const QPalette& palette) {
    constexpr int kAlpha = 56;
    constexpr int kBar = 3;
    QColor ground = palette.color(QPalette::Active, QPalette::Highlight);
    painter.fillRect(QRect(rcRow.topLeft(), QSize(kBar, rcRow.height())), ground);
    ground.setAlpha(kAlpha);
    painter.fillRect(rcRow, ground);
}

}
