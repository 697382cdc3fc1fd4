#include "widget/places/PlaceName.h"

#include <QString>
#include <algorithm>
#include <memory>

#include "document/engine/PDFDoc.h"
#include "document/engine/PageText.h"
#include "widget/VelkoPdfView.h"
#include "widget/facts/Outline.h"
#include "widget/facts/ReadingPlace.h"

namespace velko::vkit {

using velko::pdf::PageText;
using velko::pdf::PDFDoc;
using velko::pdf::TextLine;

namespace {

constexpr int kLongest = 60; // letters

QString SectionAt(PDFDoc& document, const DocumentHeight& height) {
    const Outline outline = Outline::Of(document);
    const int nEntry = outline.ReadAt(height);
    return nEntry >= 0 ? QString::fromStdString(outline[nEntry].strTitle) : QString();
}

QString TextOf(const PageText& text, const TextLine& line) {
    QString strText;
    for (std::int32_t n = line.nFirst; n < line.nEnd; ++n) {
        const char32_t nCode = text.chars[static_cast<std::size_t>(n)].nCode;
        strText += QString::fromUcs4(&nCode, 1);
    }
    return strText.simplified();
}

// The first line of which the middle lies below the top; lines of a turned page all do.
QString WordsBelow(const PageText& text, float fTop) {
    for (const TextLine& line : text.lines) {
        if (line.nFirst >= line.nEnd) {
            continue;
        }
        const auto& quad = text.chars[static_cast<std::size_t>(line.nFirst)].quad;
        const float fMiddle = (quad.ptTopLeft.Y + quad.ptBottomLeft.Y) / 2.0F;
        QString strText = fMiddle < fTop ? TextOf(text, line) : QString();
        if (!strText.isEmpty()) {
            return strText;
        }
    }
    return {};
}

QString NameIn(const std::shared_ptr<PDFDoc>& pDocument, const DocumentHeight& height,
               std::int32_t nPage, float fTop) {
    try {
        QString strName = SectionAt(*pDocument, height);
        const auto pSource = std::dynamic_pointer_cast<velko::pdf::ITextSource>(pDocument);
        if (strName.isEmpty() && pSource) {
            strName = WordsBelow(*pSource->TextOf(nPage), fTop);
        }
        return strName;
    } catch (...) { // of a document that cannot be read the number serves
        return {};
    }
}

QString Shortened(const QString& strName) {
    return strName.size() > kLongest ? strName.left(kLongest - 1).trimmed() + QChar(0x2026)
                                     : strName;
}

}

concurrency::task<std::string> NameOfPlace(const VelkoPdfView& view, std::int32_t nPage,
                                           Windows::Foundation::Point ptTop) {
    const auto pDocument = view.Control()->GetPDFDoc();
    const DocumentHeight height = ReadingPlaceOf(view);
    const auto naming = concurrency::create_task([pDocument, height, nPage, fTop = ptTop.Y] {
        const QString strName =
            pDocument ? Shortened(NameIn(pDocument, height, nPage, fTop)) : QString();
        return (strName.isEmpty() ? QStringLiteral("Page %1").arg(nPage + 1) : strName)
            .toStdString();
    });
    co_return co_await naming;
}

}
