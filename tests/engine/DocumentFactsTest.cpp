// What a document says of itself: outline, labels, properties, fonts, attached files.

#include "document/engine/DocumentFacts.h"

#include "tests/engine/MuPdfFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

namespace {

std::string Ref(int nExtra) {
    return std::to_string(kFirstExtraObject + nExtra) + " 0 R";
}

// A document of pages whose catalogue and further objects are given.
std::shared_ptr<pdf::PDFDoc> DocumentOf(int nPages, const std::string& strCatalogExtra,
                                        std::vector<std::string> extraObjects,
                                        const std::string& strPageExtra = {}) {
    PdfPage page;
    page.strExtra = strPageExtra;
    PdfOptions options;
    options.strCatalogExtra = strCatalogExtra;
    options.extraObjects = std::move(extraObjects);
    return OpenDoc(MakePdf(std::vector<PdfPage>(static_cast<std::size_t>(nPages), page), options));
}

pdf::IDocumentFacts& FactsOf(const std::shared_ptr<pdf::PDFDoc>& pDoc) {
    return dynamic_cast<pdf::IDocumentFacts&>(*pDoc);
}

// "title:depth:page", a page of -1 for an entry that leads elsewhere.
std::vector<std::string> Lines(const std::vector<pdf::OutlineEntry>& entries,
                               const pdf::PDFDoc& document) {
    std::vector<std::string> lines;
    for (const pdf::OutlineEntry& entry : entries) {
        const int nPage =
            entry.pAction ? entry.pAction->GetDestination()->GetPageIndex(document) : -1;
        lines.push_back(entry.strTitle + ":" + std::to_string(entry.nDepth) + ":" +
                        std::to_string(nPage));
    }
    return lines;
}

}

class DocumentFactsTest : public MuPdfTest {};

TEST_F(DocumentFactsTest, TheOutlineComesInItsOrderWithDepthsAndGoals) {
    const auto pDoc = DocumentOf(
        3, "/Outlines " + Ref(0),
        {"<< /First " + Ref(1) + " >>",
         "<< /Title (One) /Dest [0 /Fit] /Count 1 /F 3 /C [1 0 .5] /First " + Ref(2) + " /Next " +
             Ref(3) + " >>",
         "<< /Title <FEFF00DC006200650072> /A << /S /URI /URI (http://example.org/) >> >>",
         "<< /Title (Two) /A << /S /GoTo /D [2 /XYZ null 500 null] >> /Next 7 >>"});
    const auto entries = FactsOf(pDoc).GetOutline();
    EXPECT_EQ(Lines(entries, *pDoc), (std::vector<std::string>{"One:0:0",
                                                               "\u00DC"
                                                               "ber:1:-1",
                                                               "Two:0:2"}));
    EXPECT_TRUE(entries[0].bOpen && entries[0].bBold && entries[0].bItalic);
    EXPECT_EQ(entries[0].nColor, 0xFF0080U);
    EXPECT_EQ(entries[1].strUri, "http://example.org/");
    EXPECT_FALSE(entries[2].nColor || entries[2].bOpen);
}

TEST_F(DocumentFactsTest, AnOutlineThatRunsInCirclesEnds) {
    const std::string strSelf = "<< /Title (a) /First " + Ref(1) + " /Next " + Ref(1) + " >>";
    EXPECT_EQ(
        FactsOf(DocumentOf(1, "/Outlines " + Ref(0), {"<< /First " + Ref(1) + " >>", strSelf}))
            .GetOutline()
            .size(),
        1U);
    std::vector<std::string> chain = {"<< /First " + Ref(1) + " >>"};
    for (int i = 1; i <= 500; ++i) { // deeper than any reader goes
        chain.push_back("<< /Title (x) /First " + Ref(i + 1) + " /Parent " + Ref(i - 1) + " >>");
    }
    const auto entries = FactsOf(DocumentOf(1, "/Outlines " + Ref(0), chain)).GetOutline();
    EXPECT_GE(entries.size(), 60U);
    EXPECT_LE(entries.back().nDepth, 64);
    EXPECT_TRUE(FactsOf(DocumentOf(1, "/Outlines 7", {})).GetOutline().empty());
}

TEST_F(DocumentFactsTest, PagesAreCalledAsTheirLabelsSay) {
    const auto labels =
        FactsOf(DocumentOf(
                    40, "/PageLabels << /Kids [" + Ref(0) + " " + Ref(1) + " " + Ref(0) + "] >>",
                    {"<< /Nums [0 << /S /r >> 4 << /S /D >> 6 << /P (Plate ) >>] >>",
                     "<< /Nums [7 << /S /A /P (A-) /St 26 >> 9 << /S /R /St 1994 >> -3 << /S /D >> "
                     "10 (no label) 12 << /S /D /St 2147483647 >>] /Kids [" +
                         Ref(1) + "] >>"}))
            .GetPageLabels();
    EXPECT_TRUE(labels.SayMoreThanNumbers());
    const std::vector<std::string> expected = {"i",      "ii",  "iii",  "iv",      "1",     "2",
                                               "Plate ", "A-Z", "A-AA", "MCMXCIV", "MCMXCV"};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(labels.LabelOf(static_cast<std::int32_t>(i)), expected[i]);
    }
    EXPECT_EQ(labels.LabelOf(39), "2147483647"); // counts no further
    EXPECT_EQ(labels.Find("IV", 40), 3);
    EXPECT_EQ(labels.Find("a-aa", 40), 8);
    EXPECT_EQ(labels.Find("40", 40), std::nullopt);
    const pdf::PageLabels none = FactsOf(DocumentOf(2, "", {})).GetPageLabels();
    EXPECT_FALSE(none.SayMoreThanNumbers());
    EXPECT_EQ(none.LabelOf(1), "2");
    EXPECT_FALSE(FactsOf(DocumentOf(2, "/PageLabels << /Nums [0 << /S /D >>] >>", {}))
                     .GetPageLabels()
                     .SayMoreThanNumbers());
}

TEST_F(DocumentFactsTest, FontsAreFoundOnceAlsoWithinWhatThePageDraws) {
    const auto pDoc =
        DocumentOf(1, "/MarkInfo << /Marked true >>",
                   {"<< /Type /Font /Subtype /TrueType /BaseFont /ABCDEF+Serif /FontDescriptor << "
                    "/FontFile2 " +
                        Ref(3) + " >> >>",
                    "<< /Type /XObject /Subtype /Form /BBox [0 0 1 1] /Resources << /Font << /A " +
                        Ref(2) + " /B " + Ref(0) + " >> /XObject << /Self " + Ref(1) +
                        " >> >> /Length 0 >> stream\n\nendstream",
                    "<< /Type /Font /Subtype /Type0 /BaseFont /Sans /DescendantFonts [<< /Subtype "
                    "/CIDFontType2 >>] >>",
                    "<< /Length 0 >> stream\n\nendstream"},
                   "/Resources << /Font << /A " + Ref(0) + " /B " + Ref(0) + " >> /XObject << /X " +
                       Ref(1) + " >> >>");
    const auto fonts = FactsOf(pDoc).GetFonts(0);
    EXPECT_EQ(fonts, (std::vector<pdf::FontFact>{{"Sans", "CIDFontType2", false, false},
                                                 {"Serif", "TrueType", true, true}}));
    EXPECT_EQ(EngineCodeOf([&] { FactsOf(pDoc).GetFonts(1); }), common::ErrorCode::e_ErrParam);
    EXPECT_TRUE(FactsOf(pDoc).GetProperties().bTagged);
    EXPECT_FALSE(FactsOf(pDoc).GetProperties().strVersion.empty());
}

TEST_F(DocumentFactsTest, AttachedFilesAreListedAndGivenByTheirPlace) {
    const auto pDoc = DocumentOf(
        1, "/Names << /EmbeddedFiles << /Names [(a) " + Ref(0) + " (b) 7 (c) " + Ref(2) + "] >> >>",
        {"<< /Type /Filespec /F (x) /UF (n\\344me.txt) /Desc (words) /EF << /F " + Ref(1) +
             " >> >>",
         "<< /Type /EmbeddedFile /Subtype /text#2Fplain /Params << /Size 5 /ModDate "
         "(D:20200102030405Z) >> /Length 5 >> stream\nhello\nendstream",
         "<< /Type /Filespec /F (gone) /EF << /F 999 0 R >> >>"});
    const auto files = FactsOf(pDoc).GetAttachedFiles();
    ASSERT_FALSE(files.empty());
    EXPECT_EQ(files[0].strName, "n\u00E4me.txt");
    EXPECT_EQ(files[0].strDescription, "words");
    EXPECT_EQ(files[0].strMimeType, "text/plain");
    EXPECT_EQ(files[0].nSize, 5);
    EXPECT_EQ(files[0].nModified, 1577934245);
    const auto bytes = FactsOf(pDoc).LoadAttachedFile(0);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "hello");
    const auto nFiles = static_cast<std::int32_t>(files.size());
    for (const std::int32_t nFile : {-1, nFiles}) {
        EXPECT_EQ(EngineCodeOf([&] { FactsOf(pDoc).LoadAttachedFile(nFile); }),
                  common::ErrorCode::e_ErrParam);
    }
}

}
