// A control on the manual platform and the scripted engine, with a log of its
// events.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "control/ControlParts.h"
#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "control/VelkoViewControl.h"
#include "platform/fake/CountingGraphicsFactory.h"
#include "platform/fake/TestHost.h"
#include "platform/ui/SwapChainPanel.h"
#include "settings/AppConfig.h"
#include "tests/control/ScriptedViewer.h"
#include "tests/support/FileOnDisk.h"
#include "tests/support/scripted_engine/ScriptedEngine.h"

namespace velko::testing {

using common::ErrorCode;
namespace Input = Windows::UI::Xaml::Input;
using Windows::Foundation::Point;
using Windows::Storage::StorageFile;
using Strings = std::vector<std::string>;

class ControlFixture : public ::testing::Test {
protected:
    explicit ControlFixture(int nPages = 5)
        : pEngine(std::make_shared<ScriptedEngine>(MakePages(nPages, 600.0F, 800.0F))) {
        host.Environment().SetGraphicsFactory(pGraphics);
        pControl = vkit::PDFViewCtrl::Create();
        Listen(*pControl);
    }
    ~ControlFixture() override {
        pControl.reset();
        host.Drain();
        vkit::AppConfig::Close();
    }

    // Shows the control in a window of that size.
    void Show(float fWidth = 1000.0F, float fHeight = 800.0F) {
        pControl->ApplyTemplate();
        pControl->Arrange({fWidth, fHeight});
        pControl->RaiseLoaded();
        host.Drain();
    }

    // The file of that name, written at the first call.
    std::shared_ptr<StorageFile> File(const std::string& strName = "a.pdf") const {
        if (!std::filesystem::exists(folder / strName)) {
            folder.Write(strName, std::string(1000, '%'));
        }
        return TemporaryFolder::File(folder / strName);
    }

    concurrency::task<ErrorCode> Run(concurrency::task<ErrorCode> opening) {
        EXPECT_TRUE(host.WaitUntil([&] { return opening.is_done(); }));
        return opening;
    }
    ErrorCode Open(const std::string& strName = "a.pdf", const std::string& strPassword = "") {
        return Run(pControl->OpenPdfDocument(File(strName), strPassword)).get();
    }

    vkit::ControlParts Parts() { return vkit::ControlParts(*pControl); }

    // Puts a scripted viewer in the place of the current one.
    std::shared_ptr<ScriptedViewer> UseScriptedViewer() {
        auto pViewer = std::make_shared<ScriptedViewer>();
        Parts().PageViewMgr()->SetViewer(pViewer);
        return pViewer;
    }

    Windows::UI::Xaml::Controls::SwapChainPanel& Panel() {
        return *Parts().ViewControl()->CanvasPanel();
    }

    // What a finger, two, or a wheel do over the panel.
    void Start(Point pt) {
        Input::ManipulationStartedRoutedEventArgs args;
        args.Position = pt;
        Panel().ManipulationStarted.raise(args);
    }
    bool Delta(Point pt, float fScale = 1, float fCumulative = 1, bool bInertial = false) {
        Input::ManipulationDeltaRoutedEventArgs args;
        args.Position = pt;
        args.Delta.Scale = fScale;
        args.Cumulative.Scale = fCumulative;
        args.IsInertial = bInertial;
        Panel().ManipulationDelta.raise(args);
        return args.Handled;
    }
    void Complete(Point pt, float fCumulative = 1) {
        Input::ManipulationCompletedRoutedEventArgs args;
        args.Position = pt;
        args.Cumulative.Scale = fCumulative;
        Panel().ManipulationCompleted.raise(args);
    }
    void Wheel(Point pt, int nDelta, bool bControl, bool bHorizontal = false) {
        host.Environment().SetControlKeyDown(bControl);
        Input::PointerRoutedEventArgs args;
        args.Position = pt;
        args.MouseWheelDelta = nDelta;
        args.IsHorizontalMouseWheel = bHorizontal;
        Panel().PointerWheelChanged.raise(args);
    }

    void Listen(vkit::PDFViewCtrl& control) {
        const auto fnDoc = [this](const char* szName) {
            return [this, szName](const auto&, const auto& pArgs) {
                events.push_back(std::string(szName) + " " +
                                 std::to_string(static_cast<int>(pArgs->ErrorCode)) + " " +
                                 std::to_string(pArgs->IsCanceled));
                Hook(szName);
            };
        };
        control.OpenDocEvent.add(fnDoc("OpenDoc"));
        control.CloseDocEvent.add(fnDoc("CloseDoc"));
        const auto fnPage = [this](const char* szName) {
            return [this, szName](const auto&, const auto& pArgs) {
                events.push_back(std::string(szName) + " " + std::to_string(pArgs->PageIndex));
                Hook(szName);
            };
        };
        control.PageLoadedEvent.add(fnPage("PageLoaded"));
        control.PageUnloadedEvent.add(fnPage("PageUnloaded"));
        control.PageVisibleEvent.add(fnPage("PageVisible"));
        control.PageInvisibleEvent.add(fnPage("PageInvisible"));
        control.PageChangedEvent.add([this](const auto&, const auto& pArgs) {
            events.push_back("PageChanged " + Text(pArgs->OldVisiblePages) + "->" +
                             Text(pArgs->NewVisiblePages));
            Hook("PageChanged");
        });
        control.PageLayoutModeChangedEvent.add([this](const auto&, const auto& pArgs) {
            events.push_back("Mode " + std::to_string(pArgs->OldLayoutMode) + "->" +
                             std::to_string(pArgs->NewLayoutMode));
            Hook("Mode");
        });
    }

    static std::string Text(const std::vector<std::int32_t>& pages) {
        std::string strText;
        for (const auto nPage : pages) {
            strText += (strText.empty() ? "" : ",") + std::to_string(nPage);
        }
        return "[" + strText + "]";
    }

    // The events without those of single pages, which the layout decides.
    Strings DocEvents() const {
        Strings found;
        for (const auto& strEvent : events) {
            if (strEvent.rfind("Page", 0) != 0) {
                found.push_back(strEvent);
            }
        }
        return found;
    }

    // Runs `fnAct` in the next event of the name, once.
    void InEvent(const std::string& strName, std::function<void()> fnAct) {
        strHookedEvent = strName;
        fnHook = std::move(fnAct);
    }
    void Hook(const std::string& strName) {
        if (strName == strHookedEvent && fnHook) {
            const auto fnAct = std::exchange(fnHook, nullptr);
            fnAct();
        }
    }

    const TemporaryFolder folder;
    Platform::Fake::TestHost host;
    std::shared_ptr<Platform::Fake::CountingGraphicsFactory> pGraphics =
        std::make_shared<Platform::Fake::CountingGraphicsFactory>();
    std::shared_ptr<ScriptedEngine> pEngine;
    ScriptedEngine::Registration registration{pEngine};
    std::shared_ptr<vkit::PDFViewCtrl> pControl;
    Strings events;
    std::string strHookedEvent;
    std::function<void()> fnHook;
};

}
