// The window's side panel: what its tabs are.
#include "app/viewer/MainWindow.h"
#include "app/viewer/NoticeBar.h"
#include "app/viewer/find/FindFlow.h"
#include "app/viewer/find/HitPane.h"
#include "app/viewer/side/AttachmentPane.h"
#include "app/viewer/side/BookmarkPane.h"
#include "app/viewer/side/OutlinePane.h"
#include "app/viewer/side/SideDock.h"
#include "app/viewer/side/ThumbPane.h"
#include "widget/facts/DocFacts.h"
#include "widget/scroll/ViewScroll.h"
#include "widget/search/ViewSearch.h"

namespace velko::viewer {

vkit::ViewBookmarks& MainWindow::Bookmarks() {
    if (m_pBookmarks == nullptr) {
        m_pBookmarks = new vkit::ViewBookmarks(*m_pView);
        connect(m_pBookmarks, &vkit::ViewBookmarks::Told, this,
                [this](const QString& strText) { NoticeLine().Tell(strText); });
    }
    return *m_pBookmarks;
}

void MainWindow::CompleteSide() {
    m_pSide->AddTab({SideTab::Outline, "Outline", Glyph::Outline, [this](QWidget* pParent) {
                         return new OutlinePane(*m_pView, *m_pFacts, pParent);
                     }});
    m_pSide->AddTab({SideTab::Pages, "Pages", Glyph::Pages, [this](QWidget* pParent) {
                         return new ThumbPane(*m_pView, *m_pFacts, pParent);
                     }});
    m_pSide->AddTab({SideTab::Bookmarks, "Bookmarks", Glyph::Bookmark, [this](QWidget* pParent) {
                         return new BookmarkPane(Bookmarks(), *m_pFacts, pParent);
                     }});
    m_pSide->AddTab({SideTab::Hits, "Hits", Glyph::Find, [this](QWidget* pParent) {
                         return new HitPane(
                             m_pView->Search(), m_pView->Texts(),
                             [this](int nPage) { return m_pFacts->LabelOf(nPage); }, pParent);
                     }});
    AddAttachments();
    connect(m_pSide, &SideDock::Changed, this,
            [this] { m_pCommands->SetSidePanel(m_pSide->IsShown()); });
    m_pSide->Complete();
}

// Whether there are any is found out once the panel is shown.
void MainWindow::AddAttachments() {
    m_pSide->AddTab(
        {SideTab::Attachments, "Attachments", Glyph::Attachment,
         [this](QWidget* pParent) { return new AttachmentPane(*m_pView, *m_pFacts, pParent); }});
    const auto fnFollow = [this] {
        const auto pFiles = m_pSide->IsShown() ? m_pFacts->FindFiles() : nullptr;
        m_pSide->Panel().SetThere(SideTab::Attachments, pFiles && !pFiles->empty());
    };
    connect(m_pSide, &SideDock::Changed, this, fnFollow);
    connect(m_pFacts, &vkit::DocFacts::FilesRead, this, fnFollow);
    connect(m_pFacts, &vkit::DocFacts::Forgotten, this, fnFollow);
    fnFollow();
}

// With the hits marked on the bar beside the pages, and listed in the panel.
void MainWindow::CompleteSearch() {
    m_pScroll =
        new vkit::ViewScroll(*m_pView, [this](int nPage) { return m_pFacts->LabelOf(nPage); });
    m_pFind = new FindFlow(*m_pView, *m_pCommands, m_parts, this);
    connect(m_pFind, &FindFlow::Made, m_pScroll,
            [this] { m_pScroll->MarkHits(m_pView->Search()); });
    connect(m_pFind, &FindFlow::ListWanted, this, &MainWindow::ToggleHits);
    const auto fnFollow = [this] {
        m_pFind->ShowList(m_pSide->IsShown() && m_pSide->Panel().CurrentTab() == SideTab::Hits);
    };
    connect(m_pSide, &SideDock::Changed, this, fnFollow);
    connect(&m_pSide->Panel(), &SidePanel::TabChosen, this, fnFollow);
}

void MainWindow::ToggleHits() {
    if (m_pSide->IsShown() && m_pSide->Panel().CurrentTab() == SideTab::Hits) {
        m_pSide->Toggle();
    } else {
        m_pSide->Show(SideTab::Hits);
    }
    m_pFind->ShowList(m_pSide->IsShown());
}

}
