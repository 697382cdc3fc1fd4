#include "platform/qt/QtElementTree.h"

#include <QFocusEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/qt/QtPresenters_p.h"
#include "platform/ui/Input.h"
#include "platform/ui/Popup.h"

namespace Platform::Qt {

namespace Xaml = Windows::UI::Xaml;
using Windows::Foundation::Point;
using Windows::Foundation::Size;
using Windows::System::VirtualKey;
using Windows::UI::Core::CoreCursorType;
using Xaml::Controls::Primitives::Popup;

namespace {

constexpr int kMostRounds = 8; // of a tree that changes with its widgets

std::int32_t VirtualKeyOf(int nKey) {
    switch (nKey) {
        case ::Qt::Key_Return:
        case ::Qt::Key_Enter:
            return VirtualKey::Enter;
        case ::Qt::Key_Escape:
            return VirtualKey::Escape;
        case ::Qt::Key_Tab:
            return VirtualKey::Tab;
        default:
            // Letters and digits bear the same numbers in both.
            return nKey >= ::Qt::Key_0 && nKey <= ::Qt::Key_Z ? nKey : 0;
    }
}

bool IsBack(const QKeyEvent& event) {
    return event.key() == ::Qt::Key_Escape || event.key() == ::Qt::Key_Back ||
           (event.key() == ::Qt::Key_Left && event.modifiers() == ::Qt::AltModifier);
}

Xaml::FocusState StateOf(::Qt::FocusReason eReason) {
    switch (eReason) {
        case ::Qt::MouseFocusReason:
            return Xaml::FocusState::Pointer;
        case ::Qt::TabFocusReason:
        case ::Qt::BacktabFocusReason:
            return Xaml::FocusState::Keyboard;
        default:
            return Xaml::FocusState::Programmatic;
    }
}

}

QtElementTree::QtElementTree(QWidget& window, std::shared_ptr<ElementWindow> pWindow,
                             const FailureSink& failures)
    : m_window(window), m_pWindow(std::move(pWindow)), m_failures(failures) {
    RegisterPresenters(*this);
    // An event that is being raised still calls those that were removed meanwhile.
    const std::weak_ptr<int> wkAlive = m_pAlive;
    m_layoutToken = m_pWindow->Content()->LayoutUpdated.add([this, wkAlive] {
        if (!wkAlive.expired()) {
            Update();
        }
    });
    m_focusToken = m_pWindow->FocusMoved.add([this, wkAlive] {
        if (!wkAlive.expired()) {
            MoveFocus();
        }
    });
    m_cursorToken = m_pWindow->PointerCursorChanged.add([this, wkAlive] {
        if (!wkAlive.expired()) {
            ShowWaiting(m_pWindow->PointerCursor() == CoreCursorType::Wait);
        }
    });
}

QtElementTree::~QtElementTree() {
    m_pWindow->Content()->LayoutUpdated.remove(m_layoutToken);
    m_pWindow->FocusMoved.remove(m_focusToken);
    m_pWindow->PointerCursorChanged.remove(m_cursorToken);
    ShowWaiting(false);
}

void QtElementTree::Register(const std::type_info& type, PresenterFactory fnMake) {
    m_factories[type] = std::move(fnMake);
}

void QtElementTree::SetScale(double dbX, double dbY) {
    m_dbScaleX = dbX;
    m_dbScaleY = dbY;
}

Size QtElementTree::ToLogical(QSizeF size) const {
    return {static_cast<float>(size.width() * m_dbScaleX),
            static_cast<float>(size.height() * m_dbScaleY)};
}

QRect QtElementTree::ToQt(QPointF pt, const Element& element) const {
    const QPointF ptFrom(pt.x() / m_dbScaleX, pt.y() / m_dbScaleY);
    const QPointF ptTo((pt.x() + element.ActualWidth()) / m_dbScaleX,
                       (pt.y() + element.ActualHeight()) / m_dbScaleY);
    return QRectF(ptFrom, ptTo).toRect();
}

// --- the tree --------------------------------------------------------------

// What a new widget tells of its size changes the layout, which calls this again.
void QtElementTree::Update() {
    m_bAgain = true;
    if (m_bUpdating) {
        return;
    }
    m_bUpdating = true;
    const std::weak_ptr<int> wkAlive = m_pAlive; // handlers of sizes may take this away
    for (int nRound = 0; nRound < kMostRounds && std::exchange(m_bAgain, false); ++nRound) {
        UpdateOnce();
        if (wkAlive.expired()) {
            return;
        }
    }
    m_bUpdating = false;
}

void QtElementTree::UpdateOnce() {
    ++m_nRound;
    m_bMade = false;
    Visit(m_pWindow->Content(), {&m_window, {}, true});
    DropUnseen();
    if (m_bMade) { // now they know their sizes
        m_failures.Run([pRoot = m_pWindow->Content()] { pRoot->InvalidateLayout(); });
    }
}

void QtElementTree::Visit(const std::shared_ptr<Element>& pElement, const Place& place) {
    const Point pt = pElement->PositionInParent();
    Place inner{place.pWidget, place.pt + QPointF(pt.X, pt.Y),
                place.bVisible && pElement->Visibility() == Xaml::Visibility::Visible};
    if (Presented* const pPresented = FindOrMake(pElement, *place.pWidget)) {
        pPresented->nSeen = m_nRound;
        pPresented->pPresenter->Show(ToQt(inner.pt, *pElement), inner.bVisible);
        if (QWidget* const pWidget = pPresented->pPresenter->Widget()) {
            inner = {pWidget, {}, inner.bVisible};
        }
    }
    const auto children = pElement->Children();
    for (const auto& pChild : children) {
        Visit(pChild, inner);
    }
}

QtElementTree::Presented* QtElementTree::FindOrMake(const std::shared_ptr<Element>& pElement,
                                                    QWidget& parent) {
    const auto it = m_presented.find(pElement.get());
    if (it != m_presented.end() && it->second.pParent == &parent) {
        return &it->second;
    }
    const auto itFactory = m_factories.find(pElement->PresenterType());
    auto pPresenter =
        itFactory == m_factories.end() ? nullptr : itFactory->second(*this, pElement, parent);
    if (!pPresenter) {
        return nullptr;
    }
    m_bMade = true;
    m_presented.erase(pElement.get());
    return &m_presented
                .emplace(pElement.get(),
                         Presented{pElement, &parent, std::move(pPresenter), m_nRound})
                .first->second;
}

void QtElementTree::DropUnseen() {
    std::vector<Presented> gone; // their end may call here
    for (auto it = m_presented.begin(); it != m_presented.end();) {
        const bool bGone = it->second.nSeen != m_nRound;
        if (bGone) {
            gone.push_back(std::move(it->second));
        }
        it = bGone ? m_presented.erase(it) : std::next(it);
    }
    const auto bHadKeys = std::any_of(gone.begin(), gone.end(), [](const Presented& presented) {
        const QWidget* const pWidget = presented.pPresenter->Widget();
        return pWidget != nullptr && pWidget->hasFocus();
    });
    if (bHadKeys) { // before Qt gives them to whatever comes next
        m_window.setFocus(::Qt::OtherFocusReason);
    }
}

void QtElementTree::ShowWaiting(bool bWaiting) {
    if (std::exchange(m_bWaiting, bWaiting) == bWaiting) {
        return;
    }
    if (bWaiting) {
        QGuiApplication::setOverrideCursor(::Qt::WaitCursor);
    } else {
        QGuiApplication::restoreOverrideCursor();
    }
}

// --- keys ------------------------------------------------------------------

IElementPresenter* QtElementTree::OpenPopup() const {
    const auto it = std::find_if(m_presented.begin(), m_presented.end(), [](const auto& entry) {
        const auto* const pPopup = dynamic_cast<const Popup*>(entry.first);
        return pPopup != nullptr && pPopup->IsOpen() && pPopup->IsShown();
    });
    return it == m_presented.end() ? nullptr : it->second.pPresenter.get();
}

void QtElementTree::FocusPopup() {
    IElementPresenter* const pPopup = OpenPopup();
    if (pPopup != nullptr && m_pWindow->FocusedElement()) {
        MoveFocus();
    } else if (pPopup != nullptr) {
        pPopup->TakeKeys();
    }
}

void QtElementTree::MoveFocus() {
    const auto pFocused = m_pWindow->FocusedElement();
    const auto it = m_presented.find(pFocused.get());
    if (it == m_presented.end() || m_bMovingFocus) {
        return;
    }
    m_bMovingFocus = true;
    it->second.pPresenter->TakeKeys();
    m_bMovingFocus = false;
}

// Keys that go to another window, or to a menu of the widget's own, come back.
void QtElementTree::OnFocus(const std::shared_ptr<Control>& pElement, const QEvent& event) {
    const auto eReason = static_cast<const QFocusEvent&>(event).reason();
    if (eReason == ::Qt::ActiveWindowFocusReason || eReason == ::Qt::PopupFocusReason) {
        return;
    }
    if (event.type() == QEvent::FocusOut) {
        m_pWindow->LoseFocus(*pElement);
    } else if (!m_bMovingFocus) {
        m_failures.Run([&] { m_pWindow->Focus(pElement, StateOf(eReason)); });
    }
}

bool QtElementTree::OnKey(const std::shared_ptr<Element>& pElement, const QKeyEvent& event) {
    const auto pWindow = m_pWindow; // a handler may take this away
    const bool bBack = IsBack(event);
    bool bTaken = false;
    m_failures.Run([&] {
        bTaken = pWindow->PressKey(pElement, VirtualKeyOf(event.key()));
        if (!bTaken && bBack) {
            bTaken = pWindow->RequestBack();
        }
    });
    return bTaken;
}

void QtElementTree::OnBack() {
    m_failures.Run([pWindow = m_pWindow] { pWindow->RequestBack(); });
}

void QtElementTree::OnTapped(const std::shared_ptr<Element>& pElement, QPointF pt) {
    Xaml::Input::TappedRoutedEventArgs args;
    args.Position = {static_cast<float>(pt.x() * m_dbScaleX),
                     static_cast<float>(pt.y() * m_dbScaleY)};
    args.OriginalSource = pElement;
    m_failures.Run([&] {
        for (auto pAt = pElement; pAt && !args.Handled; pAt = pAt->Parent()) {
            if (const auto pPanel = std::dynamic_pointer_cast<Xaml::Controls::Panel>(pAt)) {
                pPanel->Tapped.raise(args);
            }
        }
    });
}

}
