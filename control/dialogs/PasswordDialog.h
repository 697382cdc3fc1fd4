// Asks for a document's password: two arrangements of a box, hints and buttons, of
// which one is in use, kept above the on-screen keyboard.
//
// It knows nothing of documents: whoever judges the password is its `JudgePassword`,
// which also takes it off the screen after `OnPasswordOK` and `OnPasswordCancel`.
// Lifetime: serves one document; the judge may let go of it within a call.
// Units: logical. Threads: UI thread only; the judge's answer is waited for.
// Errors: those of the judge go to whoever raised the event.
#pragma once

#include <memory>

#include "platform/ui/Controls.h"
#include "platform/ui/Window.h"

namespace velko::vkit {

class IJudgePasswordHelper;

class PasswordDialog final : public Windows::UI::Xaml::Controls::UserControl {
public:
    static std::shared_ptr<PasswordDialog> Create();
    ~PasswordDialog() override;

    const std::shared_ptr<IJudgePasswordHelper>& JudgePassword() const { return m_pJudge; }
    void JudgePassword(std::shared_ptr<IJudgePasswordHelper> pJudge);

    // What the reader sees and uses now.
    bool IsLandscape() const { return m_bLandscape; }
    const std::shared_ptr<Windows::UI::Xaml::Controls::PasswordBox>& ActiveBox() const {
        return Active().pBox;
    }

    // Handlers of the buttons and the boxes.
    void OnOkClick();
    void OnCancelClick();
    void OnBoxKeyDown(Windows::UI::Xaml::Input::KeyRoutedEventArgs& args);

private:
    using Element = Windows::UI::Xaml::FrameworkElement;
    using Token = Windows::Foundation::EventRegistrationToken;
    using Window = Windows::UI::Xaml::Window;
    using PaneArgs = Windows::UI::ViewManagement::InputPaneVisibilityEventArgs;

    // One of the two.
    struct Arrangement {
        std::shared_ptr<Element> pPanel;
        std::shared_ptr<Element> pTitle;
        std::shared_ptr<Windows::UI::Xaml::Controls::TextBlock> pFileName;
        std::shared_ptr<Windows::UI::Xaml::Controls::PasswordBox> pBox;
        std::shared_ptr<Element> pHints;
        std::shared_ptr<Element> pEmptyHint;
        std::shared_ptr<Element> pWrongHint;
        std::shared_ptr<Windows::UI::Xaml::Controls::Button> pOk;
        std::shared_ptr<Windows::UI::Xaml::Controls::Button> pCancel;
    };

    PasswordDialog() = default;
    void Initialize();
    void Connect(Arrangement& arrangement, const char* szPanel);
    template <class F>
    auto WhileAlive(F fnHandler);
    const Arrangement& Active() const { return m_bLandscape ? m_landscape : m_portrait; }

    bool Judge(IJudgePasswordHelper& judge, const Platform::SecretText& password);
    void OnLoaded();
    void OnUnloaded();
    void SubscribeToKeyboard(Window& window);
    void OnWindowSizeChanged();
    void OnBackRequested(Windows::UI::Xaml::BackRequest& args);
    void OnInputPane(PaneArgs& args, bool bVisible);
    void OnWindowKeyDown(const Windows::UI::Core::KeyEventArgs& args);

    void ArrangeLayout();
    void ArrangeOnDesktop();
    void ArrangeInLandscape(double dbWidth, double dbHeight);
    void ArrangeInPortrait(double dbWidth);
    void ShowArrangement(bool bLandscape);
    void AdjustForInputPane();
    void ResetLift();
    Windows::Foundation::Rect BoxRect() const;
    void LogJudge(const IJudgePasswordHelper* pOld, const IJudgePasswordHelper* pNew);

    std::shared_ptr<IJudgePasswordHelper> m_pJudge;
    int m_nJudges = 0; // that it has had
    Arrangement m_landscape;
    Arrangement m_portrait;
    bool m_bLandscape = false;
    bool m_bInputPaneVisible = false;
    std::shared_ptr<Windows::UI::Xaml::Media::TranslateTransform> m_pLiftTransform;
    std::weak_ptr<Window> m_wkWindow; // of the subscriptions
    Token m_ptrWindowSizeToken;
    Token m_ptrPaneShowingToken;
    Token m_ptrPaneHidingToken;
    Token m_ptrKeyDownToken;
    Token m_ptrBackPressedToken;
    Token m_ptrBackRequestedToken;
};

}
