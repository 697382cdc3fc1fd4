// The window while it shows a presentation, and its keys.
#include <utility>

#include "app/viewer/Hint.h"
#include "app/viewer/MainWindow.h"
#include "app/viewer/TopEdge.h"
#include "app/viewer/present/Presentation.h"
#include "widget/scroll/ViewScroll.h"

namespace velko::viewer {

void MainWindow::ReadKeys() {
    if (m_pCommands != nullptr) {
        m_pCommands->ReadKeys();
    }
}

bool MainWindow::IsPresenting() const {
    return m_pPresentation != nullptr && m_pPresentation->IsOn();
}

void MainWindow::TogglePresentation() {
    if (m_pPresentation == nullptr) {
        m_pPresentation =
            new Presentation(*m_pView, m_parts, this, [this](const QKeySequence& key) {
                const auto eCommand = m_pCommands->HolderOf(key);
                return eCommand == Command::Present || eCommand == Command::FullScreen ||
                       eCommand == Command::Close || eCommand == Command::Quit;
            });
        connect(m_pPresentation, &Presentation::Changed, this, &MainWindow::OnPresentation);
    }
    CompleteBar();
    OnDone();
    IsPresenting() ? m_pPresentation->End() : m_pPresentation->Begin();
}

void MainWindow::EndPresentation() {
    if (IsPresenting()) {
        m_pPresentation->End();
    }
}

// How to end it is said once in a program's life.
void MainWindow::OnPresentation() {
    static bool s_bSaid = false;
    m_pTopEdge->SetWatching(isFullScreen() && !IsPresenting());
    m_pScroll->SetAllowed(!IsPresenting());
    PlaceParts();
    if (m_pHint != nullptr) {
        m_pHint->hide();
    }
    if (IsPresenting() && !std::exchange(s_bSaid, true)) {
        delete m_pHint;
        m_pHint = new Hint(this);
        m_pHint->Say({"Esc ends the presentation.", "B shows black, W white."});
    }
}

}
