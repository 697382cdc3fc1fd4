// The window's side panel: what its tabs are.
#include "app/viewer/MainWindow.h"
#include "app/viewer/side/OutlinePane.h"
#include "app/viewer/side/SideDock.h"
#include "app/viewer/side/ThumbPane.h"

namespace velko::viewer {

void MainWindow::CompleteSide() {
    m_pSide->AddTab({SideTab::Outline, "Outline", Glyph::Outline, [this](QWidget* pParent) {
                         return new OutlinePane(*m_pView, *m_pFacts, pParent);
                     }});
    m_pSide->AddTab({SideTab::Pages, "Pages", Glyph::Pages, [this](QWidget* pParent) {
                         return new ThumbPane(*m_pView, *m_pFacts, pParent);
                     }});
    connect(m_pSide, &SideDock::Changed, this,
            [this] { m_pCommands->SetSidePanel(m_pSide->IsShown()); });
    m_pSide->Complete();
}

}
