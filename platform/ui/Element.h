// The element tree: what a control is made of and how it hears of its place.
//
// Elements are plain objects. A window of a toolkit hosts one root element,
// gives it a size and raises `Loaded` when the tree is shown. It attaches a native
// object to the elements that need one (`SwapChainPanel`), which tells how large
// the element is by itself; where each stands is decided here. A child fills its
// parent unless it says otherwise. What changes the layout is in force when the
// call that changed it returns.
// Units: logical, but for margins, paddings and spacings, which are 96ths of an
// inch. Threads: the UI thread only. Parents own children; the link to the parent
// is weak.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

#include "platform/foundation/Event.h"
#include "platform/foundation/Geometry.h"

namespace Windows::UI::Xaml {

class Window;
namespace Input {
struct KeyRoutedEventArgs;
}
namespace Media {
class TranslateTransform;
}

enum class Visibility { Visible = 0, Collapsed = 1 };
enum class HorizontalAlignment { Left, Center, Right, Stretch };
enum class VerticalAlignment { Top, Center, Bottom, Stretch };

// Room around something, 96ths of an inch.
struct Thickness {
    double Left = 0.0;
    double Top = 0.0;
    double Right = 0.0;
    double Bottom = 0.0;
};

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

    // Whether it and all that it stands in are visible.
    bool IsShown() const;

    std::shared_ptr<FrameworkElement> Parent() const { return m_wkParent.lock(); }
    const std::vector<std::shared_ptr<FrameworkElement>>& Children() const { return m_children; }
    // The child leaves the parent that it has and takes its place here. An
    // empty child and one that this element stands in are invalid arguments.
    void AppendChild(std::shared_ptr<FrameworkElement> pChild);
    // Before the child of that index, or as the last one.
    void InsertChild(std::size_t nIndex, std::shared_ptr<FrameworkElement> pChild);
    void RemoveChild(const std::shared_ptr<FrameworkElement>& pChild);

    // The topmost element that this one stands in, or itself.
    std::shared_ptr<FrameworkElement> Root();

    // Which presenter of a toolkit's window shows it; by default the one of its own
    // class, if there is one. What has none is seen by what stands in it.
    virtual const std::type_info& PresenterType() const { return typeid(*this); }

    // --- its place in the parent ---
    void Width(std::optional<double> width); // empty: what the layout gives
    void Height(std::optional<double> height);
    void HorizontalAlignment(Xaml::HorizontalAlignment eAlignment);
    void VerticalAlignment(Xaml::VerticalAlignment eAlignment);
    void Margin(const Thickness& margin);

    // Moves what is drawn, and what stands in it, and leaves the layout as it is.
    const std::shared_ptr<Media::TranslateTransform>& RenderTransform() const {
        return m_pRenderTransform;
    }
    void RenderTransform(std::shared_ptr<Media::TranslateTransform> pTransform);

    // Set by the toolkit: how large its contents are within a width. Empty: as large as
    // the children need.
    using Measurer = std::function<Foundation::Size(float fWidthLimit)>;
    void NaturalSize(Measurer fnMeasure) { m_fnNaturalSize = std::move(fnMeasure); }

    // The size that it wants within a width, margin included; nothing while collapsed.
    Foundation::Size Measure(float fWidthLimit) const;
    // False for what lies over its parent: the others stand as if it were not there.
    virtual bool TakesRoom() const { return true; }
    // Lays the whole tree out anew; done by whatever changes the layout.
    void InvalidateLayout();
    // On a root: places, sizes or the tree have changed, or may have.
    Foundation::Event<> LayoutUpdated;

    // What a screen reader calls it; empty: its text.
    const std::string& AutomationName() const { return m_strAutomationName; }
    void AutomationName(const std::string& strName) { m_strAutomationName = strName; }

    double ActualWidth() const { return m_size.Width; }
    double ActualHeight() const { return m_size.Height; }

    // Gives a root its size; children follow. Raises `SizeChanged` on each
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

    // The window whose content this root is; set by the window.
    void HostWindow(std::weak_ptr<Window> wkWindow) { m_wkWindow = std::move(wkWindow); }
    std::shared_ptr<Window> HostWindow() const { return m_wkWindow.lock(); }

    // The element of this name here or below; empty when there is none.
    std::shared_ptr<FrameworkElement> FindName(const std::string& strName);

    // Of this element's origin, transforms included; logical units.
    Foundation::Point PositionInWindow() const;
    Foundation::Point PositionInParent() const;
    // Adds this to the place that the layout gives; for a root in its window.
    void PositionInParent(Foundation::Point pt) { m_ptInParent = pt; }

    Foundation::Event<> Loaded;
    Foundation::Event<> Unloaded;
    Foundation::Event<const SizeChangedEventArgs&> SizeChanged;
    Foundation::Event<Xaml::Visibility> VisibilityChanged;
    // A key went down on this element or one in it, and none of those took it.
    Foundation::Event<Input::KeyRoutedEventArgs&> KeyDown;

protected:
    FrameworkElement(Xaml::HorizontalAlignment eHorizontal, Xaml::VerticalAlignment eVertical)
        : m_eHorizontal(eHorizontal), m_eVertical(eVertical) {}

    // One element whose size an arrangement changed.
    struct SizeStep {
        std::shared_ptr<FrameworkElement> pElement;
        SizeChangedEventArgs args;
    };
    using SizeSteps = std::vector<SizeStep>;

    // The two halves of `Arrange`: sizes down the tree, then the events.
    static void TakeSize(FrameworkElement& element, Foundation::Size size, SizeSteps& steps);
    static void RaiseSizeChanged(const SizeSteps& steps);

    // What the contents need within a width, and the places of the children in a
    // size, for a class that lays out in its own way.
    virtual Foundation::Size MeasureContents(float fWidthLimit) const;
    virtual void ArrangeContents(Foundation::Size size, SizeSteps& steps);
    static void ArrangeIn(const Foundation::Rect& rcSlot, FrameworkElement& element,
                          SizeSteps& steps);
    // False keeps it and what stands in it from being loaded.
    virtual bool IsToBeLoaded() const { return true; }
    void LoadIfInLoadedTree();

private:
    Foundation::Size SizeIn(Foundation::Size slot) const;
    void LeaveParent();
    bool IsAtOrAbove(const FrameworkElement& element) const;
    std::shared_ptr<FrameworkElement> FirstChildNotLoaded() const;

    std::string m_strName;
    Xaml::Visibility m_eVisibility = Xaml::Visibility::Visible;
    std::weak_ptr<FrameworkElement> m_wkParent;
    std::vector<std::shared_ptr<FrameworkElement>> m_children;
    Foundation::Size m_size;
    Foundation::Point m_ptInParent; // as the host says
    Foundation::Point m_ptLayout;   // as the layout says
    std::optional<double> m_width;
    std::optional<double> m_height;
    Xaml::HorizontalAlignment m_eHorizontal = Xaml::HorizontalAlignment::Stretch;
    Xaml::VerticalAlignment m_eVertical = Xaml::VerticalAlignment::Stretch;
    Thickness m_margin;
    std::shared_ptr<Media::TranslateTransform> m_pRenderTransform;
    Measurer m_fnNaturalSize;
    std::string m_strAutomationName;
    std::weak_ptr<Window> m_wkWindow;
    bool m_bLoaded = false;
};

namespace Media {

// A movement, logical units. Fixed once an element has it; another takes its place.
class TranslateTransform {
public:
    double X() const { return m_dbX; }
    double Y() const { return m_dbY; }
    void X(double dbX) { m_dbX = dbX; }
    void Y(double dbY) { m_dbY = dbY; }

private:
    double m_dbX = 0.0;
    double m_dbY = 0.0;
};

}

}
