// The sizes of pages in words: how large they are, and what paper is called that is so.
//
// Threads: any. Units: points of 1/72 inch.
#pragma once

#include <QLocale>
#include <QSizeF>
#include <QString>

namespace velko::vkit {

// Such as "A4" or "Letter, landscape", where a paper differs by less than a millimetre;
// else empty.
QString PaperNameOf(QSizeF size);

// Such as "210 × 297 mm (A4)", in what the locale measures in.
QString PaperTextOf(QSizeF size, const QLocale& locale);

// Whether a reader calls them one size; turned they are not.
bool AreOneSize(QSizeF one, QSizeF other);

}
