// The window that a tree of elements stands in, as far as elements ask for it: its
// bounds, who has the keys, key presses, back requests, the pointer's shape and the
// on-screen keyboard.
//
// The toolkit makes one for each of its windows that hosts a tree, tells it of the
// size, and passes on what the reader does.
// Units: logical, from the top left of the content. Threads: UI thread only.
// Lifetime: the content knows it weakly. Errors: a handler's failure goes to the caller.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/foundation/Event.h"
#include "platform/foundation/Geometry.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Keys.h"

namespace Windows::UI {
class IDialogs;
}

namespace Windows::UI::ViewManagement {

struct InputPaneVisibilityEventArgs {
    Foundation::Rect OccludedRect;
    bool EnsuredFocusedElementInView = false; // set: nobody else moves the element into sight
};

// The on-screen keyboard.
class InputPane {
public:
    // What it covers of the window; of no height while it is hidden.
    Foundation::Rect OccludedRect() const { return m_rcOccluded; }
    Foundation::Event<InputPaneVisibilityEventArgs&> Showing;
    Foundation::Event<InputPaneVisibilityEventArgs&> Hiding;

    // For the toolkit: it covers this from now on.
    void Occlude(const Foundation::Rect& rc);

private:
    Foundation::Rect m_rcOccluded;
};

}

namespace Windows::UI::Core {

enum class CoreCursorType { Arrow = 0, Wait = 12 };

}

namespace Windows::UI::Xaml {

// A request to go back, by whatever means the machine has for it.
struct BackRequest {
    bool Handled = false;
};

class Window : public std::enable_shared_from_this<Window> {
public:
    static std::shared_ptr<Window> Create(std::shared_ptr<FrameworkElement> pContent);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // The one in whose tree the element stands; empty when it stands in none.
    static std::shared_ptr<Window> Of(const FrameworkElement& element);
    // The one that the running code belongs to: of the innermost scope, else the one
    // that was made last. Empty when there is none.
    static std::shared_ptr<Window> Current();
    class CurrentScope {
    public:
        explicit CurrentScope(std::shared_ptr<Window> pWindow);
        ~CurrentScope();
        CurrentScope(const CurrentScope&) = delete;
        CurrentScope& operator=(const CurrentScope&) = delete;

    private:
        const std::weak_ptr<Window> m_wkBefore;
    };

    const std::shared_ptr<FrameworkElement>& Content() const { return m_pContent; }
    Foundation::Rect Bounds() const;
    Foundation::Event<Foundation::Size> SizeChanged;
    void TellSize(); // for the toolkit, once the content has its size

    // --- keys ---
    std::shared_ptr<Controls::Control> FocusedElement() const; // empty once it is unloaded
    FocusState FocusStateNow() const { return m_eFocusState; }
    bool Focus(const std::shared_ptr<Controls::Control>& pElement, FocusState eState);
    void LoseFocus(const Controls::Control& element); // nothing when another one has it
    Foundation::Event<> FocusMoved;                   // for the toolkit, which moves its own along

    // The first to hear of a key, whoever has the focus.
    Foundation::Event<const Core::KeyEventArgs&> KeyDown;
    // A key on the element: true when a handler took it.
    bool PressKey(const std::shared_ptr<FrameworkElement>& pElement, std::int32_t nKey);

    // --- back ---
    Foundation::Event<BackRequest&> BackPressed;   // the button of a phone
    Foundation::Event<BackRequest&> BackRequested; // any other way
    bool RequestBack();                            // true when a handler took it

    ViewManagement::InputPane& InputPane() { return m_inputPane; }

    // The pointer's shape over the whole program; in force when the call returns, so
    // that it can be told before work that holds the thread.
    Core::CoreCursorType PointerCursor() const { return m_ePointerCursor; }
    void PointerCursor(Core::CoreCursorType eCursor);
    Foundation::Event<> PointerCursorChanged; // for the toolkit
    // The pointer says meanwhile that the program is at work. `pWindow` may be empty.
    class WaitScope {
    public:
        explicit WaitScope(std::shared_ptr<Window> pWindow);
        ~WaitScope();
        WaitScope(const WaitScope&) = delete;
        WaitScope& operator=(const WaitScope&) = delete;

    private:
        const std::shared_ptr<Window> m_pWindow;
        const Core::CoreCursorType m_eBefore;
    };

    // --- dialogs of the system above it ---
    // The toolkit's; empty until it has set them.
    const std::shared_ptr<IDialogs>& Dialogs() const { return m_pDialogs; }
    void Dialogs(std::shared_ptr<IDialogs> pDialogs) { m_pDialogs = std::move(pDialogs); }
    static IDialogs& CurrentDialogs(); // raises `NullReferenceException` where there are none

private:
    explicit Window(std::shared_ptr<FrameworkElement> pContent);

    const std::shared_ptr<FrameworkElement> m_pContent;
    std::weak_ptr<Controls::Control> m_wkFocused;
    FocusState m_eFocusState = FocusState::Unfocused;
    Foundation::Size m_sizeTold;
    ViewManagement::InputPane m_inputPane;
    Core::CoreCursorType m_ePointerCursor = Core::CoreCursorType::Arrow;
    std::shared_ptr<IDialogs> m_pDialogs;
};

}

namespace Windows::Foundation::Metadata {

// Which parts of the application model there are on this machine.
struct ApiInformation {
    static bool IsTypePresent(const std::string& strType);
};

}
