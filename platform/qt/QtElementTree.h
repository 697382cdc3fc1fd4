// The elements of a window as widgets: keeps a presenter for each element that has
// one, by a map from the element's class to what makes its presenter.
//
// Lifetime: belongs to the window that hosts the tree, and goes before it.
// Units: elements have logical units, widgets Qt's; `Scale...` leads from Qt's.
// Threads: UI thread only. Errors: handlers' failures go to the sink.
#pragma once

#include <QPoint>
#include <QPointF>
#include <QSize>
#include <map>
#include <memory>
#include <typeindex>
#include <unordered_map>
#include <vector>

#include "platform/foundation/FailureSink.h"
#include "platform/foundation/Geometry.h"
#include "platform/qt/IElementPresenter.h"
#include "platform/ui/Controls.h"
#include "platform/ui/Window.h"

class QEvent;
class QKeyEvent;

namespace Platform::Qt {

class QtElementTree {
public:
    using Element = Windows::UI::Xaml::FrameworkElement;
    using Control = Windows::UI::Xaml::Controls::Control;
    using ElementWindow = Windows::UI::Xaml::Window;

    // `window` is the widget around everything. Knows the presenters of all elements
    // that need a widget; the others are to be registered before the first `Update`.
    QtElementTree(QWidget& window, std::shared_ptr<ElementWindow> pWindow,
                  const FailureSink& failures);
    ~QtElementTree();
    QtElementTree(const QtElementTree&) = delete;
    QtElementTree& operator=(const QtElementTree&) = delete;

    void Register(const std::type_info& type, PresenterFactory fnMake);

    // How many logical units an own unit of Qt is.
    void SetScale(double dbX, double dbY);

    // Makes, places and drops presenters for the tree as it is.
    void Update();

    // Gives the keys to what lies over the pages, if something does.
    void FocusPopup();

    // --- for presenters ---
    ElementWindow& View() const { return *m_pWindow; }
    const FailureSink& Failures() const { return m_failures; }
    Windows::Foundation::Size ToLogical(QSizeF size) const;
    double ToQtWidth(float fLogical) const { return static_cast<double>(fLogical) / m_dbScaleX; }
    // The keys come to the element's widget or leave it.
    void OnFocus(const std::shared_ptr<Control>& pElement, const QEvent& event);
    // True when the key was taken, or the request to go back that it stands for.
    bool OnKey(const std::shared_ptr<Element>& pElement, const QKeyEvent& event);
    void OnTapped(const std::shared_ptr<Element>& pElement, QPointF pt);
    void OnBack();

private:
    struct Presented {
        std::shared_ptr<Element> pElement;
        QWidget* pParent = nullptr; // that it was made for
        std::unique_ptr<IElementPresenter> pPresenter;
        unsigned nSeen = 0;
    };
    struct Place {
        QWidget* pWidget;
        QPointF pt; // logical, of the parent element in that widget
        bool bVisible;
    };

    void UpdateOnce();
    void Visit(const std::shared_ptr<Element>& pElement, const Place& place);
    Presented* FindOrMake(const std::shared_ptr<Element>& pElement, QWidget& parent);
    void DropUnseen();
    IElementPresenter* OpenPopup() const; // null: nothing lies over the pages
    void MoveFocus();
    void ShowWaiting(bool bWaiting);
    QRect ToQt(QPointF pt, const Element& element) const;

    QWidget& m_window;
    const std::shared_ptr<ElementWindow> m_pWindow;
    const FailureSink& m_failures;
    std::unordered_map<std::type_index, PresenterFactory> m_factories;
    std::map<const Element*, Presented> m_presented;
    Windows::Foundation::EventRegistrationToken m_layoutToken;
    Windows::Foundation::EventRegistrationToken m_focusToken;
    Windows::Foundation::EventRegistrationToken m_cursorToken;
    double m_dbScaleX = 1.0;
    double m_dbScaleY = 1.0;
    unsigned m_nRound = 0;
    bool m_bMade = false; // a presenter, in this round
    bool m_bUpdating = false;
    bool m_bAgain = false;
    bool m_bMovingFocus = false;
    bool m_bWaiting = false; // the program's pointer says so
    const std::shared_ptr<int> m_pAlive = std::make_shared<int>();
};

}
