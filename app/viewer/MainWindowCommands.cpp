// What the commands of the window do, as far as the pages do not do it themselves.
#include <QApplication>
#include <QFileDialog>
#include <algorithm>

#include "app/viewer/CommandBar.h"
#include "app/viewer/Commands.h"
#include "app/viewer/Help.h"
#include "app/viewer/MainWindow.h"
#include "app/viewer/PageMenu.h"
#include "app/viewer/SaveFlow.h"
#include "app/viewer/TopEdge.h"
#include "app/viewer/ViewerSettings.h"
#include "app/viewer/find/FindFlow.h"
#include "app/viewer/keys/KeysDialog.h"
#include "app/viewer/properties/PropertiesDialog.h"
#include "app/viewer/side/SideDock.h"
#include "widget/places/ViewBookmarks.h"

namespace velko::viewer {

using vkit::FilePath;
using vkit::VelkoPdfView;

void MainWindow::CarryOut(Command eCommand) {
    switch (eCommand) {
        case Command::Open:
            AskForFile(false);
            break;
        case Command::OpenInWindow:
            AskForFile(true);
            break;
        case Command::NewWindow:
            emit WindowWanted({});
            break;
        case Command::Save:
            m_pSaveFlow->Save();
            break;
        case Command::SaveAs:
            m_pSaveFlow->SaveAs();
            break;
        case Command::Properties:
            PropertiesDialog::Show(*m_pView, *m_pFacts, *m_pCommands, this);
            break;
        case Command::Reload:
            m_pSaveFlow->BeforeLeaving([this] { m_pSaveFlow->Reload(); });
            break;
        case Command::Close:
            CloseDocument();
            break;
        case Command::Quit:
            emit EndWanted();
            break;
        case Command::FullScreen:
            ToggleFullScreen();
            break;
        case Command::Present:
            TogglePresentation();
            break;
        case Command::Bookmark:
            Bookmarks().Toggle();
            break;
        case Command::SidePanel:
            m_pSide->Toggle();
            break;
        case Command::SwapKeys:
            m_pSide->SwapKeys();
            break;
        case Command::Find:
            m_pFind->Open();
            break;
        case Command::FindNext:
            m_pFind->Step(false);
            break;
        case Command::FindPrevious:
            m_pFind->Step(true);
            break;
        case Command::EnterPage:
            m_pTopEdge->Call();
            m_pBar->EnterPage();
            break;
        case Command::Menu:
            m_pTopEdge->Call();
            m_pBar->OpenMenu();
            break;
        case Command::PageMenu:
            OpenPageMenu(m_pView->mapToGlobal(m_pView->rect().center()), std::nullopt);
            break;
        case Command::Keys:
            ShowKeys(*m_pCommands, this);
            break;
        case Command::About:
            ShowAbout(*m_pCommands, this);
            break;
        default:
            break;
    }
}

void MainWindow::ToggleFullScreen() {
    OnDone();
    setWindowState(windowState() ^ Qt::WindowFullScreen);
    m_pView->setFocus();
}

// The document goes, and with it its window; the last window stays for the next
// document, until it is asked to go while it is empty.
void MainWindow::CloseDocument() {
    EndPresentation();
    const auto windows = QApplication::topLevelWidgets();
    const auto bOthers = std::any_of(windows.begin(), windows.end(), [this](QWidget* pWidget) {
        return pWidget != this && pWidget->isVisible() &&
               qobject_cast<MainWindow*>(pWidget) != nullptr;
    });
    if (bOthers || m_pView->ViewState() == VelkoPdfView::State::Empty) {
        close();
    } else {
        m_pSaveFlow->BeforeLeaving([this] { m_pView->CloseDocument(); });
    }
}

void MainWindow::AskForFile(bool bOwnWindow) {
    auto* pDialog = new QFileDialog(this, "Open a document", m_pView->File().Folder(),
                                    "PDF documents (*.pdf *.PDF);;All files (*)");
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    pDialog->setFileMode(bOwnWindow ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    connect(pDialog, &QFileDialog::filesSelected, this,
            [this, bOwnWindow](const QStringList& files) {
                for (const QString& strFile : files) {
                    if (bOwnWindow && !IsFree()) {
                        emit WindowWanted(strFile);
                    } else {
                        OpenFile(strFile);
                    }
                }
            });
    pDialog->open(); // returns at once: nothing here waits in an event loop of its own
}

bool MainWindow::IsFree() const {
    const auto eState = m_pView->ViewState();
    return eState == VelkoPdfView::State::Empty || eState == VelkoPdfView::State::Failed;
}

void MainWindow::OpenFile(const FilePath& path) {
    EndPresentation();
    if (ViewerSettings::OpensOwnWindows() && !IsFree()) {
        emit WindowWanted(path);
    } else {
        m_pSaveFlow->BeforeLeaving([this, path] { m_pView->Open(path); });
    }
}

}
