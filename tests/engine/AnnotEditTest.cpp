// Annotations that are made, changed, taken out and put back.

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>

#include "document/engine/AnnotClasses.h"
#include "engines/mupdf/Allocator.h"
#include "tests/engine/EditFixture.h"
#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

using common::ErrorCode;
using common::vxbase::PointF;
using common::vxbase::RectF;
using pdf::AnnotRecord;
using pdf::IAnnotEditor;

namespace {

const std::vector<std::int32_t> kMadeKinds = {kNote,      kFreeText, kLine, kSquare, 6,
                                              kHighlight, 10,        11,    12,      kInk};

// The box around where two pictures differ, in pixels.
RectF Changed(common::Bitmap& one, common::Bitmap& two) {
    RectF rc{1e9F, 1e9F, -1.0F, -1.0F};
    for (std::int32_t y = 0; y < one.GetHeight(); ++y) {
        for (std::int32_t x = 0; x < one.GetWidth(); ++x) {
            if (PixelAt(one, x, y) != PixelAt(two, x, y)) {
                rc = {std::min(rc.Left, static_cast<float>(x)),
                      std::min(rc.Bottom, static_cast<float>(y)),
                      std::max(rc.Right, static_cast<float>(x + 1)),
                      std::max(rc.Top, static_cast<float>(y + 1))};
            }
        }
    }
    return rc;
}

}

class AnnotEditTest : public MuPdfTest {};

TEST_F(AnnotEditTest, EachKindSaysWhatItWasMadeOfAndDrawsItWhereItIs) {
    for (const int nRotate : {0, 90, 180, 270}) {
        PdfPage page;
        page.mediaBox = {-20, -10, 220, 190};
        page.cropBox = {{10, 20, 180, 150}};
        page.nRotate = nRotate;
        page.dbUserUnit = nRotate == 90 ? 2.0 : 1.0;
        const Opened opened(MakePdf({page}));
        for (const std::int32_t nType : kMadeKinds) {
            SCOPED_TRACE(std::to_string(nType) + " turned by " + std::to_string(nRotate));
            const auto pBefore = opened.Picture();
            const AnnotRecord record = RecordOf(nType);
            const pdf::AnnotId nId = opened.Editor().AddAnnot(0, record);
            const auto listed = opened.Editor().ListAnnots(0);
            ASSERT_EQ(listed.size(), 1U);
            EXPECT_EQ(listed[0].nId, nId);
            AnnotRecord wanted = record;
            if (nType == kNote || nType == kFreeText) {
                wanted.nFillColor.reset();
            }
            EXPECT_EQ(Told(listed[0].record), Told(wanted));
            const auto pPage = opened.pDoc->GetPage(0);
            ASSERT_EQ(pPage->GetAnnotCount(), 1);
            EXPECT_EQ(pPage->GetAnnot(0)->GetType(), nType);

            // Drawn within its area, and over most of it.
            const auto pAfter = opened.Picture();
            const RectF rcDrawn = Changed(*pBefore, *pAfter);
            const RectF rcArea =
                pPage->GetDisplayMatrix(0, 0, pAfter->GetWidth(), pAfter->GetHeight(), 0)
                    .TransformRect(listed[0].record.rcArea);
            constexpr float kSlack = 1.5F;
            EXPECT_GE(rcDrawn.Left, rcArea.Left - kSlack);
            EXPECT_GE(rcDrawn.Bottom, rcArea.Bottom - kSlack);
            EXPECT_LE(rcDrawn.Right, rcArea.Right + kSlack);
            EXPECT_LE(rcDrawn.Top, rcArea.Top + kSlack);
            EXPECT_GT((rcDrawn.Right - rcDrawn.Left) / (rcArea.Right - rcArea.Left), 0.6F);
            EXPECT_GT((rcDrawn.Top - rcDrawn.Bottom) / (rcArea.Top - rcArea.Bottom), 0.6F);

            opened.Editor().RemoveAnnot(0, nId);
            EXPECT_EQ(Compare(*pBefore, *opened.Picture()).nPixels, 0);
        }
    }
}

TEST_F(AnnotEditTest, WhatIsTakenOutComesBackAsItWas) {
    const Opened opened(AnnotatedDocument());
    IAnnotEditor& editor = opened.Editor();
    const std::string strList = opened.List();
    const auto pPicture = opened.Picture();
    const auto pSecond = opened.Picture(1);
    const auto annots = editor.ListAnnots(0);
    ASSERT_EQ(annots.size(), 5U);
    for (const std::size_t nFirst : {0U, 1U, 3U, 4U}) {
        for (const std::size_t nThen : {0U, 1U, 3U, 4U}) {
            if (nThen == nFirst) {
                continue;
            }
            editor.RemoveAnnot(0, annots[nFirst].nId);
            editor.RemoveAnnot(0, annots[nThen].nId);
            const std::size_t nPopups = nFirst == 0 || nThen == 0 ? 1 : 0;
            EXPECT_EQ(editor.ListAnnots(0).size(), 3 - nPopups);
            EXPECT_EQ(opened.pDoc->GetPage(0)->GetAnnotCount(),
                      static_cast<std::int32_t>(4 - nPopups))
                << "with the entry that is none";
            EXPECT_EQ(EngineCodeOf([&] { editor.RemoveAnnot(0, annots[nThen].nId); }),
                      ErrorCode::e_ErrParam);
            EXPECT_NE(Compare(*pPicture, *opened.Picture()).nPixels, 0);
            EXPECT_EQ(Compare(*pSecond, *opened.Picture(1)).nPixels, 0);
            editor.RestoreAnnot(0, annots[nFirst].nId);
            editor.RestoreAnnot(0, annots[nThen].nId);
            EXPECT_EQ(opened.List(), strList);
            EXPECT_EQ(Compare(*pPicture, *opened.Picture()).nPixels, 0);
        }
    }
    EXPECT_EQ(EngineCodeOf([&] { editor.RestoreAnnot(0, annots[0].nId); }), ErrorCode::e_ErrParam);
}

TEST_F(AnnotEditTest, AChangeKeepsWhatTheRecordDoesNotSay) {
    const Opened opened(AnnotatedDocument());
    IAnnotEditor& editor = opened.Editor();
    const auto pPicture = opened.Picture();
    const auto annots = editor.ListAnnots(0);

    AnnotRecord note = annots[0].record;
    EXPECT_EQ(note.nColor, 0x000000U) << "of a printing colour";
    note.strContents = "second";
    editor.ChangeAnnot(0, annots[0].nId, note);
    EXPECT_EQ(editor.ListAnnots(0)[0].record.strContents, "second");
    EXPECT_EQ(Compare(*pPicture, *opened.Picture()).nPixels, 0) << "its own appearance is kept";

    AnnotRecord line = annots[1].record;
    EXPECT_EQ(line.fLineWidth, 3.0F);
    line.nColor = 0x00FF00;
    editor.ChangeAnnot(0, annots[1].nId, line);
    const auto pGreen = opened.Picture();
    const RectF rc = Changed(*pPicture, *pGreen);
    EXPECT_GT(rc.Right, 98.0F) << "the arrow at its end stays";
    editor.ChangeAnnot(0, annots[1].nId, annots[1].record);
    editor.ChangeAnnot(0, annots[0].nId, annots[0].record);
    EXPECT_EQ(Compare(*pPicture, *opened.Picture()).nPixels, 0);
    EXPECT_EQ(editor.ListAnnots(0)[1].nId, annots[1].nId);
    EXPECT_EQ(editor.Revision(), 4U);

    const auto pSecond = opened.Picture(1);
    AnnotRecord square = annots[4].record;
    square.nColor = 0x00FF00;
    editor.ChangeAnnot(0, annots[4].nId, square);
    EXPECT_NE(Compare(*pSecond, *opened.Picture(1)).nPixels, 0) << "it is on both pages";
}

TEST_F(AnnotEditTest, WhatCannotBeMadeChangesNothing) {
    const Opened opened(AnnotatedDocument());
    IAnnotEditor& editor = opened.Editor();
    const std::string strList = opened.List();
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    using Spoil = std::function<void(AnnotRecord&)>;
    const std::vector<std::pair<std::int32_t, Spoil>> cases = {
        {kHighlight, [](AnnotRecord& r) { r.quads.clear(); }},
        {kHighlight, [](AnnotRecord& r) { r.quads[0].ptTopLeft.X = kNan; }},
        {kHighlight, [](AnnotRecord& r) { r.quads.resize(1'000'000); }},
        {kHighlight, [](AnnotRecord& r) { r.fOpacity = 1.5F; }},
        {kHighlight, [](AnnotRecord& r) { r.nColor = 0x1000000; }},
        {kInk, [](AnnotRecord& r) { r.strokes.clear(); }},
        {kInk, [](AnnotRecord& r) { r.strokes.emplace_back(); }},
        {kInk,
         [](AnnotRecord& r) {
             r.strokes.resize(1'000'000, {{1, 1}});
         }},
        {kInk, [](AnnotRecord& r) { r.strokes[0].resize(1'000'000); }},
        {kInk, [](AnnotRecord& r) { r.fLineWidth = kInfinity; }},
        {kLine, [](AnnotRecord& r) { r.ptEnd.Y = kInfinity; }},
        {kSquare, [](AnnotRecord& r) { r.rcArea.Right = r.rcArea.Left; }},
        {kFreeText, [](AnnotRecord& r) { r.fFontSize = 0.0F; }},
        {kFreeText, [](AnnotRecord& r) { r.strContents.assign(10'000'000, 'a'); }},
        {kNote, [](AnnotRecord& r) { r.strAuthor = std::string("a\0b", 3); }},
        {kNote, [](AnnotRecord& r) { r.nModified = std::numeric_limits<std::int64_t>::max(); }},
        {kNote, [](AnnotRecord& r) { r.rcArea.Top = 1.0E30F; }},
    };
    for (std::size_t i = 0; i < cases.size(); ++i) {
        AnnotRecord record = RecordOf(cases[i].first);
        cases[i].second(record);
        EXPECT_EQ(EngineCodeOf([&] { editor.AddAnnot(0, record); }), ErrorCode::e_ErrParam) << i;
    }
    const auto fnCode = [&](std::int32_t nType, std::int32_t nPage) {
        return EngineCodeOf([&] { editor.AddAnnot(nPage, RecordOf(nType)); });
    };
    EXPECT_EQ(fnCode(2, 0), ErrorCode::e_ErrUnsupported);
    EXPECT_EQ(fnCode(13, 0), ErrorCode::e_ErrUnsupported);
    EXPECT_EQ(fnCode(kNote, 2), ErrorCode::e_ErrParam);
    EXPECT_EQ(fnCode(kNote, -1), ErrorCode::e_ErrParam);
    EXPECT_EQ(EngineCodeOf([&] { editor.ChangeAnnot(0, 4711, RecordOf(kNote)); }),
              ErrorCode::e_ErrParam);
    EXPECT_EQ(editor.Revision(), 0U);
    EXPECT_EQ(opened.List(), strList);
    const auto pLocked = CreateDoc(std::make_shared<MemoryReader>(AnnotatedDocument()));
    EXPECT_EQ(EngineCodeOf([&] { dynamic_cast<IAnnotEditor&>(*pLocked).ListAnnots(0); }),
              ErrorCode::e_ErrNotLoaded);
}

namespace {

// Some edits in a row; an exception of the first that fails passes through, and the list
// in which all that came before it are follows.
int EditInTurn(const Opened& opened, std::vector<std::string>& lists) {
    IAnnotEditor& editor = opened.Editor();
    const auto annots = editor.ListAnnots(0);
    lists.push_back(opened.List());
    AnnotRecord line = annots[1].record;
    line.nColor = 0x0000FF;
    const std::vector<std::function<void()>> edits = {
        [&] { editor.AddAnnot(0, RecordOf(kHighlight)); },
        [&] { editor.ChangeAnnot(0, annots[1].nId, line); },
        [&] { editor.RemoveAnnot(0, annots[0].nId); },
        [&] { editor.AddAnnot(0, RecordOf(kFreeText)); },
        [&] { editor.RestoreAnnot(0, annots[0].nId); }};
    for (const auto& fnEdit : edits) {
        fnEdit();
        lists.push_back(opened.List());
    }
    return static_cast<int>(edits.size());
}

}

// After any fault the document is as after the last edit that was told as done, in its
// list and on its page; so it is when its file had to be opened anew.
TEST_F(AnnotEditTest, AnEditThatFailsLeavesThoseBefore) {
    const std::string strBytes = AnnotatedDocument() + std::string(100'000, '%');
    std::vector<std::string> lists;
    const Opened whole(strBytes);
    const int nEdits = EditInTurn(whole, lists);
    const auto pWanted = whole.Picture();
    const auto fnSurvives = [&](const Opened& opened, const std::function<void()>& fnFault,
                                const std::function<void()>& fnMend) {
        std::vector<std::string> got;
        fnFault();
        const ErrorCode eCode = EngineCodeOf([&] { EditInTurn(opened, got); });
        fnMend();
        const auto nDone = opened.Editor().Revision();
        EXPECT_LE(nDone, static_cast<std::uint64_t>(nEdits));
        EXPECT_EQ(opened.List(), lists[nDone]);
        if (eCode == ErrorCode::e_ErrSuccess) {
            EXPECT_EQ(Compare(*pWanted, *opened.Picture()).nPixels, 0);
        }
        return eCode;
    };
    int nFailed = 0;
    bool bStruck = true;
    for (std::uint64_t nCall = 1; bStruck; nCall += 1 + nCall / 50) {
        ASSERT_LT(nCall, 1'000'000U);
        const Opened opened(strBytes);
        const ErrorCode eCode = fnSurvives(
            opened, [&] { engines::mupdf::RefuseAllocation(nCall); },
            [&] { bStruck = engines::mupdf::RefuseAllocation(0); });
        nFailed += eCode != ErrorCode::e_ErrSuccess ? 1 : 0;
        EXPECT_TRUE(eCode == ErrorCode::e_ErrSuccess || eCode == ErrorCode::e_ErrOutOfMemory)
            << nCall << ": " << common::ErrorCodeName(eCode);
    }
    EXPECT_GT(nFailed, 10);
}

TEST_F(AnnotEditTest, EditsOutliveTheFileThatTheyWereMadeIn) {
    PdfPage page;
    page.strContent.assign(60'000, ' '); // so that a page needs reads of its own
    page.annots = {"<< /Type /Annot /Subtype /Square /Rect [10 10 90 90] /C [1 0 0] >>"};
    const Opened opened(MakePdf(std::vector<PdfPage>(3, page)));
    IAnnotEditor& editor = opened.Editor();
    editor.AddAnnot(0, RecordOf(kHighlight));
    editor.RemoveAnnot(0, editor.ListAnnots(0)[0].nId);
    AnnotRecord square = editor.ListAnnots(1)[0].record;
    square.nColor = 0x00FF00;
    editor.ChangeAnnot(1, editor.ListAnnots(1)[0].nId, square);
    const std::string strLists = opened.List(0) + opened.List(1);
    const auto pPicture = opened.Picture();

    opened.pReader->FailRead(1, true);
    EXPECT_EQ(EngineCodeOf([&] { opened.Picture(2); }), ErrorCode::e_ErrFile);
    EXPECT_EQ(EngineCodeOf([&] { editor.ListAnnots(0); }), ErrorCode::e_ErrFile);
    EXPECT_EQ(EngineCodeOf([&] { editor.AddAnnot(0, RecordOf(kInk)); }), ErrorCode::e_ErrFile);
    EXPECT_EQ(editor.Revision(), 3U);
    opened.pReader->StopFailing();
    EXPECT_EQ(opened.List(0) + opened.List(1), strLists);
    EXPECT_EQ(Compare(*pPicture, *opened.Picture()).nPixels, 0);
}

TEST_F(AnnotEditTest, PagesThatAreHeldSeeEdits) {
    const Opened opened(AnnotatedDocument());
    IAnnotEditor& editor = opened.Editor();
    const auto pPage = opened.pDoc->GetPage(0);
    const auto pBitmap = CreateBitmap(160, 100);
    const auto pRenderer = CreateRenderer(pBitmap);
    const auto matrix = pPage->GetDisplayMatrix(0, 0, 160, 100, 0);
    ASSERT_EQ(pPage->GetAnnotCount(), 6);
    const auto pNote = pPage->GetAnnot(0);
    const auto pStamp = pPage->GetAnnot(4);
    editor.RemoveAnnot(0, editor.ListAnnots(0)[0].nId);
    EXPECT_EQ(pPage->GetAnnotCount(), 4);
    EXPECT_FALSE(pPage->GetAnnot(5)) << "it was told that there is one";
    EXPECT_FALSE(pRenderer->RenderAnnot(pNote, matrix));
    EXPECT_TRUE(pRenderer->RenderAnnot(pStamp, matrix)) << "whatever its place is now";
    EXPECT_EQ(PixelAt(*pBitmap, 20, 70), 0xFF0000FFU);
    EXPECT_EQ(EngineCodeOf([&] { pPage->GetAnnot(6); }), ErrorCode::e_ErrParam);
    editor.AddAnnot(0, RecordOf(kNote));
    EXPECT_EQ(pPage->GetAnnot(4)->GetType(), kNote);
}

TEST_F(AnnotEditTest, ATypedObjectStandsForItsAnnotation) {
    const Opened opened(AnnotatedDocument());
    const auto pPage = opened.pDoc->GetPage(0);
    const auto pStamp = pPage->GetAnnot(4);
    const auto fnFactory = [](std::int32_t nType) {
        return Platform::GetActivationFactory<pdf::IAnnotFactory>(pdf::AnnotClassOf(nType));
    };
    for (const pdf::AnnotClass& annotClass : pdf::kAnnotClasses) {
        EXPECT_EQ(EngineCodeOf([&] { fnFactory(annotClass.nType)->Create(pStamp); }),
                  annotClass.nType == 13 ? ErrorCode::e_ErrSuccess : ErrorCode::e_ErrInvalidType);
    }
    EXPECT_EQ(EngineCodeOf([&] { fnFactory(13)->Create(nullptr); }), ErrorCode::e_ErrParam);
    const auto pTyped = fnFactory(13)->Create(pStamp);
    EXPECT_EQ(pTyped->GetType(), 13);
    const auto pBitmap = CreateBitmap(160, 100);
    const auto matrix = pPage->GetDisplayMatrix(0, 0, 160, 100, 0);
    EXPECT_TRUE(CreateRenderer(pBitmap)->RenderAnnot(pTyped, matrix));
    EXPECT_EQ(PixelAt(*pBitmap, 20, 70), 0xFF0000FFU);
    const auto& description = dynamic_cast<const pdf::IAnnotDescription&>(*pTyped);
    const pdf::ListedAnnot listed = description.Describe();
    EXPECT_EQ(listed.record.rcArea.Right, 30.0F);
    opened.Editor().RemoveAnnot(0, listed.nId);
    EXPECT_EQ(EngineCodeOf([&] { description.Describe(); }), ErrorCode::e_ErrNotFound);
}

TEST_F(AnnotEditTest, RendersGoOnWhileEditsComeAndGo) {
    const Opened opened(AnnotatedDocument());
    std::atomic<bool> bEnd = false;
    std::atomic<int> nFailed = 0;
    std::atomic<int> nDrawn = 0;
    std::thread renderer([&] {
        while (!bEnd) {
            nFailed += EngineCodeOf([&] { opened.Picture(); }) != ErrorCode::e_ErrSuccess ? 1 : 0;
            ++nDrawn;
        }
    });
    IAnnotEditor& editor = opened.Editor();
    for (int i = 0; i < 100 || nDrawn < 20; ++i) {
        const pdf::AnnotId nId = editor.AddAnnot(0, RecordOf(kMadeKinds[i % kMadeKinds.size()]));
        editor.RemoveAnnot(0, editor.ListAnnots(0)[0].nId);
        editor.RestoreAnnot(0, 11);
        editor.RemoveAnnot(0, nId);
    }
    bEnd = true;
    renderer.join();
    EXPECT_EQ(nFailed, 0);
    EXPECT_EQ(Compare(*opened.Picture(), *Opened(AnnotatedDocument()).Picture()).nPixels, 0);
}

}
