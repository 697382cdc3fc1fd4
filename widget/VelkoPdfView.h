// A widget that shows a PDF document: the viewer control in an application's
// window.
//
//   QApplication app(argc, argv);
//   velko::vkit::VelkoRuntime runtime({.fnRegisterEngine = velko::engines::mupdf::RegisterEngine});
//   velko::vkit::VelkoPdfView view;
//   view.Open("report.pdf");
//   view.show();
//   return app.exec();
//
// Lifetime: needs a `VelkoRuntime` that outlives it.
// Order of calls: any; commands without a shown document do nothing. An open
// while another is under way is carried out after it; of several only the last.
// Units: pages from 0; zoom 1.0 is 100 %; scrolling in device pixels.
// Threads: UI thread only.
// Errors: nothing is raised. A failed open is told by `OpenFailed`, after the
// document that was shown before is back at its place; a failure of a command or
// inside the control by `Failed`, both in words for the reader; what failed is in
// the debug output. A handler of a signal may destroy the view,
// except where it is said.
//
// What the reader sees is kept over a change of size, rotation or layout: the
// page point and the zoom stay, in one visible step. After `SetFit`, and at
// first, the zoom follows the size instead. With `KeepPlace` a document opens
// where it was left, zoomed and turned as it was.
#pragma once

#include <QPointer>
#include <QString>
#include <QTimer>
#include <QUrl>
#include <QWidget>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include "control/PDFViewCtrl.h"
#include "document/engine/HostServices.h"
#include "document/engine/ScanColors.h"
#include "platform/foundation/FailureSink.h"
#include "widget/FilePath.h"
#include "widget/OpeningQueue.h"
#include "widget/PageColors.h"
#include "widget/PageSteps.h"
#include "widget/ReadingMode.h"
#include "widget/ViewHistory.h"
#include "widget/ViewKeeper.h"
#include "widget/ViewZoom.h"

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class DocReloader;
class DocSaver;
class DragHand;
class FlingLimit;
class KeptSelection;
class LinkFocus;
class LinkFollower;
class PageLinks;
class MiddleDrag;
class MovedPlaces;
class PageFrames;
class PageNotices;
class PageTexts;
class PlaceFollower;
class PlaceKeeper;
class PointerShape;
class SlowPages;
class StoreNotice;
class ViewEdits;
class ViewSearch;
class ViewSelection;
class WheelReader;
enum class LinkStep;
struct FoundPlace;
struct JudgedFile;
struct KeptView;
struct LinkToPage;

class VelkoPdfView : public QWidget {
    Q_OBJECT

public:
    enum class State {
        Empty,
        Opening, // an earlier document may still be shown meanwhile
        Shown,
        Failed,        // the last open failed and nothing is shown
        PasswordNeeded // the reader is asked for the password of the last open
    };
    Q_ENUM(State)

    enum class Fit : std::int32_t { None = 0, Page = 1, Width = 2, Height = 3 };
    // Text: of the pages, set anew for the width of the view. Its zoom is its own, it
    // has neither a fit nor a rotation, and its links are plain text.
    enum class Layout : std::int32_t { Continuous = 1, SinglePage = 2, Text = 3 };

    using Opening = concurrency::task<velko::common::ErrorCode>;

    explicit VelkoPdfView(QWidget* pParent = nullptr);

    // Around a control of `CreateControl`.
    explicit VelkoPdfView(std::shared_ptr<PDFViewCtrl> pControl, QWidget* pParent = nullptr);
    ~VelkoPdfView() override;

    // A control with its template, ready to open a document before there is a
    // widget or an application object.
    static std::shared_ptr<PDFViewCtrl> CreateControl();
    static Opening BeginOpen(PDFViewCtrl& control, const FilePath& path,
                             const Platform::SecretText& password = {});

    // Gives the control the view's size while the view is hidden and Qt puts its
    // size event off, so that the first layout need not wait for the display.
    void ArrangeBeforeShow();

    // A change of size within the call leaves the zoom alone, also one that fits: for
    // what comes and goes beside the pages and is not to move them.
    void ResizeAtTheZoom(const std::function<void()>& fnResize);

    // Whether places are stored and brought back; off at first. Stored on
    // the task pool, the last one before the view goes.
    void KeepPlace(bool bKeep);
    // While the view shows the document in a way that is not to be kept.
    void HoldPlace(bool bHold) { m_bPlaceHeld = bHold; }

    // Whether a document is shown anew, at its place, when its file has changed; off at
    // first. The reloader tells what keeps it from being so, and lives as long as the view
    // follows files; empty otherwise.
    void FollowFile(bool bFollow);
    DocReloader* Reloader() const { return m_pReloader.get(); }
    // The document that goes, or comes, is another version of one that stays open for
    // the reader: true from before `CloseDocEvent` until after `Opened`. The state is
    // `Shown` all the while.
    bool IsReloading() const { return m_bReloading; }

    // A document that the password, or none, does not open is asked for by a dialog over
    // the view, meanwhile in the state `PasswordNeeded`; a reader who gives up leaves
    // what `CloseDocument` does.
    void Open(const FilePath& path, Platform::SecretText password = {});
    // Takes up an open that was begun on the control.
    void Follow(const FilePath& path, Opening opening);
    // In the state `PasswordNeeded` it gives up that document only: the one that was
    // shown before comes back.
    void CloseDocument();

    State ViewState() const { return m_eState; }
    // Of the document that is shown or was asked for last; absolute.
    const FilePath& File() const { return m_path; }

    // Whether the document was read only after a repair, so that pages or parts of
    // them may be missing.
    bool IsRepaired() const;

    // --- pages ---
    int PageCount() const { return m_facts.nPageCount; }
    int CurrentPage() const { return m_facts.nPage; }
    void GotoPage(int nPage); // the nearest page there is
    void GotoNextPage();
    void GotoPrevPage();
    // From here on jumps: `GoBack` comes back from them.
    void JumpToPage(int nPage);
    void GotoFirstPage();
    void GotoLastPage();
    void JumpToName(const QString& strName); // a named destination; else `LinkRefused`
    // As a click on a link that leads there does: `WebLinkWanted`, `FileLinkWanted` and
    // `LinkRefused` tell of what is not a place in the document.
    void FollowGoal(const velko::pdf::LinkGoal& goal);
    bool CanGoBack() const { return m_history.CanGoBack(); }
    bool CanGoForward() const { return m_history.CanGoForward(); }
    void GoBack();
    void GoForward();

    void ScrollBy(double dbX, double dbY); // positive: towards the end of the document
    // In the layout of one page at a time a page that ends is turned; where a page
    // fits the view, it goes from the top of a page to the top of the next.
    void ScrollByScreen(int nScreens);

    // --- zoom, rotation, layout ---
    double Zoom() const { return m_facts.dbZoom; }
    double LeastZoom() const;
    double MostZoom() const;
    // Brought into the limits. The view's top line stays while the page's top is in
    // sight, else its middle.
    void ZoomTo(double dbZoom);
    void ZoomIn();
    void ZoomOut();
    void ZoomToActualSize(); // 100 %, and the first size of letters for text
    Fit FitMode() const { return m_facts.eFit; }
    void SetFit(Fit eFit);
    void FitWidth() { SetFit(Fit::Width); }
    void FitPage() { SetFit(Fit::Page); }
    int Rotation() const { return m_facts.nRotate; } // quarter turns clockwise
    void RotateBy(int nQuarterTurns);
    Layout LayoutMode() const { return m_facts.eLayout; }
    void SetLayoutMode(Layout eLayout);
    // In the layout of text: to it, or back to the pages as they were shown before.
    void SetReading(bool bOn);
    bool IsReading() const { return LayoutMode() == Layout::Text; }
    // Whether pictures stay in the text, also when it is shown next.
    bool TextPictures() const { return m_facts.bTextPictures; }
    void SetTextPictures(bool bShow);
    // Whether anything of the document is shown; text may have nothing to show of it.
    bool ShowsSomething() const { return m_facts.bShowsSomething; }

    // --- colours ---
    // Of the pages; kept in the settings, for every document.
    PageColors Colors() const { return m_facts.colors; }
    void SetColors(const PageColors& colors);
    bool NightMode() const { return Colors() == NightPageColors(); }
    void SetNightMode(bool bOn);
    // Also around light pages, as in a window that fills the screen.
    void SetDarkSurround(bool bDark);
    // In its place, whatever the pages' colours are; empty: as above.
    void SetSurround(const std::optional<QColor>& color);
    // Whatever the pointer is over.
    void HidePointer(bool bHide);
    // What becomes of scans in colours other than black on white; kept likewise.
    velko::common::ScanColors ScanColors() const { return m_facts.eScanColors; }
    void SetScanColors(velko::common::ScanColors eColors);

    // --- changing and saving ---
    // Marks and notes, with undo and redo; both live as long as the view. A document
    // that is changed is not saved by itself: a host asks the reader before another
    // one is opened or the view goes.
    ViewEdits& Edits() const { return *m_pEdits; }
    DocSaver& Saver() const { return *m_pSaver; }
    bool IsModified() const;

    // Hits in the text, marked on the pages. Made by the first call.
    ViewSearch& Search();
    // The text of the shown document's pages, read when it is asked for.
    PageTexts& Texts() const { return *m_pTexts; }
    // What of it is selected; lives as long as the view.
    ViewSelection& Selection() const { return *m_pSelection; }
    void HighlightSelection(); // and nothing is selected any more

    // True when every part of a page on the screen shows its final pixels.
    bool IsSharp() const;
    // True when the last paint showed pixels of a page.
    bool HasInk() const;

    const std::shared_ptr<PDFViewCtrl>& Control() const { return m_pControl; }
    Platform::Qt::QtElementWindow& Window() const { return *m_pWindow; }

signals:
    void StateChanged(velko::vkit::VelkoPdfView::State eState);
    void Opened(int nPageCount);
    void Reloaded(); // after `Opened`
    void OpenFailed(const QString& strFile, const QString& strReason);
    void PageChanged(int nPage);
    void PageCountChanged(int nPageCount);
    void ZoomChanged(double dbZoom);
    // One of the above, or fit, rotation, layout, colours, history, tool or what is edited.
    void ViewChanged();
    void Failed(const QString& strReason); // from the event loop, never within a command
    // After each paint of the pages, and within it: the view may not go there.
    void Painted();

    // A link that leads out of the document, to the web or to another PDF document on this
    // machine, which need not exist; the host decides, and asks the reader first.
    void WebLinkWanted(const QUrl& address);
    void FileLinkWanted(const velko::vkit::FilePath& path);
    // A link that is not followed, with the reason.
    void LinkRefused(const QString& strReason);
    // What the link under the pointer leads to, or else the one that has the
    // focus of the keyboard; empty when there is none.
    void LinkHovered(const QString& strTarget);

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    // How long the old frame is held while the new one renders.
    static constexpr int kLongestHoldMs = 300;
    static constexpr int kLongestReloadMs = 2'000;

    // A file that was not opened, and the reader's reason; empty when it is the
    // reader who gave up.
    struct Refused {
        FilePath path;
        QString strReason;
    };

    // What hosts are told of; read after each frame.
    struct Facts {
        int nPageCount = 0;
        int nPage = 0;
        double dbZoom = 0.0;
        Fit eFit = Fit::None;
        int nRotate = 0;
        Layout eLayout = Layout::Continuous;
        PageColors colors;
        velko::common::ScanColors eScanColors = velko::common::ScanColors::Turned;
        bool bTextPictures = true;
        bool bShowsSomething = false;
        bool bBack = false;
        bool bForward = false;
        friend bool operator==(const Facts&, const Facts&) = default;
    };

    // Opening.
    void ConnectWindow();
    void ConnectLinks();
    void UpdateLinks();
    void TellLinkTarget();
    void MakeSelection();
    void MakeEdits();
    void OnSaved();
    void ConnectWheel();
    void Begin(const OpeningQueue::Request& request);
    bool Expect(const OpeningQueue::Request& request);
    void RememberShown();
    void BeginOpening(const OpeningQueue::Request& request);
    void PrepareReload(const JudgedFile& ready, std::function<void()> fnDone);
    void Reload(std::shared_ptr<OpenedFile> pFile);
    void OnReloadFailed();
    void EndReload();
    bool IsInTheMiddle() const;
    void FollowShownFile();
    void Await(Opening opening);
    void OnControlOpened(velko::common::ErrorCode eCode);
    void OnPasswordGivenUp();
    void BeginShowing();
    void OnControlLaidOut();
    void OnGiven();
    void OnOpenEnded(const Opening& opening, const QString& strTrouble);
    void TakeOutcome(const OpeningQueue::Ended& ended, const Opening& opening,
                     const QString& strTrouble);
    void OnOpenBroken(const OpeningQueue::Ended& ended, const std::exception_ptr& pError,
                      const QString& strTrouble);
    void OnPasswordNeeded();
    void OnShown();
    void ShowWhatIsLeft(const QString& strReason);
    void Return(Refused refused);
    bool HasDocument() const { return m_shown.has_value(); }

    // These tell hosts. False when a handler has destroyed this view, or has set
    // another state: then nothing more is to be done.
    bool SetState(State eState);
    bool Refresh();
    bool TellChanges(const Facts& before);

    // Failures.
    void Command(const std::function<void()>& fnBody); // only when a document is shown
    void Guard(const std::function<void()>& fnBody);
    void Report(const std::exception_ptr& pError);
    void TellLater(const QString& strReason); // `Failed`, from the event loop

    // What is shown.
    void QueueRefresh();
    Facts ReadFacts();
    int PageInSight();
    void OnPainted();
    void Hold();
    void HoldFor(int nMs);
    void FollowFit();
    void BeforeArrange();
    void AfterArrange();
    void ShowAround();
    void ShowAround(const PageColors& colors);
    void RedrawAround();

    // The place.
    std::optional<KeptView> PlaceNow(bool bLeft);
    void ShowKeptPlace();
    std::optional<KeptView> FindPlace();
    void OnPlaceFound(const KeptView& kept);
    void ShowLayoutOf(const KeptView& kept);
    void ShowPlace(const KeptView& kept, const FoundPlace* pFound);
    void LookForPlace();
    void OnWordsFound(const FoundPlace& found);
    void ShowTextPlace(const Windows::Foundation::Collections::PropertySet& values, int nPage);
    void PutPage(int nPage, double dbLeft, double dbTop);

    // Commands.
    void LeavePlace();
    void ShowLayout(Layout eLayout);
    void Travel(void (ViewHistory::*fnGo)(PDFViewCtrl&, ViewZoom&));
    void StepZoom(double dbZoom);
    void StepLine(int nDirection, bool bAcross);
    void ZoomByWheel(QPointF ptWindow, double dbFactor);
    void SettleWheel();
    bool HandleKey(const QKeyEvent& event);
    bool HandleLineKey(int nKey);
    bool HandlePageKey(int nKey, bool bBack);
    bool HandleZoomKey(int nKey);

    // Links.
    void FollowAction(const std::shared_ptr<velko::pdf::IAction>& pAction);
    void FollowPage(const LinkToPage& target);
    bool IsShownHere(const velko::pdf::IDestination& target);
    float ZoomOf(const velko::pdf::IDestination& target, double dbBefore);
    void ShowDestination(const velko::pdf::IDestination& target);
    void ShowPlaceOf(const velko::pdf::IDestination& target, std::int32_t nPage);
    void FollowStep(LinkStep eStep);
    void Find(const QString& strName, const QString& strRefusal);

    Platform::FailureSink m_failures{"the view"};
    const std::shared_ptr<PDFViewCtrl> m_pControl;
    const PageSteps m_steps;
    ViewZoom m_zoom;
    ReadingMode m_reading;
    Layout m_eLastPages = Layout::Continuous; // shown before text was
    Platform::Qt::QtElementWindow* m_pWindow; // a child
    std::unique_ptr<PointerShape> m_pPointer;
    std::unique_ptr<PageLinks> m_pPageLinks;
    std::unique_ptr<LinkFollower> m_pLinks;
    std::unique_ptr<LinkFocus> m_pLinkFocus;
    std::unique_ptr<FlingLimit> m_pFlingLimit;
    std::unique_ptr<WheelReader> m_pWheel;
    std::unique_ptr<DragHand> m_pDragHand;
    std::unique_ptr<MiddleDrag> m_pMiddleDrag;
    std::unique_ptr<PageTexts> m_pTexts;
    std::unique_ptr<ViewSelection> m_pSelection;
    std::unique_ptr<KeptSelection> m_pKeptSelection;
    std::unique_ptr<ViewEdits> m_pEdits;
    std::unique_ptr<ViewSearch> m_pSearch; // when first needed
    std::unique_ptr<DocSaver> m_pSaver;
    std::unique_ptr<PageFrames> m_pFrames;
    std::unique_ptr<PageNotices> m_pNotices;
    std::unique_ptr<SlowPages> m_pSlowPages;
    std::unique_ptr<PlaceKeeper> m_pPlace; // empty: places are not kept
    std::unique_ptr<MovedPlaces> m_pMoved; // with it
    std::unique_ptr<PlaceFollower> m_pFollower;
    std::unique_ptr<DocReloader> m_pReloader; // empty: files are not followed
    std::unique_ptr<StoreNotice> m_pStoreNotice;
    State m_eState = State::Empty;
    OpeningQueue m_queue;
    FilePath m_path;                    // asked for last
    std::optional<FilePath> m_shown;    // of the document that the control shows, as it tells
    std::unique_ptr<KeptView> m_before; // the document shown before the open under way
    std::optional<Refused> m_return;    // that document is being brought back, because of this
    Facts m_facts;
    Windows::Foundation::Point m_ptWheel; // of the wheel's zoom that may be open yet
    float m_fWheelZoom = 0.0F;
    ViewHistory m_history;
    velko::common::ScanColors m_eScanColors; // as last drawn
    bool m_bKeepsZoom = false;               // within `ResizeAtTheZoom`
    bool m_bRefreshQueued = false;
    std::optional<QColor> m_surround; // a host's
    bool m_bPlaceHeld = false;
    bool m_bDarkSurround = false;
    bool m_bSeen = false;       // the reader has seen a page of this document
    bool m_bPlaceWaits = false; // for the viewer of a document that is told of already
    bool m_bReloading = false;
    bool m_bPlaceKnown = false; // one was kept for what is shown
    bool m_bLost = false;       // what was shown is, without a document, until there is one again
    Platform::SecretText m_password;    // that opened what is shown, as far as it is known
    QTimer m_hold;                      // of a frame
    std::optional<ViewKeeper> m_keeper; // during a change of size
};

}
