#include "widget/VelkoPdfView.h"

#include <utility>

#include "platform/foundation/Describe.h"
#include "platform/qt/QtElementWindow.h"
#include "platform/system/Debug.h"
#include "settings/AppConfig.h"
#include "widget/DragHand.h"
#include "widget/FlingLimit.h"
#include "widget/LinkFocus.h"
#include "widget/LinkFollower.h"
#include "widget/MiddleDrag.h"
#include "widget/OpenFailure.h"
#include "widget/PageFrames.h"
#include "widget/PageNotices.h"
#include "widget/PlaceKeeper.h"
#include "widget/PointerShape.h"
#include "widget/SlowPages.h"
#include "widget/StoreNotice.h"
#include "widget/VelkoRuntime.h"
#include "widget/WheelReader.h"
#include "widget/edit/DocSaver.h"
#include "widget/edit/ViewEdits.h"
#include "widget/places/MovedPlaces.h"
#include "widget/places/PlaceFollower.h"
#include "widget/reload/DocReloader.h"
#include "widget/search/ViewSearch.h"
#include "widget/text/KeptSelection.h"
#include "widget/text/PageTexts.h"
#include "widget/text/ViewSelection.h"

namespace velko::vkit {

std::shared_ptr<PDFViewCtrl> VelkoPdfView::CreateControl() {
    auto pControl = PDFViewCtrl::Create();
    pControl->ApplyTemplate();
    return pControl;
}

VelkoPdfView::VelkoPdfView(QWidget* pParent) : VelkoPdfView(CreateControl(), pParent) {}

VelkoPdfView::VelkoPdfView(std::shared_ptr<PDFViewCtrl> pControl, QWidget* pParent)
    : QWidget(pParent),
      m_pControl(std::move(pControl)),
      m_steps(*m_pControl),
      m_zoom(*m_pControl, m_steps),
      m_reading(*m_pControl),
      m_pWindow(new Platform::Qt::QtElementWindow(VelkoRuntime::Environment(), m_pControl, this)),
      m_pPointer(std::make_unique<PointerShape>(*m_pWindow)),
      m_pPageLinks(std::make_unique<PageLinks>(*m_pControl)),
      m_pLinks(std::make_unique<LinkFollower>(*m_pControl, *m_pWindow, *m_pPageLinks, *m_pPointer)),
      m_pFlingLimit(std::make_unique<FlingLimit>(*m_pControl, *m_pWindow)),
      m_pStoreNotice(std::make_unique<StoreNotice>(
          [this](const auto& failure) { emit Failed(StoreNotice::TextOf(failure)); })),
      m_eScanColors(velko::common::ToScanColors(AppConfig::PageScanColors())) {
    m_hold.setSingleShot(true);
    m_hold.callOnTimeout(this, [this] { m_pWindow->ReleaseFrame(); });
    m_pWindow->ShowBusyMark(false);
    setFocusProxy(m_pWindow);
    ConnectWindow();
    ConnectLinks();
    ConnectWheel();
    const auto fnPixelRatio = [this] { return devicePixelRatioF(); };
    m_pFrames = std::make_unique<PageFrames>(*m_pControl, fnPixelRatio);
    m_pNotices = std::make_unique<PageNotices>(*m_pControl, fnPixelRatio);
    m_pSlowPages = std::make_unique<SlowPages>(*m_pControl, fnPixelRatio);
    MakeSelection();
    MakeEdits();
    m_facts = ReadFacts();
    ShowAround();
}

VelkoPdfView::~VelkoPdfView() {
    if (m_pPlace) {
        m_pPlace->End();
        m_pPlace.reset();
    }
    m_pMoved.reset();
    m_pReloader.reset();
    m_pFollower.reset();
    m_pSaver.reset();
    m_pEdits.reset();
    m_pSearch.reset();
    m_pKeptSelection.reset();
    m_pSelection.reset();
    m_pTexts.reset();
    m_pLinkFocus.reset();
    m_pLinks.reset();
    m_pFlingLimit.reset();
    m_pDragHand.reset();
    m_pMiddleDrag.reset();
    m_pWheel.reset();
    m_pSlowPages.reset();
    m_pNotices.reset();
    m_pFrames.reset();
    delete m_pWindow; // unloads the tree while the control still lives
    m_pWindow = nullptr;
    try {
        m_pControl->Dispose();
    } catch (...) { // a host's handler of the closing; there is no one left to tell
    }
}

void VelkoPdfView::ConnectWindow() {
    m_pWindow->OnFailure([this](const std::exception_ptr& pError) { m_failures.Tell(pError); });
    m_failures.Listen([this](const std::exception_ptr& pError) { Report(pError); });
    m_pWindow->OnBeforeArrange = [this] { BeforeArrange(); };
    m_pWindow->OnAfterArrange = [this] { AfterArrange(); };
    m_pWindow->OnPresented = [this] { QueueRefresh(); };
    m_pWindow->OnPainted = [this] { OnPainted(); };
    const QPointer<VelkoPdfView> pView(this); // the control may outlive the view
    m_pControl->OpenDocEvent.add([pView](const auto&, const auto& pArgs) {
        if (pView) {
            pArgs->IsCanceled != 0 ? pView->OnPasswordGivenUp()
                                   : pView->OnControlOpened(pArgs->ErrorCode);
        }
    });
    m_pControl->PageLayoutModeChangedEvent.add([pView](const auto&, const auto&) {
        if (pView) {
            pView->OnControlLaidOut();
        }
    });
    m_pControl->CloseDocEvent.add([pView](const auto&, const auto&) {
        if (pView) {
            if (!pView->m_queue.IsIdle()) {
                pView->HoldFor(pView->m_bReloading ? kLongestReloadMs : kLongestHoldMs);
            }
            pView->m_shown.reset();
            pView->m_bPlaceWaits = false;
            pView->QueueRefresh();
        }
    });
}

void VelkoPdfView::ConnectWheel() {
    WheelReader::Hands hands;
    hands.fnTakes = [this] { return HasDocument() && m_pControl->IsCanScrollPageViewEnabled(); };
    hands.fnTurnsPages = [this] { return m_steps.ShowsSinglePage(); };
    hands.fnZoom = [this](QPointF pt, double dbFactor) { ZoomByWheel(pt, dbFactor); };
    hands.fnSettle = [this] { SettleWheel(); };
    hands.fnScroll = [this](double dbX, double dbY) { ScrollBy(dbX, dbY); };
    hands.fnIsAtEdge = [this](int nDirection) { return m_steps.IsAtEdge(nDirection, false); };
    hands.fnTurn = [this](int nDirection) { Command([&] { m_steps.Turn(nDirection, false); }); };
    m_pWheel = std::make_unique<WheelReader>(*m_pWindow, std::move(hands));
    m_pDragHand = std::make_unique<DragHand>(*m_pWindow, *m_pPointer);
    m_pMiddleDrag =
        std::make_unique<MiddleDrag>(*m_pWindow, *m_pPointer, [this](double dbX, double dbY) {
            ScrollBy(dbX * devicePixelRatioF(), dbY * devicePixelRatioF());
        });
}

// Before links and drags: a drag over text is the selection's.
void VelkoPdfView::MakeSelection() {
    m_pTexts = std::make_unique<PageTexts>(*m_pControl);
    m_pSelection = std::make_unique<ViewSelection>(
        ViewSelection::Parts{m_pControl, *m_pWindow, *m_pPointer, *m_pTexts,
                             [this](double dbX, double dbY) { ScrollBy(dbX, dbY); },
                             [this](int nPage) { GotoPage(nPage); }});
    m_pFollower = std::make_unique<PlaceFollower>(m_pControl, *m_pTexts);
    m_pKeptSelection = std::make_unique<KeptSelection>(*m_pSelection, *m_pTexts);
    connect(m_pSelection.get(), &ViewSelection::EmptyChanged, this, &VelkoPdfView::ViewChanged,
            Qt::QueuedConnection);
}

void VelkoPdfView::HighlightSelection() {
    m_pSelection->TakeMarks([this](const ViewSelection::Marks& marks) {
        m_pEdits->Highlight(marks);
        if (m_pEdits->IsPossible()) {
            m_pSelection->Clear();
        }
    });
}

// After whatever else listens to the window: tools are asked first.
void VelkoPdfView::MakeEdits() {
    ViewEdits::Parts parts{m_pControl,  *m_pWindow,
                           *m_pPointer, *m_pPageLinks,
                           *m_pTexts,   [this](double dbX, double dbY) { ScrollBy(dbX, dbY); }};
    m_pEdits = std::make_unique<ViewEdits>(std::move(parts), this);
    connect(m_pEdits.get(), &ViewEdits::Changed, this, &VelkoPdfView::ViewChanged,
            Qt::QueuedConnection); // it may come while the view looks at the pages
    connect(m_pEdits.get(), &ViewEdits::Failed, this, &VelkoPdfView::Report);
    m_pSaver = std::make_unique<DocSaver>(m_pControl, *m_pEdits);
    connect(m_pSaver.get(), &DocSaver::Saved, this, &VelkoPdfView::OnSaved);
    connect(m_pSaver.get(), &DocSaver::Started, this, &VelkoPdfView::ViewChanged);
    connect(m_pSaver.get(), &DocSaver::Ended, this, &VelkoPdfView::ViewChanged);
}

ViewSearch& VelkoPdfView::Search() {
    if (!m_pSearch) {
        ViewSearch::Parts parts{m_pControl,
                                *m_pWindow,
                                *m_pTexts,
                                [this](int nPage) { GotoPage(nPage); },
                                [this](double dbX, double dbY) { ScrollBy(dbX, dbY); },
                                [this] { Command([this] { LeavePlace(); }); }};
        m_pSearch = std::make_unique<ViewSearch>(std::move(parts));
    }
    return *m_pSearch;
}

bool VelkoPdfView::IsModified() const {
    return m_pEdits->IsModified();
}

// Another file may be the document's from now on, with a place of its own.
void VelkoPdfView::OnSaved() {
    const auto pFile = m_pControl->GetDocumentFile();
    const FilePath path = pFile ? FilePath(pFile->Path()) : FilePath();
    if (HasDocument() && m_shown->Bytes() != path.Bytes()) {
        m_shown = path;
        if (m_queue.IsIdle()) {
            m_path = path;
        }
        if (m_pPlace) {
            m_pPlace->Begin();
        }
        FollowShownFile();
    }
}

// --- failures --------------------------------------------------------------

void VelkoPdfView::Command(const std::function<void()>& fnBody) {
    if (HasDocument()) {
        m_bSeen = true; // what was asked for is kept, also before it is painted
        Guard(fnBody);
        QueueRefresh();
    }
}

void VelkoPdfView::Guard(const std::function<void()>& fnBody) {
    m_failures.Run(fnBody);
}

void VelkoPdfView::Report(const std::exception_ptr& pError) {
    Platform::Debug::OutputDebugString(Platform::Describe(pError) + "\n");
    TellLater(ReasonOf(pError));
}

void VelkoPdfView::TellLater(const QString& strReason) {
    QMetaObject::invokeMethod(
        this, [this, strReason] { emit Failed(strReason); }, Qt::QueuedConnection);
}

}
