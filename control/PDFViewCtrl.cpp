#include "control/PDFViewCtrl.h"

#include <utility>

#include "control/ControlParts.h"
#include "control/InsertDocumentPasswdwordDlgUIOprateion.h"
#include "control/Markup.h"
#include "control/PDFViewerManager.h"
#include "control/VelkoViewControl.h"
#include "control/dialogs/ContentHostedDialog.h"
#include "control/dialogs/PasswordDialog.h"
#include "document/VLK_Document.h"
#include "platform/foundation/FirstFailure.h"
#include "platform/storage/FileSavePicker.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"
#include "platform/ui/MessageDialog.h"
#include "platform/ui/SwapChainPanel.h"
#include "settings/AppConfig.h"
#include "surface/PDFViewCanvas.h"

namespace velko::vkit {

namespace {

namespace Xaml = Windows::UI::Xaml;

// A render worker that raises an event may hold the last reference; the
// control and its elements end on the UI thread all the same.
class EndOnUiThread {
public:
    explicit EndOnUiThread(std::shared_ptr<Windows::UI::Core::CoreDispatcher> pDispatcher)
        : m_pDispatcher(std::move(pDispatcher)) {}

    void operator()(PDFViewCtrl* pControl) const {
        std::unique_ptr<PDFViewCtrl> pOwned(pControl);
        if (!m_pDispatcher->HasThreadAccess()) {
            m_pDispatcher->RunAsync(Windows::UI::Core::CoreDispatcherPriority::normal,
                                    [pOwned = std::move(pOwned)] {});
        }
    }

private:
    std::shared_ptr<Windows::UI::Core::CoreDispatcher> m_pDispatcher;
};

}

PDFViewCtrl::PDFViewCtrl() {
    DefaultStyleKey = kPDFViewCtrlStyle;
    if (!Windows::ApplicationModel::DesignMode::DesignModeEnabled()) {
        AppConfig::Init();
    }
}

PDFViewCtrl::~PDFViewCtrl() = default;

std::shared_ptr<PDFViewCtrl> PDFViewCtrl::Create() {
    RegisterControlMarkup();
    const std::shared_ptr<PDFViewCtrl> pControl(
        new PDFViewCtrl, EndOnUiThread(Platform::Environment()->MainDispatcher()));
    const std::weak_ptr<PDFViewCtrl> wkControl = pControl;
    pControl->Loaded.add([wkControl] {
        if (const auto pLoaded = wkControl.lock()) {
            pLoaded->OnLoaded();
        }
    });
    pControl->Unloaded.add([wkControl] {
        if (const auto pUnloaded = wkControl.lock()) {
            pUnloaded->OnUnloaded();
        }
    });
    return pControl;
}

std::shared_ptr<PDFViewCtrl> PDFViewCtrl::Self() {
    return std::static_pointer_cast<PDFViewCtrl>(shared_from_this());
}

std::shared_ptr<PDFViewCtrl> PDFViewCtrl::Enter() {
    if (m_bDisposed) {
        throw Platform::ObjectDisposedException("the viewer control is disposed");
    }
    return Self();
}

std::shared_ptr<IViewerOwner> PDFViewCtrl::AsViewerOwner() {
    return {Self(), this};
}

template <class F>
void PDFViewCtrl::ForEachEvent(F fnVisit) {
    const auto fnAll = [&](auto&... events) { (fnVisit(events), ...); };
    fnAll(RenderCanvasEvent, RenderPageEvent, OpenDocEvent, CloseDocEvent, PageLoadedEvent,
          PageUnloadedEvent, PageVisibleEvent, PageInvisibleEvent, PageChangedEvent,
          PageLayoutModeChangedEvent, PageFailureEvent, ReflowCanvasEvent, SaveProgressEvent);
}

void PDFViewCtrl::Dispose() {
    if (m_bDisposed) {
        return;
    }
    const auto pSelf = Self();
    Platform::FirstFailure failure;
    failure.Run([this] { CloseDocument(true); });
    if (m_pDocument) { // attached inside `CloseDocEvent`
        failure.Run([this] { CloseDocument(true); });
    }
    m_bDisposed = true;
    failure.Run([this] { RemoveTemplate(); });
    m_pPageViewMgr.reset();
    m_pViewControl.reset();
    m_pLayout.reset();
    m_pAppBar.reset();
    m_pProgressRing.reset();
    m_pExtensionsManager.reset();
    m_fnSaveCheck = nullptr;
    ForEachEvent([](auto& event) { event.Close(); });
    LetHandlersGo();
    failure.Rethrow();
}

// Not before the host has heard that the last document is closed.
void PDFViewCtrl::LetHandlersGo() {
    if (m_bDisposed && !m_pClosingDocument) {
        ForEachEvent([](auto& event) { event.Clear(); });
    }
}

void PDFViewCtrl::OnApplyTemplate() {
    ContentControl::OnApplyTemplate();
    const auto fnPart = [this]<class Part>(const char* szName, std::shared_ptr<Part>& pPart) {
        const auto pElement = GetTemplateChild(szName);
        pPart = std::dynamic_pointer_cast<Part>(pElement);
        if (pElement && !pPart) {
            throw Platform::InvalidCastException(std::string("wrong kind of part: ") + szName);
        }
    };
    fnPart(kLayoutPart, m_pLayout);
    fnPart(kProgressRingPart, m_pProgressRing);
    fnPart(kViewControlPart, m_pViewControl);
    if (!m_pViewControl) {
        throw Platform::NullReferenceException("the style has no ViewControl part");
    }
    m_pViewControl->FindBaseViewContorl(); // documents open before anything is loaded
    m_pPageViewMgr = m_pViewControl->PageViewMgr();
    ApplyManipulationMode(); // scrolling may have been switched off before
    fnPart(kAppBarPart, m_pAppBar);
    if (m_bProgressRingShown) {
        ShowProgressRing();
    }
    if (IsLoaded()) {
        ConnectPanel();
    }
}

void PDFViewCtrl::OnUnloaded() {
    m_pPageViewMgr.reset();
    GiveUpPassword(); // nobody can be asked any more
    GiveUpSavePrompt();
}

void PDFViewCtrl::ShowProgressRing() {
    m_bProgressRingShown = true;
    if (m_pProgressRing && m_pProgressRing->Visibility() == Xaml::Visibility::Collapsed) {
        m_pProgressRing->Visibility(Xaml::Visibility::Visible);
    }
}

void PDFViewCtrl::HideProgressRing() {
    m_bProgressRingShown = false;
    if (m_pProgressRing && m_pProgressRing->Visibility() == Xaml::Visibility::Visible) {
        m_pProgressRing->Visibility(Xaml::Visibility::Collapsed);
    }
}

// --- looks inside ---

std::shared_ptr<PDFViewerManager> ControlParts::PageViewMgr() const {
    return m_control.Enter()->m_pPageViewMgr;
}

std::shared_ptr<IPDFViewer> ControlParts::Viewer() const {
    return m_control.Enter()->Viewer();
}

std::shared_ptr<VelkoViewControl> ControlParts::ViewControl() const {
    return m_control.Enter()->m_pViewControl;
}

std::shared_ptr<VLK_Document> ControlParts::Document() const {
    return m_control.Enter()->m_pDocument;
}

std::shared_ptr<PDFViewerState> ControlParts::ViewerState() const {
    return m_control.Enter()->m_pViewerState;
}

std::shared_ptr<PasswordDialog> ControlParts::OpenPasswordDialog() const {
    const auto pOperation = m_control.Enter()->m_pPasswordOperation;
    const auto pHosted = pOperation ? pOperation->HostedDialog() : nullptr;
    return pHosted && pHosted->IsOpen()
               ? std::dynamic_pointer_cast<PasswordDialog>(pHosted->Content())
               : nullptr;
}

bool ControlParts::IsProgressRingVisible() const {
    const auto pSelf = m_control.Enter();
    return pSelf->m_pProgressRing
               ? pSelf->m_pProgressRing->Visibility() == Xaml::Visibility::Visible
               : pSelf->m_bProgressRingShown;
}

// --- the host's input sink, the template, input ---

std::shared_ptr<IUIExtensionsEvents> PDFViewCtrl::ExtensionsManager() {
    return Enter()->m_pExtensionsManager;
}

void PDFViewCtrl::ExtensionsManager(std::shared_ptr<IUIExtensionsEvents> pManager) {
    const auto pSelf = Enter();
    m_pExtensionsManager.swap(pManager);
}

std::shared_ptr<PDFViewCtrl::Grid> PDFViewCtrl::Layout() {
    return Enter()->m_pLayout;
}

std::shared_ptr<IJudgePasswordHelper> PDFViewCtrl::PasswordJudge() {
    return Enter()->m_pPasswordOperation;
}

bool PDFViewCtrl::IsPasswordDialogEnabled() {
    return Enter()->m_bIsPasswordDialogEnabled;
}

void PDFViewCtrl::IsPasswordDialogEnabled(bool bEnabled) {
    Enter()->m_bIsPasswordDialogEnabled = bEnabled;
}

void PDFViewCtrl::SetIsCanScrollPageViewEnabled(bool bEnabled) {
    const auto pSelf = Enter();
    m_bIsCanScrollPageViewEnabled = bEnabled;
    ApplyManipulationMode();
    CompleteGestureWhenOff();
}

bool PDFViewCtrl::IsCanScrollPageViewEnabled() {
    return Enter()->m_bIsCanScrollPageViewEnabled;
}

void PDFViewCtrl::IsCanScrollPageViewEnabled(bool bEnabled) {
    const auto pSelf = Enter();
    m_bIsCanScrollPageViewEnabled = bEnabled;
    CompleteGestureWhenOff();
}

// What still comes of a gesture that is open is not answered then.
void PDFViewCtrl::CompleteGestureWhenOff() {
    const auto pViewControl = m_pViewControl;
    if (!m_bIsCanScrollPageViewEnabled && pViewControl) {
        pViewControl->CompleteGesture();
    }
}

void PDFViewCtrl::ApplyManipulationMode() {
    if (const auto pPanel = CanvasPanel()) {
        pPanel->ManipulationMode = m_bIsCanScrollPageViewEnabled
                                       ? Xaml::Input::ManipulationMode::All
                                       : Xaml::Input::ManipulationMode::System;
    }
}

}
