// The elements that controls and their markup are made of.
//
// Units, threads and lifetime: as `Element.h`. What a reader does to them comes
// through the toolkit's presenters.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/SecretText.h"
#include "platform/ui/Element.h"

namespace Windows::UI::Xaml {

class VisualStateGroup;
namespace Input {
struct TappedRoutedEventArgs;
}

// Says the role of an area's colour; the toolkit has the colour. What has none lets the
// pointer through.
enum class ThemeBrush {
    None,
    Shade,  // over what is not to be used meanwhile
    Surface // what a dialog stands on
};

namespace Controls {

class Panel : public FrameworkElement {
public:
    ~Panel() override;

    ThemeBrush Background() const { return m_eBackground; }
    void Background(ThemeBrush eBrush) { m_eBackground = eBrush; } // before it is in a tree
    void Padding(const Thickness& padding);

    // Over this panel or something in it that did not take it; only with a background.
    Foundation::Event<Input::TappedRoutedEventArgs&> Tapped;

    // What its markup switches; kept as long as the panel.
    std::vector<std::shared_ptr<VisualStateGroup>> VisualStateGroups;

protected:
    // What is left of a size without the padding, as a place in this panel.
    Foundation::Rect Inside(Foundation::Size size) const;
    Foundation::Size PaddingSize() const;

private:
    ThemeBrush m_eBackground = ThemeBrush::None;
    Thickness m_padding;
};

// Its children lie over each other.
class Grid : public Panel {
public:
    const std::type_info& PresenterType() const override { return typeid(Grid); }

protected:
    Foundation::Size MeasureContents(float fWidthLimit) const override;
    void ArrangeContents(Foundation::Size size, SizeSteps& steps) override;
};

enum class Orientation { Vertical, Horizontal };

// Its children stand one after another, each as long as it wants to be.
class StackPanel : public Panel {
public:
    explicit StackPanel(Orientation eOrientation = Orientation::Vertical, double dbSpacing = 0.0)
        : m_eOrientation(eOrientation), m_dbSpacing(dbSpacing) {}
    const std::type_info& PresenterType() const override { return typeid(Grid); }

protected:
    Foundation::Size MeasureContents(float fWidthLimit) const override;
    void ArrangeContents(Foundation::Size size, SizeSteps& steps) override;

private:
    const Orientation m_eOrientation;
    const double m_dbSpacing;
};

class ProgressRing : public FrameworkElement {};

class UserControl : public FrameworkElement {
public:
    std::shared_ptr<FrameworkElement> Content() const;
    void Content(std::shared_ptr<FrameworkElement> pContent);
};

// Where a template shows the content of its control.
class ContentPresenter : public FrameworkElement {};

// A control whose looks come from a template: a tree of named parts that is
// made from the style registered under the control's default style key.
class ContentControl : public FrameworkElement {
public:
    // Makes the parts (once) and calls `OnApplyTemplate`. The host calls it
    // before the element is loaded. When it fails, the parts are gone again and
    // it may be called anew.
    void ApplyTemplate();
    bool IsTemplateApplied() const { return m_bTemplateApplied; }

    // Makes new parts in the place of the old ones, which are unloaded first.
    void ReapplyTemplate();

    // Stands in the template's presenter; without one in the control itself.
    const std::shared_ptr<FrameworkElement>& Content() const { return m_pContent; }
    void Content(std::shared_ptr<FrameworkElement> pContent);

protected:
    virtual void OnApplyTemplate() {}
    std::shared_ptr<FrameworkElement> GetTemplateChild(const std::string& strName);
    void RemoveTemplate();
    std::string DefaultStyleKey;

private:
    void ShowContent();

    std::shared_ptr<FrameworkElement> m_pTemplateRoot;
    std::shared_ptr<FrameworkElement> m_pContent;
    bool m_bTemplateApplied = false;
};

// The control whose content this element is; empty for any other element.
std::shared_ptr<ContentControl> ContentOwnerOf(const FrameworkElement& element);

enum class TextRole { Body, Title, Alert }; // an alert is spoken when it comes up

class TextBlock : public FrameworkElement {
public:
    explicit TextBlock(TextRole eRole = TextRole::Body) : m_eRole(eRole) {}
    TextRole Role() const { return m_eRole; }
    const std::string& Text() const { return m_strText; }
    void Text(const std::string& strText);

private:
    const TextRole m_eRole;
    std::string m_strText;
};

}

// How an element came to have the keys.
enum class FocusState { Unfocused = 0, Pointer = 1, Keyboard = 2, Programmatic = 3 };

namespace Controls {

// An element that can have the keys.
class Control : public FrameworkElement {
public:
    bool IsTabStop() const { return m_bTabStop; } // whether Tab comes to it
    void IsTabStop(bool bTabStop) { m_bTabStop = bTabStop; }

    Xaml::FocusState FocusState() const;
    // Takes the keys; false where it cannot: not shown, not loaded, in no window.
    bool Focus(Xaml::FocusState eState);

private:
    bool m_bTabStop = true;
};

class Button : public Control {
public:
    const std::type_info& PresenterType() const override { return typeid(Button); }
    const std::string& Text() const { return m_strText; }
    void Text(const std::string& strText);
    // The one that carries on; drawn with weight.
    bool IsAccent() const { return m_bAccent; }
    void IsAccent(bool bAccent) { m_bAccent = bAccent; }
    virtual bool IsDrawn() const { return true; }

    Foundation::Event<> Click;

private:
    std::string m_strText;
    bool m_bAccent = false;
};

// A box for a secret, whose letters are not shown.
class PasswordBox : public Control {
public:
    const Platform::SecretText& Password() const { return m_password; }
    void Password(Platform::SecretText password);

    const std::string& PlaceholderText() const { return m_strHint; }
    void PlaceholderText(const std::string& strText) { m_strHint = strText; }

    // For the toolkit: what the reader has typed, and how often code has set it.
    void TakeTyped(Platform::SecretText password) { m_password = std::move(password); }
    Foundation::Event<> PasswordSet;

private:
    Platform::SecretText m_password;
    std::string m_strHint;
};

}

}
