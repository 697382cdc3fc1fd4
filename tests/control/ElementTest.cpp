// The element tree that controls stand in.

#include <gtest/gtest.h>

#include <stdexcept>

#include "platform/ui/Controls.h"
#include "platform/ui/SwapChainPanel.h"

namespace velko::testing {
namespace {

using Strings = std::vector<std::string>;
using namespace Windows::UI::Xaml;
using Controls::Grid;
using Controls::SwapChainPanel;

class ElementTest : public ::testing::Test {
protected:
    template <class T = Grid>
    std::shared_ptr<T> Make(const std::string& strName) {
        auto pElement = std::make_shared<T>();
        pElement->Name(strName);
        pElement->Loaded.add([this, strName] { log.push_back(strName + " loaded"); });
        pElement->Unloaded.add([this, strName] { log.push_back(strName + " unloaded"); });
        pElement->SizeChanged.add([this, strName](const SizeChangedEventArgs& args) {
            log.push_back(strName + " " +
                          std::to_string(static_cast<int>(args.PreviousSize.Width)) + "->" +
                          std::to_string(static_cast<int>(args.NewSize.Width)));
        });
        return pElement;
    }
    Strings log;
};

TEST_F(ElementTest, SizesAreInForceBeforeAnybodyHears) {
    const auto pRoot = Make("root");
    const auto pChild = Make("child");
    pRoot->AppendChild(pChild);
    double dbSeen = 0.0;
    pRoot->SizeChanged.add([&](const auto&) { dbSeen = pChild->ActualWidth(); });
    pRoot->Arrange({10, 20});
    EXPECT_EQ(dbSeen, 10.0);
    EXPECT_EQ(log, (Strings{"root 0->10", "child 0->10"}));
    log.clear();
    pRoot->Arrange({10, 20});
    EXPECT_TRUE(log.empty());
    EXPECT_THROW(pRoot->Arrange({-1, 0}), Platform::InvalidArgumentException);
    EXPECT_EQ(pRoot->ActualWidth(), 10.0);
    const auto pLate = Make("late");
    pRoot->AppendChild(pLate);
    EXPECT_EQ(log, (Strings{"late 0->10"}));
}

TEST_F(ElementTest, AHandlerThatArrangesAnewLeavesNoStaleEvent) {
    const auto pRoot = Make("root");
    const auto pChild = Make("child");
    pRoot->AppendChild(pChild);
    bool bDone = false;
    pRoot->SizeChanged.add([&](const auto&) {
        if (!std::exchange(bDone, true)) {
            pRoot->Arrange({30, 30});
        }
    });
    pRoot->Arrange({10, 10});
    EXPECT_EQ(log, (Strings{"root 0->10", "root 10->30", "child 10->30"}));
}

TEST_F(ElementTest, AFailingHandlerKeepsNoOtherElementFromHearing) {
    const auto pRoot = std::make_shared<Grid>();
    pRoot->SizeChanged.add([](const auto&) { throw std::runtime_error("host"); });
    pRoot->Loaded.add([] { throw std::runtime_error("host"); });
    const auto pChild = Make("child");
    pRoot->AppendChild(pChild);
    EXPECT_THROW(pRoot->Arrange({5, 5}), std::runtime_error);
    EXPECT_THROW(pRoot->RaiseLoaded(), std::runtime_error);
    EXPECT_EQ(log, (Strings{"child 0->5", "child loaded"}));
    EXPECT_TRUE(pRoot->IsLoaded());
}

TEST_F(ElementTest, LoadingGoesUpAndUnloadingDown) {
    const auto pRoot = Make("root");
    const auto pChild = Make("child");
    pRoot->AppendChild(pChild);
    pRoot->RaiseLoaded();
    pRoot->RaiseLoaded();
    const auto pLate = Make("late");
    pRoot->AppendChild(pLate);
    pRoot->RemoveChild(pLate);
    EXPECT_EQ(pLate->Parent(), nullptr);
    pRoot->RaiseUnloaded();
    EXPECT_EQ(log, (Strings{"child loaded", "root loaded", "late loaded", "late unloaded",
                            "root unloaded", "child unloaded"}));
}

TEST_F(ElementTest, AHandlerMayAddAndRemoveElementsWhileATreeLoads) {
    const auto pRoot = Make("root");
    const auto pFirst = Make("first");
    const auto pSecond = Make("second");
    pRoot->AppendChild(pFirst);
    pRoot->AppendChild(pSecond);
    const auto pAdded = Make("added");
    pFirst->Loaded.add([&] {
        pRoot->RemoveChild(pSecond);
        pRoot->AppendChild(pAdded);
    });
    pRoot->RaiseLoaded();
    EXPECT_EQ(log, (Strings{"first loaded", "added loaded", "root loaded"}));
}

TEST_F(ElementTest, AnElementHasOneParentAndNoCircle) {
    const auto pRoot = Make("root");
    const auto pOther = Make("other");
    const auto pChild = Make("child");
    pRoot->AppendChild(pChild);
    pOther->AppendChild(pChild);
    EXPECT_TRUE(pRoot->Children().empty());
    EXPECT_EQ(pChild->Parent(), pOther);
    EXPECT_THROW(pChild->AppendChild(pOther), Platform::InvalidArgumentException);
    EXPECT_THROW(pChild->AppendChild(pChild), Platform::InvalidArgumentException);
    EXPECT_THROW(pChild->AppendChild(nullptr), Platform::InvalidArgumentException);
    pOther->PositionInParent({10, 20});
    pChild->PositionInParent({1, 2});
    EXPECT_EQ(pChild->PositionInWindow(), (Windows::Foundation::Point{11, 22}));
}

TEST_F(ElementTest, ScaleAndSizeComeTogetherScaleFirst) {
    const auto pPanel = Make<SwapChainPanel>("panel");
    const auto fnNote = [&](const char* szName) {
        log.push_back(std::string(szName) + " " +
                      std::to_string(static_cast<int>(pPanel->ActualWidth())) + " at " +
                      std::to_string(static_cast<int>(pPanel->CompositionScaleX())));
    };
    pPanel->CompositionScaleChanged.add([&] { fnNote("scale"); });
    pPanel->SizeChanged.add([&](const auto&) { fnNote("size"); });
    pPanel->ArrangeAtScale({10, 10}, 2, 2);
    EXPECT_EQ(log, (Strings{"scale 10 at 2", "panel 0->10", "size 10 at 2"}));
    log.clear();
    pPanel->ArrangeAtScale({10, 10}, 2, 2);
    EXPECT_TRUE(log.empty());
    pPanel->CompositionScale(3, 2);
    EXPECT_EQ(log, (Strings{"scale 10 at 3"}));
    EXPECT_THROW(pPanel->CompositionScale(0, 1), Platform::InvalidArgumentException);
}

}
}
