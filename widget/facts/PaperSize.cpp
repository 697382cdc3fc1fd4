#include "widget/facts/PaperSize.h"

#include <array>
#include <cmath>

namespace velko::vkit {

namespace {

constexpr double kPointsOfInch = 72.0;
constexpr double kMmOfInch = 25.4;
constexpr double kNearMm = 1.0;

// Upright, in millimetres.
struct Paper {
    const char* szName;
    double dbWidth;
    double dbHeight;
};

constexpr std::array kPapers{Paper{"A0", 841, 1189},
                             Paper{"A1", 594, 841},
                             Paper{"A2", 420, 594},
                             Paper{"A3", 297, 420},
                             Paper{"A4", 210, 297},
                             Paper{"A5", 148, 210},
                             Paper{"A6", 105, 148},
                             Paper{"A7", 74, 105},
                             Paper{"A8", 52, 74},
                             Paper{"A9", 37, 52},
                             Paper{"A10", 26, 37},
                             Paper{"B0", 1000, 1414},
                             Paper{"B1", 707, 1000},
                             Paper{"B2", 500, 707},
                             Paper{"B3", 353, 500},
                             Paper{"B4", 250, 353},
                             Paper{"B5", 176, 250},
                             Paper{"B6", 125, 176},
                             Paper{"B7", 88, 125},
                             Paper{"B8", 62, 88},
                             Paper{"B9", 44, 62},
                             Paper{"B10", 31, 44},
                             Paper{"C4 envelope", 229, 324},
                             Paper{"C5 envelope", 162, 229},
                             Paper{"C6 envelope", 114, 162},
                             Paper{"DL envelope", 110, 220},
                             Paper{"JIS B4", 257, 364},
                             Paper{"JIS B5", 182, 257},
                             Paper{"Letter", 215.9, 279.4},
                             Paper{"Legal", 215.9, 355.6},
                             Paper{"Tabloid", 279.4, 431.8},
                             Paper{"Executive", 184.2, 266.7},
                             Paper{"Statement", 139.7, 215.9},
                             Paper{"Folio", 215.9, 330.2},
                             Paper{"ANSI C", 431.8, 558.8},
                             Paper{"ANSI D", 558.8, 863.6},
                             Paper{"ANSI E", 863.6, 1117.6}};

QSizeF InMm(QSizeF size) {
    return size * (kMmOfInch / kPointsOfInch);
}

bool AreNear(QSizeF one, QSizeF other) {
    return std::abs(one.width() - other.width()) < kNearMm &&
           std::abs(one.height() - other.height()) < kNearMm;
}

QString Measured(QSizeF size, double dbUnits, int nDigits, const char* szUnit,
                 const QLocale& locale) {
    const auto fnText = [&](double dbPoints) {
        const double dbScale = std::pow(10.0, nDigits);
        const double db = std::round(dbPoints / kPointsOfInch * dbUnits * dbScale) / dbScale;
        return locale.toString(db, 'f', QLocale::FloatingPointShortest);
    };
    return QStringLiteral("%1 × %2 %3").arg(fnText(size.width()), fnText(size.height()), szUnit);
}

}

QString PaperNameOf(QSizeF size) {
    const QSizeF mm = InMm(size);
    for (const Paper& paper : kPapers) {
        const QSizeF upright(paper.dbWidth, paper.dbHeight);
        if (AreNear(mm, upright)) {
            return paper.szName;
        }
        if (AreNear(mm, upright.transposed())) {
            return QStringLiteral("%1, landscape").arg(paper.szName);
        }
    }
    return {};
}

QString PaperTextOf(QSizeF size, const QLocale& locale) {
    const bool bMetric = locale.measurementSystem() == QLocale::MetricSystem;
    const QString strSize =
        bMetric ? Measured(size, kMmOfInch, 0, "mm", locale) : Measured(size, 1.0, 2, "in", locale);
    const QString strName = PaperNameOf(size);
    return strName.isEmpty() ? strSize : QStringLiteral("%1 (%2)").arg(strSize, strName);
}

bool AreOneSize(QSizeF one, QSizeF other) {
    return AreNear(InMm(one), InMm(other));
}

}
