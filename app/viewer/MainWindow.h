// The viewer's window: a bar of commands above the pages, a pane in their place
// when there are none to show, and notices and questions between.
//
// The bar's room is kept from the beginning, but it is filled after the first
// page is painted, so that nothing stands between the start and the page.
// Threads: UI thread only.
#pragma once

#include <QSet>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>

#include "app/viewer/Commands.h"
#include "app/viewer/WindowParts.h"
#include "widget/VelkoPdfView.h"

class QLabel;

namespace velko::vkit {
class DocFacts;
class ViewBookmarks;
class ViewScroll;
}

namespace velko::viewer {

class CommandBar;
class FindFlow;
class Hint;
class NoticeBar;
class Presentation;
class SaveFlow;
class SelectionBubble;
class SideDock;
class StartPane;
class TopEdge;

class MainWindow : public QWidget {
    Q_OBJECT

public:
    MainWindow(std::shared_ptr<vkit::PDFViewCtrl> pControl, QSize size);

    // From now on the reader's places, with a picture of each document for the list of
    // recent files; and follows the files.
    void KeepPlaces();

    // Shows the document whose open was begun, or without one the start.
    void Begin(const vkit::FilePath& path, vkit::VelkoPdfView::Opening opening);

    // As the reader asks for it: here, or in a window of its own if the settings
    // say so and a document is shown here.
    void OpenFile(const vkit::FilePath& path);
    // False while a document is shown or waited for.
    bool IsFree() const;
    // Says that this is the address of no file.
    void RefuseAddress(const QString& strAddress);

    // As a reader asks for it who has come from elsewhere: a page, as the reader counts,
    // and a text to look for. `strActivation` is the desktop's leave to take the keys.
    void ShowPlace(std::optional<int> nPage, const QString& strFind);
    void ComeToFront(const std::string& strActivation);

    // The size that the window has when it does not fill the screen; Qt's units.
    QSize OrdinarySize() const;

    vkit::VelkoPdfView& View() const { return *m_pView; }

    // Looks for the text in the document that is shown, or comes next.
    void Find(const QString& strText);

    // What stands in place of the pages; empty while pages are shown.
    QString Message() const;
    // What is told or asked above the pages; empty when nothing is.
    QString Notice() const;

    // Another window has changed the keys of the commands.
    void ReadKeys();

    // Fills the bar now.
    void CompleteBar();

signals:
    void WindowWanted(const velko::vkit::FilePath& path); // of its own; empty: the start
    void EndWanted();                                     // of the program
    void KeysChanged();                                   // of the commands

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void changeEvent(QEvent* pEvent) override;
    void closeEvent(QCloseEvent* pEvent) override;
    void dragEnterEvent(QDragEnterEvent* pEvent) override;
    void dropEvent(QDropEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    void ConnectView();
    void ConnectLinks();
    void ConnectEdits();
    void CompleteSide();
    void AddAttachments();
    vkit::ViewBookmarks& Bookmarks();
    void CompleteSearch();
    void ToggleHits();
    void ConnectSelection();
    void CarryOut(Command eCommand);
    void AskForFile(bool bOwnWindow);
    void CloseDocument();
    void OpenPageMenu(QPoint ptGlobal, std::optional<QPoint> ptView);
    void AskToClear(); // the recent files
    void AskToBrowse(const QUrl& address);
    void AskToOpen(const vkit::FilePath& path); // that a link leads to
    void Browse(const QUrl& address);
    void ToggleFullScreen();
    void TogglePresentation();
    void EndPresentation(); // before its document goes
    void OnPresentation();  // it has begun, or ended
    bool IsPresenting() const;
    bool LeaveWhatIsOpen(); // notice, then full screen; false when there is neither
    int BarHeight() const;  // what it takes of the pages' room
    void SayHowToLeave();   // the full screen
    void OnDone();          // a command has succeeded
    void TellFailure(const QString& strReason);
    void ShowMessage(const QString& strTitle, const QString& strText);
    void HideMessages();
    void ShowTarget(const QString& strTarget);
    NoticeBar& NoticeLine(); // made when first needed
    void MakeRoomForNotice();
    void OnState(vkit::VelkoPdfView::State eState);
    void OnOpenFailed(const QString& strFile, const QString& strReason);
    void FollowColors();
    void FollowText();
    void TellNoText();
    bool LacksText() const; // text is to be read, and there is none
    void UpdateTitle();
    void PlaceParts() { m_parts.Place(); }
    void SetParts();
    void PlaceBar();
    void PlaceTarget();

    vkit::VelkoPdfView* const m_pView;
    WindowParts m_parts;
    TopEdge* const m_pTopEdge;
    SaveFlow* const m_pSaveFlow;                 // a child
    SideDock* const m_pSide;                     // this too
    bool m_bMayClose = false;                    // nothing is unsaved, or the reader lets it go
    vkit::ViewBookmarks* m_pBookmarks = nullptr; // the view's; when first needed
    vkit::DocFacts* m_pFacts = nullptr;          // the view's; with the bar
    Commands* m_pCommands = nullptr;             // this too
    vkit::ViewScroll* m_pScroll = nullptr;       // the view's; with the bar
    FindFlow* m_pFind = nullptr;                 // this too
    CommandBar* m_pBar = nullptr;                // after the first paint
    StartPane* m_pMessage = nullptr;             // these are made when first needed
    NoticeBar* m_pNotice = nullptr;
    Hint* m_pHint = nullptr;
    SelectionBubble* m_pBubble = nullptr;
    Presentation* m_pPresentation = nullptr;
    QString m_strTarget;         // of the link under the pointer
    QLabel* m_pTarget = nullptr; // of the link under the pointer
    QSet<QString> m_sites;       // that the reader has agreed to go to
    QTimer m_textTimer;          // runs while there may be text after all
};

}
