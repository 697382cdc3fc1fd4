// The view of a document, saved by a host and found again at the next open.

#include "component/KeptView.h"
#include "tests/control/ControlFixture.h"

namespace velko::testing {
namespace {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;

class ViewStateTest : public ControlFixture {
protected:
    void Keep(const PropertySet& values, const std::string& strName = "a.pdf") {
        const std::string strPath = folder / strName;
        const auto strToken = host.Data().MostRecentlyUsedList()->Add(strPath, strPath);
        host.Data().LocalSettings()->Values()->Insert(
            strToken,
            PropertyValue::Create<PropertyValue::Composite>(std::make_shared<PropertySet>(values)));
    }
    static PropertySet Saved(bool bRotated) {
        PropertySet values;
        values.Insert("Scale", PropertyValue::Create<double>(2.5));
        values.Insert("OffsetX", PropertyValue::Create<double>(-10.0));
        values.Insert("OffsetY", PropertyValue::Create<double>(-200.0));
        values.Insert("RotatedScreen", PropertyValue::Create<bool>(bRotated));
        values.Insert("ViewState", PropertyValue::Create<std::int32_t>(1));
        values.Insert("CurrentPageIndex", PropertyValue::Create<std::int32_t>(3));
        values.Insert("Rotate", PropertyValue::Create<std::int32_t>(1));
        values.Insert("IsSDToLocalFile", PropertyValue::Create<bool>(true));
        values.Insert("ReflowScale", PropertyValue::Create<double>(1.5));
        values.Insert("IsReflowShowPicture", PropertyValue::Create<bool>(false));
        return values;
    }
};

TEST_F(ViewStateTest, WhatIsWrittenOfAFile) {
    pEngine->SetEncryptionType(2);
    Show(1000, 800);
    Open();
    const auto pViewer = UseScriptedViewer();
    pViewer->fScale = 1.5F;
    pViewer->nRotate = 3;
    pViewer->pPosition = std::make_shared<vkit::PagePosition>();
    pViewer->pPosition->nPageIndex = 2;
    pViewer->pPosition->dbOffsetX = 5.0;
    pViewer->pPosition->dbOffsetY = -6.0;
    PropertySet values;
    pControl->SaveViewState(values);
    EXPECT_EQ(values.Lookup("FileName").Get<std::string>(), "a.pdf");
    EXPECT_GT(values.Lookup("FileTime").Get<std::int64_t>(), 133'000'000'000'000'000); // past 2022
    EXPECT_EQ(values.Lookup("FileSize").Get<std::uint32_t>(), 1000U);
    EXPECT_EQ(values.Lookup("PasswordProtected").Get<std::string>(), "1");
    EXPECT_EQ(values.Lookup("Rotate").Get<std::int32_t>(), 3);
    EXPECT_EQ(values.Lookup("OffsetX").Get<double>(), 77.0); // the viewer has the last word
    EXPECT_EQ(values.Size(), 11U);
    const auto state = vkit::PDFViewerState::ReadFrom(values, true);
    EXPECT_EQ(state.ViewState, 1);
    EXPECT_EQ(state.Scale, 1.5);
    EXPECT_EQ(state.CurrentPageIndex, 2);
    EXPECT_EQ(state.OffsetY, -6.0);

    pControl->SetPDFDoc(pEngine->MakeLoadedDoc()); // has no file
    pControl->Arrange({800, 800});                 // a square is not rotated
    PropertySet others;
    pControl->SaveViewState(others);
    EXPECT_EQ(others.Lookup("FileName").Get<std::string>(), "");
    EXPECT_FALSE(others.HasKey("FileSize") || others.HasKey("PasswordProtected"));
    EXPECT_FALSE(others.Lookup("RotatedScreen").Get<bool>());
}

TEST_F(ViewStateTest, TheSameScreenBringsAllBackATurnedOnePageAndModeOnly) {
    struct Case {
        bool bSavedWide;
        float fWidth;
        bool bAll;
    };
    for (const Case& test : {Case{true, 1000, true}, {false, 1000, false}, {false, 800, true}}) {
        SCOPED_TRACE(test.fWidth);
        Keep(Saved(test.bSavedWide));
        Show(test.fWidth, 800);
        Open();
        const auto pState = Parts().ViewerState();
        EXPECT_EQ(pState->Scale, test.bAll ? 2.5 : 1.0);
        EXPECT_EQ(pState->OffsetX, test.bAll ? -10.0 : 0.0);
        EXPECT_EQ(pState->OffsetY, test.bAll ? -200.0 : 0.0);
        EXPECT_EQ(pState->CurrentPageIndex, 3);
        EXPECT_EQ(pState->Rotate, 1);
        EXPECT_TRUE(pState->IsSDToLocalFile);
        EXPECT_EQ(pState->ReflowScale, 1.5);
        EXPECT_FALSE(pState->IsReflowShowPicture);
        EXPECT_EQ(pControl->GetCurrentPageIndex(), 3);
        EXPECT_EQ(pControl->GetRotate(), 0); // a saved rotation is not brought back
    }
}

TEST_F(ViewStateTest, NothingSavedIsTheDefaults) {
    Keep(Saved(true), "other.pdf");
    const auto pList = host.Data().MostRecentlyUsedList();
    pList->Add(folder / "b.pdf", folder / "b.pdf"); // an entry without a set
    host.Data().LocalSettings()->Values()->Insert(pList->Add(folder / "c.pdf", folder / "c.pdf"),
                                                  PropertyValue::Create<bool>(true));
    Show();
    for (const char* szName : {"a.pdf", "b.pdf", "c.pdf"}) {
        EXPECT_EQ(Open(szName), ErrorCode::e_ErrSuccess);
        EXPECT_EQ(Parts().ViewerState()->CurrentPageIndex, 0);
        EXPECT_EQ(Parts().ViewerState()->ViewState, 1);
    }
}

TEST_F(ViewStateTest, AForeignTypeFailsTheOpenSaveForTwoKeys) {
    Show();
    auto values = Saved(true);
    values.Insert("ReflowScale", PropertyValue::Create<std::int32_t>(9));
    values.Insert("IsReflowShowPicture", PropertyValue::Create<double>(0.0));
    Keep(values);
    EXPECT_EQ(Open(), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(Parts().ViewerState()->ReflowScale, 2.5);
    EXPECT_TRUE(Parts().ViewerState()->IsReflowShowPicture);
    EXPECT_FALSE(vkit::ForgetUnreadableView(folder / "a.pdf"));
    for (const char* szKey : {"Scale", "OffsetY", "RotatedScreen", "ViewState", "CurrentPageIndex",
                              "Rotate", "IsSDToLocalFile"}) {
        auto wrong = Saved(true);
        wrong.Insert(szKey, PropertyValue::Create<std::string>("x"));
        Keep(wrong);
        EXPECT_THROW(Open(), Platform::InvalidCastException) << szKey;
    }
    auto turned = Saved(false); // of which the scale is not even looked at
    turned.Insert("Scale", PropertyValue::Create<std::string>("x"));
    Keep(turned);
    EXPECT_TRUE(vkit::ForgetUnreadableView(folder / "a.pdf"));
    EXPECT_EQ(Open(), ErrorCode::e_ErrSuccess);
    EXPECT_EQ(Parts().ViewerState()->CurrentPageIndex, 0);
    EXPECT_EQ(vkit::RecentFiles(), Strings{folder / "a.pdf"}); // it stays in the list
    EXPECT_FALSE(vkit::ForgetUnreadableView(folder / "a.pdf"));
}

// Names are bytes, and the clock of a machine may be put back.
TEST_F(ViewStateTest, AKeptViewIsFoundByTheBytesOfItsNameAndTheLastOneCounts) {
    Show(1000, 800);
    const std::string strName = "no text \xFF\xFE\xE9 '\n%2F.pdf";
    Open(strName);
    auto view = vkit::TakeView(*pControl);
    ASSERT_TRUE(view);
    vkit::StoreView(*view);
    auto pLater = std::make_shared<PropertySet>(*view->pValues);
    pLater->Insert("FileTime", PropertyValue::Create<std::int64_t>(1));
    pLater->Insert("CurrentPageIndex", PropertyValue::Create<std::int32_t>(4));
    vkit::StoreView({view->strPath, pLater});
    host.Data().Flush();
    Windows::Storage::ApplicationData::SetCurrent(
        Windows::Storage::OpenApplicationData(host.Data().LocalFolder()));
    EXPECT_EQ(vkit::RecentFiles(), Strings{folder / strName});
    const auto found = vkit::FindView(folder / strName);
    ASSERT_TRUE(found);
    EXPECT_TRUE(vkit::IsSamePlace(*found, {view->strPath, pLater}));
    EXPECT_FALSE(vkit::FindView(folder / "no text"));
    Open(strName);
    EXPECT_EQ(pControl->GetCurrentPageIndex(), 4);
}

TEST_F(ViewStateTest, Mode0IsSinglePageAndAPageThatIsGoneTheLast) {
    auto values = Saved(true);
    values.Insert("ViewState", PropertyValue::Create<std::int32_t>(0));
    Keep(values);
    Show();
    Open();
    EXPECT_EQ(pControl->GetPageLayoutMode(), 2);
    values = Saved(true);
    values.Insert("CurrentPageIndex", PropertyValue::Create<std::int32_t>(400));
    Keep(values);
    Open();
    EXPECT_FALSE(pControl->GetVisiblePages().empty());
    EXPECT_EQ(pControl->GetVisiblePages().back(), 4);
}

}
}
