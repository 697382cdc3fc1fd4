#include "tests/engine/EditFixture.h"

#include <utility>

namespace velko::testing {

using common::vxbase::PointF;
using pdf::AnnotRecord;

AnnotRecord RecordOf(std::int32_t nType) {
    AnnotRecord record;
    record.nType = nType;
    record.rcArea = {40, 50, 100, 80};
    if (nType >= kHighlight && nType <= 12) {
        record.quads = {{{45, 62}, {95, 62}, {45, 52}, {95, 52}},
                        {{45, 78}, {70, 78}, {45, 68}, {70, 68}}};
    }
    if (nType == kInk) {
        record.strokes = {{{45, 55}, {60, 75}, {90, 60}}, {{50, 52}, {52, 52}}};
    }
    record.ptStart = {45, 55};
    record.ptEnd = {95, 75};
    record.nColor = 0xFF8000;
    record.nFillColor = 0x0080FF;
    record.fOpacity = 0.5F;
    record.fLineWidth = 2.0F;
    record.fFontSize = 9.0F;
    record.strContents =
        "gr\xC3\xBC\xC3\x9F dich, \xCE\xB1\xCE\xB2, \xE6\x97\xA5\xE6\x9C\xAC (1)\n2";
    record.strAuthor = "Zo\xC3\xAB";
    record.nCreated = 1'000'000'000;
    record.nModified = 1'600'000'001;
    return record;
}

std::string Told(const AnnotRecord& record) {
    std::string strTold =
        std::to_string(record.nType) + " " + record.strContents + "|" + record.strAuthor + "|" +
        std::to_string(record.nCreated) + " " + std::to_string(record.nModified) + " " +
        std::to_string(record.nColor.value_or(0xFFFFFFFFU)) + " " + std::to_string(record.fOpacity);
    for (const pdf::TextQuad& q : record.quads) {
        for (const PointF& pt : {q.ptTopLeft, q.ptTopRight, q.ptBottomLeft, q.ptBottomRight}) {
            strTold += " " + std::to_string(pt.X) + "," + std::to_string(pt.Y);
        }
    }
    for (const auto& stroke : record.strokes) {
        strTold += " /";
        for (const PointF& pt : stroke) {
            strTold += " " + std::to_string(pt.X) + "," + std::to_string(pt.Y);
        }
    }
    if (record.nType == kLine) {
        strTold += " " + std::to_string(record.ptStart.X) + " " + std::to_string(record.ptEnd.Y);
    }
    if (record.nType == kSquare || record.nType == 6) {
        strTold += " " + std::to_string(record.nFillColor.value_or(0xFFFFFFFFU));
    }
    if (record.nType == kFreeText) {
        strTold += " " + std::to_string(record.fFontSize);
    }
    return strTold;
}

Opened::Opened(const std::string& strBytes, const std::string& strPassword)
    : pReader(std::make_shared<MemoryReader>(strBytes)), pDoc(CreateDoc(pReader)) {
    pDoc->Load(strPassword);
}

pdf::IAnnotEditor& Opened::Editor() const {
    return dynamic_cast<pdf::IAnnotEditor&>(*pDoc);
}

std::shared_ptr<common::Bitmap> Opened::Picture(std::int32_t nPage) const {
    const auto pPage = pDoc->GetPage(nPage);
    View view = WholePage(*pPage);
    view.bAnnots = true;
    return Render(pPage, view);
}

std::string Opened::List(std::int32_t nPage) const {
    std::string strList;
    for (const pdf::ListedAnnot& annot : Editor().ListAnnots(nPage)) {
        strList += std::to_string(annot.nId) + ": " + Told(annot.record) + "\n";
    }
    return strList;
}

std::string Opened::ListWithoutIds(std::int32_t nPage) const {
    std::string strList;
    for (const pdf::ListedAnnot& annot : Editor().ListAnnots(nPage)) {
        strList += Told(annot.record) + "\n";
    }
    return strList;
}

std::string AnnotatedDocument(PdfOptions options) {
    const auto fnRef = [](int n) { return std::to_string(kFirstExtraObject + n) + " 0 R"; };
    options.extraObjects = {
        FormObject(20, 20, "0 0 1"),
        "<< /Type /Annot /Subtype /Text /Rect [10 60 30 80] /Contents (first) /Popup " + fnRef(2) +
            " /AP << /N " + fnRef(0) + " >> /Own (kept) /C [0 0 0 1] /F 4 >>",
        "<< /Type /Annot /Subtype /Popup /Rect [100 60 150 90] /Parent " + fnRef(1) + " >>",
        "<< /Type /Annot /Subtype /Square /Rect [35 60 55 80] /AP << /N " + fnRef(0) +
            " >> /F 4 >>"};
    PdfPage page;
    page.mediaBox = {0, 0, 160, 100};
    page.strContent = "0.9 g 0 0 160 100 re f\n";
    const std::string strLine =
        "<< /Type /Annot /Subtype /Line /Rect [60 20 100 40] /L [60 20 100 40] /LE [/None "
        "/OpenArrow] /BS << /W 3 /S /D /D [6 2] >> /C [1 0 0] /F 4 >>";
    page.annots = {fnRef(1),
                   "null",
                   strLine,
                   fnRef(2),
                   AnnotDictionary("Stamp", {10, 20, 30, 40}, kFirstExtraObject),
                   fnRef(3)};
    PdfPage second = page;
    second.annots = {fnRef(3)};
    return MakePdf({page, second}, options);
}

}
