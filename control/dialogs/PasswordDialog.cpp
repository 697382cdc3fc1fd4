#include "control/dialogs/PasswordDialog.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "control/IJudgePasswordHelper.h"
#include "control/dialogs/BackRequests.h"
#include "control/dialogs/DialogMarkup.h"
#include "platform/foundation/Exception.h"
#include "platform/system/Debug.h"
#include "platform/system/Environment.h"
#include "platform/ui/Markup.h"

namespace velko::vkit {

namespace Xaml = Windows::UI::Xaml;
using Platform::Debug::OutputDebugString;
using Windows::Foundation::Point;
using Windows::Foundation::Rect;
using Windows::System::VirtualKey;
using Windows::System::Profile::AnalyticsInfo;

namespace {

constexpr double kDesktopBoxWidth = 324.0; // 96ths of an inch
constexpr const char* kIntersects = "IntersectsWith...\n";

bool IsDesktop() {
    return AnalyticsInfo::DeviceFamily() == "Windows.Desktop";
}

// The platform's units may be finer than 96ths of an inch.
double ToLogical(double dbUnits) {
    constexpr double kDotsPerInch = 96.0;
    return dbUnits * Windows::Graphics::Display::DisplayInformation::LogicalDpi() / kDotsPerInch;
}

void Show(Xaml::FrameworkElement& element, bool bVisible) {
    element.Visibility(bVisible ? Xaml::Visibility::Visible : Xaml::Visibility::Collapsed);
}

// Anew where it is shown already, so that it is spoken again.
void TellHint(Xaml::FrameworkElement& hint) {
    Show(hint, false);
    Show(hint, true);
}

std::string Text(const Rect& rc) {
    return std::to_string(rc.X) + ", " + std::to_string(rc.Y) + ", " + std::to_string(rc.Width) +
           ", " + std::to_string(rc.Height);
}

template <class Part>
std::shared_ptr<Part> FindPart(Xaml::FrameworkElement& panel, const char* szName) {
    auto pPart = std::dynamic_pointer_cast<Part>(panel.FindName(szName));
    if (!pPart) {
        throw Platform::InvalidCastException(std::string("the password page lacks ") + szName);
    }
    return pPart;
}

}

std::shared_ptr<PasswordDialog> PasswordDialog::Create() {
    RegisterDialogMarkup();
    const std::shared_ptr<PasswordDialog> pDialog(new PasswordDialog);
    pDialog->Initialize();
    return pDialog;
}

PasswordDialog::~PasswordDialog() = default;

template <class F>
auto PasswordDialog::WhileAlive(F fnHandler) {
    const auto pSelf = std::static_pointer_cast<PasswordDialog>(shared_from_this());
    return [wkSelf = std::weak_ptr<PasswordDialog>(pSelf), fnHandler](auto&&... args) {
        if (const auto pAlive = wkSelf.lock()) {
            std::invoke(fnHandler, *pAlive, args...);
        }
    };
}

void PasswordDialog::Initialize() {
    Content(Xaml::Markup::LoadMarkup(kPasswordDialogPage));
    Connect(m_landscape, "LandscapePanel");
    Connect(m_portrait, "PortraitPanel");
    Loaded.add(WhileAlive(&PasswordDialog::OnLoaded));
    Unloaded.add(WhileAlive(&PasswordDialog::OnUnloaded));
}

void PasswordDialog::Connect(Arrangement& arrangement, const char* szPanel) {
    using namespace Xaml::Controls;
    const auto pPanel = FindPart<Element>(*this, szPanel);
    arrangement.pPanel = pPanel;
    arrangement.pTitle = FindPart<Element>(*pPanel, "TitleBlock");
    arrangement.pFileName = FindPart<TextBlock>(*pPanel, "FileNameBlock");
    arrangement.pBox = FindPart<PasswordBox>(*pPanel, "PasswordBox");
    arrangement.pHints = FindPart<Element>(*pPanel, "HintBlock");
    arrangement.pEmptyHint = FindPart<Element>(*pPanel, "EmptyPasswordHint");
    arrangement.pWrongHint = FindPart<Element>(*pPanel, "WrongPasswordHint");
    arrangement.pOk = FindPart<Button>(*pPanel, "OkButton");
    arrangement.pCancel = FindPart<Button>(*pPanel, "CancelButton");
    arrangement.pOk->Click.add(WhileAlive(&PasswordDialog::OnOkClick));
    arrangement.pCancel->Click.add(WhileAlive(&PasswordDialog::OnCancelClick));
    arrangement.pBox->KeyDown.add(WhileAlive(&PasswordDialog::OnBoxKeyDown));
}

// --- the judge -------------------------------------------------------------

void PasswordDialog::JudgePassword(std::shared_ptr<IJudgePasswordHelper> pJudge) {
    const auto pOld = std::exchange(m_pJudge, std::move(pJudge));
    if (pOld == m_pJudge) {
        return;
    }
    LogJudge(pOld.get(), m_pJudge.get());
    const std::string strFile = m_pJudge ? m_pJudge->GetFileName() : std::string();
    for (const Arrangement* pArrangement : {&m_landscape, &m_portrait}) {
        pArrangement->pFileName->Text(strFile);
    }
}

// The index of a judge is its number among those that this dialog has had.
void PasswordDialog::LogJudge(const IJudgePasswordHelper* pOld, const IJudgePasswordHelper* pNew) {
    std::string strLine = "[OnPageViewDataContextPropertyChanged] PageViewControl: " +
                          std::to_string(std::hash<const void*>{}(this));
    strLine += pOld != nullptr ? "OldValue--Index: " + std::to_string(m_nJudges - 1)
                               : std::string("OldValue is NULL");
    if (pNew != nullptr) {
        ++m_nJudges;
    } else {
        strLine += ",NewValue is NULL";
    }
    OutputDebugString(strLine + "\n");
}

void PasswordDialog::OnOkClick() {
    const auto pSelf = shared_from_this();
    const Arrangement& active = Active();
    const Platform::SecretText text = active.pBox->Password();
    if (text.IsEmpty()) {
        Show(*active.pWrongHint, false);
        TellHint(*active.pEmptyHint);
        return;
    }
    const auto pJudge = m_pJudge;
    if (pJudge && Judge(*pJudge, text)) {
        active.pBox->Password({});
        pJudge->OnPasswordOK();
        return;
    }
    Show(*m_portrait.pEmptyHint, false); // this one also where the other arrangement is in use
    TellHint(*active.pWrongHint);
    active.pBox->Password({});
    active.pBox->Focus(Xaml::FocusState::Programmatic);
}

// Many letters, coded in several ways, take the engine long enough to be noticed.
bool PasswordDialog::Judge(IJudgePasswordHelper& judge, const Platform::SecretText& password) {
    const Window::WaitScope waiting(m_wkWindow.lock());
    return judge.JudgePassword(password.Text());
}

void PasswordDialog::OnCancelClick() {
    const auto pSelf = shared_from_this();
    ActiveBox()->Password({});
    if (const auto pJudge = m_pJudge) {
        pJudge->OnPasswordCancel();
    }
}

void PasswordDialog::OnBoxKeyDown(Xaml::Input::KeyRoutedEventArgs& args) {
    if (args.Key == VirtualKey::Enter) {
        OnOkClick();
        args.Handled = true;
    }
}

// --- subscriptions ---------------------------------------------------------

void PasswordDialog::OnLoaded() {
    const auto pWindow = Window::Of(*this);
    if (pWindow) {
        m_wkWindow = pWindow;
        m_ptrWindowSizeToken = pWindow->SizeChanged.add(
            WhileAlive([](PasswordDialog& self, const auto&) { self.OnWindowSizeChanged(); }));
        if (!IsDesktop()) {
            SubscribeToKeyboard(*pWindow);
        }
        HearBackRequests(*pWindow, WhileAlive(&PasswordDialog::OnBackRequested),
                         m_ptrBackPressedToken, m_ptrBackRequestedToken);
    }
    ArrangeLayout();
}

void PasswordDialog::SubscribeToKeyboard(Window& window) {
    m_ptrPaneShowingToken = window.InputPane().Showing.add(
        WhileAlive([](PasswordDialog& self, PaneArgs& args) { self.OnInputPane(args, true); }));
    m_ptrPaneHidingToken = window.InputPane().Hiding.add(
        WhileAlive([](PasswordDialog& self, PaneArgs& args) { self.OnInputPane(args, false); }));
    m_ptrKeyDownToken = window.KeyDown.add(WhileAlive(&PasswordDialog::OnWindowKeyDown));
}

void PasswordDialog::OnUnloaded() {
    for (const Arrangement* pArrangement : {&m_landscape, &m_portrait}) {
        pArrangement->pBox->Password({});
    }
    m_bInputPaneVisible = false; // from now on nobody hears of it
    m_pLiftTransform.reset();
    const auto pWindow = m_wkWindow.lock();
    m_wkWindow.reset();
    if (!pWindow) {
        return;
    }
    pWindow->SizeChanged.remove(m_ptrWindowSizeToken);
    pWindow->InputPane().Showing.remove(m_ptrPaneShowingToken);
    pWindow->InputPane().Hiding.remove(m_ptrPaneHidingToken);
    pWindow->KeyDown.remove(m_ptrKeyDownToken);
    pWindow->BackPressed.remove(m_ptrBackPressedToken);
    pWindow->BackRequested.remove(m_ptrBackRequestedToken);
}

void PasswordDialog::OnBackRequested(Xaml::BackRequest& args) {
    args.Handled = true;
    if (const auto pJudge = m_pJudge) {
        pJudge->OnPasswordCancel();
    }
}

// --- arrangements ----------------------------------------------------------

void PasswordDialog::OnWindowSizeChanged() {
    ArrangeLayout();
    ResetLift();
    AdjustForInputPane();
}

void PasswordDialog::ArrangeLayout() {
    const auto pWindow = m_wkWindow.lock();
    const Rect rcWindow = pWindow ? pWindow->Bounds() : Rect();
    const double dbWidth = rcWindow.Width;
    const double dbHeight = rcWindow.Height;
    if (IsDesktop()) {
        ArrangeOnDesktop();
    } else if (dbWidth > dbHeight) {
        ArrangeInLandscape(dbWidth, dbHeight);
    } else {
        ArrangeInPortrait(dbWidth);
    }
    if (ActiveBox()->FocusState() == Xaml::FocusState::Unfocused) {
        ActiveBox()->Focus(Xaml::FocusState::Programmatic);
    }
}

void PasswordDialog::ArrangeOnDesktop() {
    m_portrait.pBox->Width(ToLogical(kDesktopBoxWidth));
    m_portrait.pHints->Width(ToLogical(kDesktopBoxWidth)); // as wide, so that nothing moves
    ShowArrangement(false);
}

void PasswordDialog::ArrangeInLandscape(double dbWidth, double dbHeight) {
    ShowArrangement(true);
    m_landscape.pPanel->Width(dbWidth);
    m_landscape.pPanel->Height(dbHeight * 0.41);
    m_landscape.pBox->Width(dbWidth * 0.88);
    m_landscape.pHints->Width(dbWidth * 0.88);
    for (const auto& pButton : {m_landscape.pOk, m_landscape.pCancel}) {
        pButton->Width(dbWidth * 0.2);
        pButton->Height(dbHeight * 0.075);
    }
}

void PasswordDialog::ArrangeInPortrait(double dbWidth) {
    m_portrait.pTitle->Width(dbWidth * 0.88);
    m_portrait.pBox->Width(dbWidth * 0.8);
    m_portrait.pOk->Width(dbWidth * 0.43);
    m_portrait.pCancel->Width(dbWidth * 0.43);
    ShowArrangement(false);
    m_portrait.pPanel->Width(dbWidth);
}

// What was typed goes along.
void PasswordDialog::ShowArrangement(bool bLandscape) {
    if (std::exchange(m_bLandscape, bLandscape) != bLandscape) {
        auto& boxBefore = bLandscape ? *m_portrait.pBox : *m_landscape.pBox;
        ActiveBox()->Password(boxBefore.Password());
        boxBefore.Password({});
    }
    Show(*m_portrait.pPanel, !bLandscape);
    Show(*m_landscape.pPanel, bLandscape);
}

// --- the on-screen keyboard ------------------------------------------------

void PasswordDialog::OnInputPane(PaneArgs& args, bool bVisible) {
    args.EnsuredFocusedElementInView = true;
    m_bInputPaneVisible = bVisible;
    AdjustForInputPane();
}

void PasswordDialog::ResetLift() {
    const auto pHost = Parent();
    if (m_pLiftTransform && pHost) {
        pHost->RenderTransform(std::make_shared<Xaml::Media::TranslateTransform>());
    }
    m_pLiftTransform.reset();
}

Rect PasswordDialog::BoxRect() const {
    const auto& box = *Active().pBox;
    const Point pt = box.PositionInWindow();
    return {pt.X, pt.Y, static_cast<float>(box.ActualWidth()),
            static_cast<float>(box.ActualHeight())};
}

void PasswordDialog::AdjustForInputPane() {
    ResetLift(); // what is measured is the place without a lift
    const auto pWindow = m_wkWindow.lock();
    const auto pHost = Parent();
    if (!m_bInputPaneVisible || !pWindow || !pHost) {
        return;
    }
    const Rect rcOccluded = pWindow->InputPane().OccludedRect();
    const Rect rcBox = BoxRect();
    if (!rcOccluded.IntersectsWith(rcBox)) {
        return;
    }
    OutputDebugString(kIntersects);
    m_pLiftTransform = std::make_shared<Xaml::Media::TranslateTransform>();
    const double dbOverlap = static_cast<double>(rcBox.Height + rcBox.Y) - rcOccluded.Y;
    m_pLiftTransform->Y(m_pLiftTransform->Y() - dbOverlap);
    pHost->RenderTransform(m_pLiftTransform);
}

// Tells where the box and the keyboard are, at each press of D.
void PasswordDialog::OnWindowKeyDown(const Windows::UI::Core::KeyEventArgs& args) {
    const auto pWindow = m_wkWindow.lock();
    if (args.VirtualKey != VirtualKey::D || !pWindow) {
        return;
    }
    const Rect rcOccluded = pWindow->InputPane().OccludedRect();
    const Rect rcBox = BoxRect();
    if (rcOccluded.IntersectsWith(rcBox)) {
        OutputDebugString(kIntersects);
    }
    OutputDebugString("OccludedRect: " + Text(rcOccluded) +
                      "\nDocPasswordBox Point: " + Text(rcBox) + "\n");
}

}
