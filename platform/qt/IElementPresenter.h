// Shows one element of a tree in a window of Qt, as a widget or within the window.
//
// The window makes one for each element whose class it knows a presenter of, places
// it after each layout, and lets go of it when the element leaves the tree. A
// presenter passes on what the reader does; a handler may take it away meanwhile,
// and the window too.
// Units: Qt's. Threads: UI thread only. Errors: none are raised.
#pragma once

#include <QRect>
#include <functional>
#include <memory>

class QWidget;
namespace Windows::UI::Xaml {
class FrameworkElement;
}

namespace Platform::Qt {

class QtElementTree;

class IElementPresenter {
public:
    virtual ~IElementPresenter() = default;

    // In which the widgets of what stands in the element are; null: there is none.
    virtual QWidget* Widget() const = 0;

    // The element's place in the widget around it, what it holds, and whether it is to
    // be seen.
    virtual void Show(const QRect& rc, bool bVisible) = 0;

    // The element has got the keys.
    virtual void TakeKeys() {}
};

// Null for an element of that class that needs none.
using PresenterFactory = std::function<std::unique_ptr<IElementPresenter>(
    QtElementTree& tree, const std::shared_ptr<Windows::UI::Xaml::FrameworkElement>& pElement,
    QWidget& parent)>;

}
