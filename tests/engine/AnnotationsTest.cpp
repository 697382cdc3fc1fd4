// Annotations of every kind, form fields, and links with their destinations.

#include <tuple>

#include "document/engine/HostServices.h"
#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

using pdf::ILinkSource;
using pdf::LinkRecord;

namespace {

const std::vector<std::string> kSubtypes = {
    "Text",        "Link",      "FreeText",       "Line",     "Square",    "Circle", "Polygon",
    "PolyLine",    "Highlight", "Underline",      "Squiggly", "StrikeOut", "Stamp",  "Caret",
    "Ink",         "PSInk",     "FileAttachment", "Sound",    "Movie",     "Widget", "Screen",
    "PrinterMark", "TrapNet",   "Watermark",      "3D",       "Popup",     "Redact", "Unheard"};

std::string LinkTo(const std::string& strTarget) {
    return "<< /Type /Annot /Subtype /Link /Rect [10 10 60 30] " + strTarget + " >>";
}

}

class AnnotationsTest : public MuPdfTest {};

TEST_F(AnnotationsTest, EveryKindHasItsNumberAndDrawsItself) {
    PdfOptions options;
    options.extraObjects = {FormObject(20, 20, "0 0 1")};
    PdfPage page;
    page.mediaBox = {0, 0, 30.0 * static_cast<double>(kSubtypes.size()), 30};
    for (std::size_t i = 0; i < kSubtypes.size(); ++i) {
        const double dbLeft = 30.0 * static_cast<double>(i) + 5;
        page.annots.push_back(
            AnnotDictionary(kSubtypes[i], {dbLeft, 5, dbLeft + 20, 25}, kFirstExtraObject));
    }
    page.annots[19].insert(2, " /FT /Tx /T (field)"); // a form field needs a name to be drawn
    page.annots.insert(page.annots.begin() + 3, {"null", "17"});
    const auto pDoc = OpenDoc(MakePdf({page}, options));
    ASSERT_TRUE(pDoc);
    const auto pPage = pDoc->GetPage(0);
    ASSERT_EQ(pPage->GetAnnotCount(), static_cast<std::int32_t>(kSubtypes.size()) + 2);
    EXPECT_FALSE(pPage->GetAnnot(3));
    EXPECT_FALSE(pPage->GetAnnot(4));

    const auto matrix =
        pPage->GetDisplayMatrix(0, 0, static_cast<std::int32_t>(page.mediaBox.dbRight), 30, 0);
    for (std::size_t i = 0; i < kSubtypes.size(); ++i) {
        SCOPED_TRACE(kSubtypes[i]);
        const auto nEntry = static_cast<std::int32_t>(i < 3 ? i : i + 2);
        const auto pAnnot = pPage->GetAnnot(nEntry);
        ASSERT_TRUE(pAnnot);
        EXPECT_EQ(pAnnot->GetType(), kSubtypes[i] == "Unheard" ? 0 : static_cast<int>(i) + 1);
        const auto pBitmap = CreateBitmap(static_cast<std::int32_t>(page.mediaBox.dbRight), 30);
        const bool bDrawn = CreateRenderer(pBitmap)->RenderAnnot(pAnnot, matrix);
        const bool bInvisible = kSubtypes[i] == "Link" || kSubtypes[i] == "Popup";
        EXPECT_EQ(bDrawn, !bInvisible);
        const auto x = 30 * static_cast<std::int32_t>(i) + 15;
        EXPECT_EQ(PixelAt(*pBitmap, x, 15), bInvisible ? 0U : 0xFF0000FFU);
        EXPECT_EQ(PixelAt(*pBitmap, x < 60 ? x + 30 : x - 30, 15), 0U) << "its neighbour";
    }
}

TEST_F(AnnotationsTest, HiddenOnesAndMissingAppearancesAreDrawnAsTheyShould) {
    PdfOptions options;
    options.extraObjects = {FormObject(20, 20, "0 0 1")};
    PdfPage page;
    page.mediaBox = {0, 0, 100, 30};
    std::string strHidden = AnnotDictionary("Stamp", {5, 5, 25, 25}, kFirstExtraObject);
    strHidden.replace(strHidden.find("/F 4"), 4, "/F 2");
    page.annots = {
        strHidden,
        "<< /Type /Annot /Subtype /Square /F 4 /Rect [35 5 55 25] /C [1 0 0] /IC [1 0 0] >>"};
    const auto pDoc = OpenDoc(MakePdf({page}, options));
    ASSERT_TRUE(pDoc);
    const auto pPage = pDoc->GetPage(0);
    const auto pBitmap = CreateBitmap(100, 30);
    const auto pRenderer = CreateRenderer(pBitmap);
    const auto matrix = pPage->GetDisplayMatrix(0, 0, 100, 30, 0);
    EXPECT_FALSE(pRenderer->RenderAnnot(pPage->GetAnnot(0), matrix));
    EXPECT_EQ(PixelAt(*pBitmap, 15, 15), 0U);
    EXPECT_TRUE(pRenderer->RenderAnnot(pPage->GetAnnot(1), matrix));
    EXPECT_EQ(PixelAt(*pBitmap, 45, 15), 0xFFFF0000U);
}

TEST_F(AnnotationsTest, DestinationsHaveTheFilesNumbers) {
    constexpr float kTop = 750.0F; // of the target page's box
    // Mode, left, top, right, bottom, and whether left and top are absent.
    using Numbers = std::tuple<std::int32_t, float, float, float, float, bool, bool>;
    const std::vector<std::pair<const char*, Numbers>> cases = {
        {"/XYZ 100 200 1.5", {1, 100, 200, 1.5F, 0, false, false}},
        {"/XYZ null null null", {1, 0, kTop, 0, 0, true, false}},
        {"/XYZ null 300 0", {1, 0, 300, 0, 0, true, false}},
        {"/XYZ -20 9000 2", {1, -20, 9000, 2, 0, false, false}},
        {"/Fit", {2, 0, kTop, 0, 0, true, false}},
        {"/FitH 400", {3, 400, 400, 0, 0, false, false}},
        {"/FitH null", {3, kTop, kTop, 0, 0, false, false}},
        {"/FitBH null", {7, kTop, kTop, 0, 0, false, false}},
        {"/FitV null", {4, 0, kTop, 0, 0, true, false}},
        {"/FitV 50", {4, 50, 50, 0, 0, false, false}},
        {"/FitR 10 20 300 400", {5, 10, 400, 300, 20, false, false}},
        {"/FitB", {6, 0, kTop, 0, 0, true, false}},
        {"/FitBH 77", {7, 77, 77, 0, 0, false, false}},
        {"/FitBV 66", {8, 66, 66, 0, 0, false, false}},
        {"", {2, 0, kTop, 0, 0, true, false}},
    };
    PdfPage target;
    target.mediaBox = {0, 0, 600, 800};
    target.cropBox = {{50, 60, 500, 750}};
    target.nRotate = 90;
    PdfPage source;
    const PdfOptions options;
    const std::string strPage = std::to_string(PdfPageObject(options, 1)) + " 0 R ";
    for (const auto& [szTarget, numbers] : cases) {
        const std::string strArray = "[" + strPage + szTarget + "]";
        source.annots.push_back(LinkTo("/Dest " + strArray));
        source.annots.push_back(LinkTo("/A << /S /GoTo /D " + strArray + " >>"));
    }
    const auto pDoc = OpenDoc(MakePdf({source, target}, options));
    ASSERT_TRUE(pDoc);
    const auto pLinks = std::dynamic_pointer_cast<ILinkSource>(pDoc);
    ASSERT_TRUE(pLinks);
    const std::vector<LinkRecord> links = pLinks->GetLinks(0);
    ASSERT_EQ(links.size(), 2 * cases.size());
    for (std::size_t i = 0; i < links.size(); ++i) {
        SCOPED_TRACE(cases[i / 2].first);
        ASSERT_TRUE(links[i].pAction);
        const auto p = links[i].pAction->GetDestination();
        ASSERT_TRUE(p);
        EXPECT_EQ(p->GetPageIndex(*pDoc), 1);
        EXPECT_EQ(Numbers(p->GetZoomMode(), p->GetLeft(), p->GetTop(), p->GetRight(),
                          p->GetBottom(), p->IsLeftAbsent(), p->IsTopAbsent()),
                  cases[i / 2].second);
    }
}

TEST_F(AnnotationsTest, NamesLinksAndBrokenTargets) {
    PdfOptions options;
    options.extraObjects = {"[1 /FitH 123]"};
    options.strCatalogExtra =
        "/Dests << /old [1 /XYZ 1 2 3] >> "
        "/Names << /Dests << /Names [(chapter) << /D [0 /Fit] >> (far) [99 /Fit] (loop) (loop)] >> "
        ">>";
    PdfPage page;
    page.annots = {LinkTo("/Dest (chapter)"),
                   LinkTo("/A << /S /GoTo /D /old >>"),
                   LinkTo("/A << /S /URI /URI (https://example.org/a) >>"),
                   LinkTo("/Dest " + std::to_string(kFirstExtraObject) + " 0 R"),
                   LinkTo("/Dest (nowhere)"),
                   LinkTo("/Dest [99 /Fit]"),
                   LinkTo("/Dest 17"),
                   LinkTo("/A << /S /GoToR /F << /UF (other.pdf) >> /D [0 /Fit] >>"),
                   LinkTo("/A << /S /Named /N /NextPage >>"),
                   LinkTo("/A << /F (nothing) >>"),
                   LinkTo(""),
                   "null"};
    const auto pDoc = OpenDoc(MakePdf({page, page}, options));
    ASSERT_TRUE(pDoc);
    const auto pLinks = std::dynamic_pointer_cast<ILinkSource>(pDoc);
    const std::vector<LinkRecord> links = pLinks->GetLinks(0);
    ASSERT_EQ(links.size(), 10U) << "those that ask for nothing are left out";
    EXPECT_EQ(links[0].pAction->GetDestination()->GetPageIndex(*pDoc), 0);
    EXPECT_EQ(links[1].pAction->GetDestination()->GetPageIndex(*pDoc), 1);
    EXPECT_EQ(links[2].strUri, "https://example.org/a");
    EXPECT_FALSE(links[2].pAction);
    EXPECT_FLOAT_EQ(links[3].pAction->GetDestination()->GetTop(), 123.0F);
    for (const std::size_t nBroken : {4U, 5U, 6U, 9U}) {
        const LinkRecord& link = links[nBroken];
        EXPECT_TRUE(!link.pAction && link.strUri.empty() && link.strOtherKind.empty()) << nBroken;
    }
    EXPECT_EQ(links[7].strOtherKind + " " + links[7].strOtherValue, "GoToR other.pdf");
    EXPECT_EQ(links[8].strOtherKind + " " + links[8].strOtherValue, "Named NextPage");
    EXPECT_FLOAT_EQ(links[0].rcArea.Left, 10.0F);
    EXPECT_FLOAT_EQ(links[0].rcArea.Top, 30.0F);

    EXPECT_EQ(pLinks->FindNamedDestination("old")->GetDestination()->GetZoomMode(), 1);
    EXPECT_EQ(pLinks->FindNamedDestination("chapter")->GetDestination()->GetZoomMode(), 2);
    for (const char* szName : {"", "nothing", "far", "loop"}) {
        EXPECT_FALSE(pLinks->FindNamedDestination(szName)) << szName;
    }
    EXPECT_EQ(EngineCodeOf([&] { pLinks->GetLinks(2); }), common::ErrorCode::e_ErrParam);
}

}
