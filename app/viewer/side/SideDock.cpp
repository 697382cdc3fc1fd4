#include "app/viewer/side/SideDock.h"

#include <QEvent>
#include <algorithm>
#include <utility>

#include "app/viewer/ViewerSettings.h"
#include "platform/qt/QtElementWindow.h"

namespace velko::viewer {

namespace {

constexpr int kNarrowWindow = 640;
constexpr int kLeastWidth = 160;
constexpr int kLeastPages = 120; // that are to be seen beside it
constexpr int kKeepMs = 400;     // a drag is kept when it has come to rest

}

SideDock::SideDock(vkit::VelkoPdfView& view, WindowParts& parts, QWidget* pWindow)
    : QObject(pWindow),
      m_view(view),
      m_parts(parts),
      m_pWindow(pWindow),
      m_pPanel(new SidePanel(pWindow)),
      m_nWidth(ViewerSettings::SideWidth()),
      m_bBeside(ViewerSettings::ShowsSide()) {
    m_pPanel->hide();
    m_keepWidth.setSingleShot(true);
    m_keepWidth.setInterval(kKeepMs);
    m_keepWidth.callOnTimeout(this, [this] { ViewerSettings::KeepSideWidth(m_nWidth); });
    m_parts.SetSide(m_pPanel, [this](QSize window) { return Room(window); });
    m_view.Window().installEventFilter(this);
    m_pWindow->installEventFilter(this);
    connect(m_pPanel, &SidePanel::CloseWanted, this, &SideDock::Close);
    connect(m_pPanel, &SidePanel::WidthWanted, this, &SideDock::TakeWidth);
    connect(m_pPanel, &SidePanel::TabChosen, this,
            [](SideTab eTab) { ViewerSettings::KeepSideTab(static_cast<int>(eTab)); });
    connect(m_pPanel, &SidePanel::PagesWanted, this, [this] {
        if (!Leave()) {
            m_view.setFocus();
        }
    });
}

void SideDock::Complete() {
    m_bComplete = true;
    Update();
}

void SideDock::SetDocument(bool bThere) {
    if (std::exchange(m_bDocument, bThere) != bThere) {
        m_bCalled = m_bCalled && bThere;
        Update();
    }
}

bool SideDock::IsOver() const {
    return m_pWindow->isFullScreen() || m_pWindow->width() < kNarrowWindow;
}

bool SideDock::IsShown() const {
    return m_bDocument && (IsOver() ? m_bCalled : m_bBeside);
}

WindowParts::Side SideDock::Room(QSize window) const {
    if (!IsShown()) {
        return {};
    }
    return {std::clamp(m_nWidth, kLeastWidth, std::max(kLeastWidth, window.width() - kLeastPages)),
            IsOver()};
}

// The tab is filled when the panel is first seen.
void SideDock::Update() {
    const bool bShown = IsShown();
    if (bShown && m_bComplete && !m_pPanel->CurrentTab()) {
        m_pPanel->ShowTab(static_cast<SideTab>(ViewerSettings::KeptSideTab()));
    }
    const bool bHadKeys = m_pPanel->isAncestorOf(m_pWindow->focusWidget());
    m_pPanel->setVisible(bShown);
    m_parts.Place();
    m_pPanel->raise();
    if (!bShown && bHadKeys) {
        m_view.setFocus();
    }
    emit Changed();
}

void SideDock::Call(bool bShown) {
    if (IsOver()) {
        m_bCalled = bShown;
    } else {
        m_bBeside = bShown;
        ViewerSettings::KeepSideShown(bShown);
    }
    Update();
}

void SideDock::Toggle() {
    const bool bShow = !IsShown();
    Call(bShow);
    if (bShow && IsOver()) {
        m_pPanel->TakeKeys();
    }
}

void SideDock::Show(SideTab eTab) {
    if (!IsShown()) {
        Call(true);
    }
    m_pPanel->ShowTab(eTab);
    m_pPanel->TakeKeys();
}

void SideDock::SwapKeys() {
    if (IsShown() && m_pPanel->isAncestorOf(m_pWindow->focusWidget())) {
        m_view.setFocus();
        return;
    }
    if (!IsShown()) {
        Call(true);
    }
    m_pPanel->TakeKeys();
}

void SideDock::Close() {
    Call(false);
    m_view.setFocus();
}

bool SideDock::Leave() {
    if (!IsShown() || !IsOver()) {
        return false;
    }
    Close();
    return true;
}

// What is dragged to may be less than is possible: it starts to count where it fits.
void SideDock::TakeWidth(int nWidth) {
    m_nWidth =
        std::clamp(nWidth, kLeastWidth, std::max(kLeastWidth, m_pWindow->width() - kLeastPages));
    m_keepWidth.start();
    m_parts.Place();
}

bool SideDock::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == m_pWindow) {
        if (pEvent->type() == QEvent::WindowStateChange || pEvent->type() == QEvent::Resize) {
            const bool bSeen = !m_pPanel->isHidden();
            m_bCalled = m_bCalled && IsOver();
            if (bSeen != IsShown()) {
                Update();
            }
        }
        return false;
    }
    return pEvent->type() == QEvent::MouseButtonPress && Leave();
}

}
