// The reader's bookmarks, over the end of the program, a rename and a change.
#include <gtest/gtest.h>

#include <filesystem>

#include "component/Bookmarks.h"
#include "tests/qt/ViewFixture.h"
#include "widget/places/BookmarkModel.h"

namespace velko {
namespace {

using testing::RunUntil;
using vkit::Bookmark;
using vkit::BookmarkModel;
using vkit::ViewBookmarks;
using View = vkit::VelkoPdfView;

class BookmarksTest : public testing::ViewFixture {
protected:
    struct Reader {
        View view;
        ViewBookmarks* pBookmarks = new ViewBookmarks(view);
        bool Knows(std::size_t nCount) {
            return RunUntil([&] { return pBookmarks->List().size() == nCount; });
        }
    };
    std::unique_ptr<Reader> Open(const QString& strFile) {
        auto pReader = std::make_unique<Reader>();
        pReader->view.resize(500, 600);
        pReader->view.show();
        EXPECT_TRUE(OpenUntilSharp(pReader->view, strFile));
        return pReader;
    }
    static void PutAt(Reader& reader, int nPage, double dbY) {
        const std::size_t nBefore = reader.pBookmarks->List().size();
        reader.view.GotoPage(nPage);
        reader.view.ScrollBy(0.0, dbY);
        reader.pBookmarks->Toggle();
        EXPECT_TRUE(reader.Knows(nBefore + 1));
    }
};

TEST_F(BookmarksTest, TheyLeadBackAndOneAtThePlaceIsTakenAway) {
    const QString strFile = WritePages("a.pdf", 20);
    const auto pReader = Open(strFile);
    pReader->view.ZoomTo(1.5);
    PutAt(*pReader, 9, 200.0);
    const auto rcNine = pReader->view.Control()->GetPageScreenRect(9);
    PutAt(*pReader, 3, 0.0);
    EXPECT_EQ(pReader->pBookmarks->List()[0].nPage, 3) << "in the order of the document";
    const auto pOther = Open(strFile);
    ASSERT_TRUE(pOther->Knows(2)) << "another window";
    pReader->pBookmarks->Rename(0, "  the  start ");
    EXPECT_EQ(pOther->pBookmarks->List()[0].strName, "the start") << "at once";
    pReader->view.GotoPage(0);
    pReader->pBookmarks->Goto(1);
    ASSERT_TRUE(Settles(pReader->view));
    const auto rcNow = pReader->view.Control()->GetPageScreenRect(9);
    ASSERT_TRUE(rcNine && rcNow);
    EXPECT_NEAR(rcNow->dbOffsetY, rcNine->dbOffsetY, 1.5);
    EXPECT_TRUE(pReader->view.CanGoBack());
    pReader->pBookmarks->Toggle();
    EXPECT_TRUE(pReader->Knows(1));
    EXPECT_TRUE(pOther->Knows(1));
    BookmarkModel model(*pReader->pBookmarks, nullptr);
    EXPECT_TRUE(model.setData(model.index(0), "renamed", Qt::EditRole));
    EXPECT_EQ(model.index(0).data().toString(), "renamed");
    pReader->pBookmarks->Remove(0);
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(BookmarksTest, TheyHoldOverARenameAndAChangeAndACopyHasItsOwn) {
    const std::string strFile = WritePages("a.pdf", 5).toStdString();
    PutAt(*Open(QString::fromStdString(strFile)), 2, 50.0);
    const std::string strCopy = m_folder.filePath("copy.pdf").toStdString();
    std::filesystem::copy_file(strFile, strCopy);
    const auto fnCount = [&](const std::string& strPath) {
        const auto pReader = Open(QString::fromStdString(strPath));
        bool bRead = false;
        QObject::connect(pReader->pBookmarks, &ViewBookmarks::Changed, [&] { bRead = true; });
        pReader->pBookmarks->List();
        EXPECT_TRUE(RunUntil([&] { return bRead; }));
        return pReader->pBookmarks->List().size();
    };
    EXPECT_EQ(fnCount(strCopy), 0U) << "the first one is there yet";
    const std::string strNew = m_folder.filePath("new.pdf").toStdString();
    std::filesystem::rename(strFile, strNew);
    EXPECT_EQ(fnCount(strNew), 1U) << "the same file";
    EXPECT_EQ(fnCount(strCopy), 1U) << "the same bytes, of a file that is gone";
    WritePages("a.pdf", 6);
    EXPECT_EQ(fnCount(strFile), 1U) << "the same path";
}

TEST_F(BookmarksTest, TheyFollowTheirWordsIntoAnotherVersion) {
    const QString strFile = Write("a.pdf", testing::MakePdf(TextPages(12)));
    Bookmark before;
    {
        const auto pReader = Open(strFile);
        PutAt(*pReader, 2, 0.0);
        PutAt(*pReader, 6, 200.0);
        before = pReader->pBookmarks->List()[1];
    }
    auto pages = Joined(TextPages(3, 500), TextPages(12));
    pages[5] = {}; // where one stood, nothing is left
    Write("a.pdf", testing::MakePdf(pages));
    const auto pReader = Open(strFile);
    ASSERT_TRUE(pReader->Knows(2));
    ASSERT_TRUE(RunUntil([&] { return pReader->pBookmarks->List()[1].nPage == 9; }));
    EXPECT_EQ(pReader->pBookmarks->List()[0].nPage, 2) << "its words are gone";
    EXPECT_EQ(pReader->pBookmarks->List()[1].dbY, before.dbY);
    const auto pLater = Open(strFile);
    ASSERT_TRUE(pLater->Knows(2));
    EXPECT_EQ(pLater->pBookmarks->List()[1].nPage, 9) << "kept so";
}

TEST_F(BookmarksTest, DocumentsUsedLongAgoGo) {
    const auto fnIdentity = [](std::size_t n) {
        vkit::DocIdentity identity;
        identity.strPath = "/" + std::to_string(n);
        return identity;
    };
    const auto fnFind = [&](std::size_t n) {
        return vkit::FindBookmarks(fnIdentity(n), [](const std::string&) { return true; });
    };
    for (std::size_t n = 0; n <= vkit::kMostDocuments; ++n) {
        vkit::StoreBookmarks({{}, fnIdentity(n), {{"here", static_cast<int>(n), 1.5, 2.5}}});
    }
    EXPECT_TRUE(fnFind(0).bookmarks.empty());
    const vkit::KeptBookmarks kept = fnFind(vkit::kMostDocuments);
    ASSERT_EQ(kept.bookmarks.size(), 1U);
    EXPECT_EQ(kept.bookmarks[0],
              (Bookmark{"here", static_cast<int>(vkit::kMostDocuments), 1.5, 2.5}));
    vkit::StoreBookmarks({kept.strKey, kept.document, {}});
    EXPECT_TRUE(fnFind(vkit::kMostDocuments).bookmarks.empty());
}

}
}
