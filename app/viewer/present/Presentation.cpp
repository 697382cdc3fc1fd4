#include "app/viewer/present/Presentation.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <cstdlib>
#include <utility>

#include "app/viewer/WindowParts.h"
#include "app/viewer/present/StayAwake.h"
#include "platform/qt/QtElementWindow.h"
#include "widget/text/ViewSelection.h"

namespace velko::viewer {

using vkit::VelkoPdfView;

namespace {

constexpr int kPointerMs = 2'000; // it stays so long where it rests
constexpr int kNotch = 120;       // of a wheel
constexpr int kMostTyped = 6;

}

Presentation::Presentation(VelkoPdfView& view, WindowParts& parts, QWidget* pWindow,
                           std::function<bool(const QKeySequence&)> fnIsCommand)
    : QObject(pWindow),
      m_view(view),
      m_parts(parts),
      m_pWindow(pWindow),
      m_fnIsCommand(std::move(fnIsCommand)) {
    m_pointerTimer.setSingleShot(true);
    m_pointerTimer.setInterval(kPointerMs);
    m_pointerTimer.callOnTimeout(this, [this] { m_view.HidePointer(true); });
    connect(&m_view, &VelkoPdfView::LinkHovered, this,
            [this](const QString& strTarget) { m_bOverLink = !strTarget.isEmpty(); });
    connect(&m_view, &VelkoPdfView::StateChanged, this, [this](VelkoPdfView::State eState) {
        if (IsOn() && eState != VelkoPdfView::State::Shown) {
            End();
        }
    });
}

Presentation::~Presentation() = default;

void Presentation::Begin() {
    if (IsOn() || m_view.ViewState() != VelkoPdfView::State::Shown) {
        return;
    }
    m_before =
        Before{m_view.LayoutMode(), m_view.FitMode(), m_view.Zoom(), m_pWindow->isFullScreen()};
    m_pAwake = std::make_unique<StayAwake>(QStringLiteral("A presentation"));
    m_strTyped.clear();
    m_nWheel = 0;
    QEvent lost(QEvent::UngrabMouse); // a drag that is under way ends here
    QCoreApplication::sendEvent(&m_view.Window(), &lost);
    m_view.Selection().Clear();
    m_view.HoldPlace(true);
    m_view.SetSurround(Qt::black);
    m_view.SetLayoutMode(VelkoPdfView::Layout::SinglePage);
    m_view.SetFit(VelkoPdfView::Fit::Page);
    m_view.Window().installEventFilter(this); // anew each time: it is asked first
    m_pWindow->installEventFilter(this);
    m_parts.SetPagesOnly(true);
    m_pWindow->setWindowState(m_pWindow->windowState() | Qt::WindowFullScreen);
    m_view.setFocus();
    ShowPointer();
    emit Changed();
}

void Presentation::End() {
    if (!IsOn()) {
        return;
    }
    const Before before = *std::exchange(m_before, std::nullopt);
    m_view.Window().removeEventFilter(this);
    m_pWindow->removeEventFilter(this);
    m_pointerTimer.stop();
    m_view.HidePointer(false);
    m_pAwake.reset();
    Cover({});
    m_view.SetSurround(std::nullopt);
    m_parts.SetPagesOnly(false);
    if (!before.bFullScreen) {
        m_pWindow->setWindowState(m_pWindow->windowState() & ~Qt::WindowFullScreen);
    }
    if (m_view.ViewState() == VelkoPdfView::State::Shown) {
        ShowBefore(before);
    }
    m_view.HoldPlace(false);
    emit Changed();
}

void Presentation::ShowBefore(const Before& before) {
    m_view.SetLayoutMode(before.eLayout);
    if (before.eLayout == VelkoPdfView::Layout::Text) {
        return; // its size is its own
    }
    if (before.eFit != VelkoPdfView::Fit::None) {
        m_view.SetFit(before.eFit);
    } else {
        m_view.ZoomTo(before.dbZoom);
    }
}

// --- input -----------------------------------------------------------------

bool Presentation::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == m_pWindow) {
        if (pEvent->type() == QEvent::WindowStateChange && !m_pWindow->isFullScreen()) {
            End(); // by the desktop
        }
        return false;
    }
    switch (pEvent->type()) {
        case QEvent::ShortcutOverride: // else commands of the window would take the keys
            if (!m_fnIsCommand(QKeySequence(static_cast<QKeyEvent*>(pEvent)->keyCombination()))) {
                pEvent->accept();
            }
            return true;
        case QEvent::KeyPress:
            return OnKey(*static_cast<QKeyEvent*>(pEvent));
        case QEvent::MouseMove:
            ShowPointer();
            return false;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            return OnMouse(*static_cast<QMouseEvent*>(pEvent));
        case QEvent::Wheel:
            return OnWheel(*static_cast<QWheelEvent*>(pEvent));
        case QEvent::ContextMenu:
            return true;
        default:
            return false;
    }
}

bool Presentation::OnKey(const QKeyEvent& event) {
    const int nKey = event.key();
    if (nKey >= Qt::Key_0 && nKey <= Qt::Key_9) {
        m_strTyped = m_strTyped.right(kMostTyped - 1) + QChar('0' + nKey - Qt::Key_0);
        return true;
    }
    const QString strTyped = std::exchange(m_strTyped, {});
    switch (nKey) {
        case Qt::Key_Escape:
            m_pCover ? Cover({}) : End();
            return true;
        case Qt::Key_B:
        case Qt::Key_Period:
            Cover(Qt::black);
            return true;
        case Qt::Key_W:
        case Qt::Key_Comma:
            Cover(Qt::white);
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!strTyped.isEmpty()) {
                Cover({});
                m_view.JumpToPage(strTyped.toInt() - 1);
                return true;
            }
            break;
        default:
            break;
    }
    OnStepKey(event);
    return true; // nothing else is done meanwhile
}

void Presentation::OnStepKey(const QKeyEvent& event) {
    const bool bShift = event.modifiers().testFlag(Qt::ShiftModifier);
    switch (event.key()) {
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Step(bShift ? -1 : 1);
            break;
        case Qt::Key_PageDown:
        case Qt::Key_Right:
        case Qt::Key_Down:
        case Qt::Key_N:
        case Qt::Key_J:
            Step(1);
            break;
        case Qt::Key_PageUp:
        case Qt::Key_Left:
        case Qt::Key_Up:
        case Qt::Key_P:
        case Qt::Key_K:
        case Qt::Key_Backspace:
            Step(-1);
            break;
        case Qt::Key_Home:
        case Qt::Key_End:
            Cover({});
            event.key() == Qt::Key_Home ? m_view.GotoFirstPage() : m_view.GotoLastPage();
            break;
        default:
            break;
    }
}

// A link is the pages' to follow.
bool Presentation::OnMouse(const QMouseEvent& event) {
    const bool bLeft = event.button() == Qt::LeftButton;
    if (bLeft && m_bOverLink && !m_pCover) {
        return false;
    }
    if (bLeft || event.button() == Qt::RightButton) {
        Step(bLeft ? 1 : -1);
    }
    return true;
}

bool Presentation::OnWheel(const QWheelEvent& event) {
    m_nWheel += event.angleDelta().y();
    const int nNotches = m_nWheel / kNotch;
    m_nWheel -= nNotches * kNotch;
    if (nNotches != 0) {
        Step(-nNotches);
    }
    return true;
}

// From the black or the white it goes back to the page that was shown.
void Presentation::Step(int nPages) {
    if (m_pCover) {
        Cover({});
    } else {
        for (int n = 0; n < std::abs(nPages); ++n) {
            nPages > 0 ? m_view.GotoNextPage() : m_view.GotoPrevPage();
        }
    }
}

void Presentation::Cover(const QColor& color) {
    const bool bShown = m_pCover && m_pCover->palette().window().color() == color;
    delete m_pCover;
    if (bShown || !color.isValid()) {
        return;
    }
    m_pCover = new QWidget(&m_view);
    m_pCover->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_pCover->setAutoFillBackground(true);
    m_pCover->setPalette(color);
    m_pCover->setGeometry(m_view.rect());
    m_pCover->show();
}

void Presentation::ShowPointer() {
    m_view.HidePointer(false);
    m_pointerTimer.start();
}

}
