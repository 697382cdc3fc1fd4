// The element tree: what a control is made of and how it hears of its place.
//
// Elements are plain objects. A window of a toolkit hosts one root element,
// gives it a size and raises `Loaded` when the tree is shown; children fill
// their parent. A toolkit attaches a native object to the elements that need
// one (`SwapChainPanel`).
// Units: logical. Threads: the UI thread only. Parents own children; the link
// to the parent is weak.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/foundation/Event.h"
#include "platform/foundation/Geometry.h"

namespace Windows::UI::Xaml {

enum class Visibility { Visible = 0, Collapsed = 1 };

struct SizeChangedEventArgs {
    Foundation::Size PreviousSize;
    Foundation::Size NewSize;
};

class FrameworkElement : public std::enable_shared_from_this<FrameworkElement> {
public:
    FrameworkElement() = default;
    virtual ~FrameworkElement() = default;
    FrameworkElement(const FrameworkElement&) = delete;
    FrameworkElement& operator=(const FrameworkElement&) = delete;

    const std::string& Name() const { return m_strName; }
    void Name(const std::string& strName) { m_strName = strName; }

    Xaml::Visibility Visibility() const { return m_eVisibility; }
    void Visibility(Xaml::Visibility eVisibility);

    std::shared_ptr<FrameworkElement> Parent() const { return m_wkParent.lock(); }
    const std::vector<std::shared_ptr<FrameworkElement>>& Children() const { return m_children; }
    // The child leaves the parent that it has and takes this element's size. An
    // empty child and one that this element stands in are invalid arguments.
    void AppendChild(std::shared_ptr<FrameworkElement> pChild);
    void RemoveChild(const std::shared_ptr<FrameworkElement>& pChild);

    double ActualWidth() const { return m_size.Width; }
    double ActualHeight() const { return m_size.Height; }

    // Gives the element its size; children follow. Raises `SizeChanged` on each
    // element whose size differs, parents before children. A negative size is
    // an invalid argument.
    // All sizes are in force before the first handler runs; a handler that
    // fails keeps none of the others from running, and its failure is raised
    // at the end.
    void Arrange(Foundation::Size size);

    // Called by the host of the tree: children before parents for `Loaded`,
    // parents before children for `Unloaded`. An element that joins a loaded
    // tree is loaded with it. Failing handlers as for `Arrange`.
    void RaiseLoaded();
    void RaiseUnloaded();
    bool IsLoaded() const { return m_bLoaded; }

    // The element of this name here or below; empty when there is none.
    std::shared_ptr<FrameworkElement> FindName(const std::string& strName);

    // Position of this element's origin in the window, logical units.
    virtual Foundation::Point PositionInWindow() const;
    void PositionInParent(Foundation::Point pt) { m_ptInParent = pt; }

    Foundation::Event<> Loaded;
    Foundation::Event<> Unloaded;
    Foundation::Event<const SizeChangedEventArgs&> SizeChanged;
    Foundation::Event<Xaml::Visibility> VisibilityChanged;

protected:
    // One element whose size an arrangement changed.
    struct SizeStep {
        std::shared_ptr<FrameworkElement> pElement;
        SizeChangedEventArgs args;
    };
    using SizeSteps = std::vector<SizeStep>;

    // The two halves of `Arrange`: sizes down the tree, then the events.
    static void TakeSize(FrameworkElement& element, Foundation::Size size, SizeSteps& steps);
    static void RaiseSizeChanged(const SizeSteps& steps);

private:
    bool IsAtOrAbove(const FrameworkElement& element) const;
    std::shared_ptr<FrameworkElement> FirstChildNotLoaded() const;

    std::string m_strName;
    Xaml::Visibility m_eVisibility = Xaml::Visibility::Visible;
    std::weak_ptr<FrameworkElement> m_wkParent;
    std::vector<std::shared_ptr<FrameworkElement>> m_children;
    Foundation::Size m_size;
    Foundation::Point m_ptInParent;
    bool m_bLoaded = false;
};

namespace Controls {

// A panel whose children lie over each other, all as large as the panel.
class Grid : public FrameworkElement {};

class ProgressRing : public FrameworkElement {};

class UserControl : public FrameworkElement {
public:
    std::shared_ptr<FrameworkElement> Content() const;
    void Content(std::shared_ptr<FrameworkElement> pContent);
};

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

protected:
    virtual void OnApplyTemplate() {}
    std::shared_ptr<FrameworkElement> GetTemplateChild(const std::string& strName);
    void RemoveTemplate();
    std::string DefaultStyleKey;

private:
    std::shared_ptr<FrameworkElement> m_pTemplateRoot;
    bool m_bTemplateApplied = false;
};

}

}
