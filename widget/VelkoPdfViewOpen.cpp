// Opening and closing, and what is shown when an open fails.
#include <utility>

#include "component/KeptView.h"
#include "platform/qt/QtElementWindow.h"
#include "viewers/core/Modes.h"
#include "widget/OpenFailure.h"
#include "widget/PlaceKeeper.h"
#include "widget/VelkoPdfView.h"
#include "widget/places/MovedPlaces.h"
#include "widget/places/PlaceFollower.h"
#include "widget/reload/DocReloader.h"
#include "widget/reload/OpenedFile.h"
#include "widget/text/KeptSelection.h"

namespace velko::vkit {

using velko::common::ErrorCode;
using Arrival = OpeningQueue::State;

namespace {

// What failed is the same for files of several kinds, which the file itself tells.
bool HangsOnTheFile(const VelkoPdfView::Opening& opening) {
    try {
        return opening.get() == ErrorCode::e_ErrFormat;
    } catch (const Platform::AccessDeniedException&) {
        return true;
    } catch (...) {
        return false;
    }
}

concurrency::task<void> AwaitOpen(
    QPointer<VelkoPdfView> pView, VelkoPdfView::Opening opening, FilePath path,
    std::function<void(VelkoPdfView&, const VelkoPdfView::Opening&, const QString&)> fnEnded) {
    co_await opening.settled();
    QString strTrouble;
    if (HangsOnTheFile(opening)) {
        const auto looking = concurrency::create_task([path] { return TroubleWith(path); });
        strTrouble = co_await looking;
    }
    if (pView) {
        fnEnded(*pView, opening, strTrouble);
    }
}

// The control raises this for a place with values of wrong types, as another
// program may have left them.
bool IsUnreadablePlace(const std::exception_ptr& pError) {
    try {
        std::rethrow_exception(pError);
    } catch (const Platform::InvalidCastException&) {
        return true;
    } catch (...) {
        return false;
    }
}

// False when there is none, or when it cannot be forgotten.
bool ForgetPlaceIn(const FilePath& path) {
    try {
        return ForgetUnreadableView(path.Bytes());
    } catch (...) {
        return false;
    }
}

}

VelkoPdfView::Opening VelkoPdfView::BeginOpen(PDFViewCtrl& control, const FilePath& path,
                                              const Platform::SecretText& password) {
    return control.OpenPdfDocument(std::make_shared<OpenedFile>(path.Absolute().Bytes()),
                                   password.Text());
}

void VelkoPdfView::KeepPlace(bool bKeep) {
    m_pPlace.reset();
    m_pMoved.reset();
    if (!bKeep) {
        return;
    }
    m_pMoved = std::make_unique<MovedPlaces>(m_pControl,
                                             [this](const KeptView& kept) { OnPlaceFound(kept); });
    m_pPlace = std::make_unique<PlaceKeeper>([this](bool bLeft) { return PlaceNow(bLeft); });
    m_pPlace->OnFailure = [this](const std::exception_ptr& pError) {
        TellLater(QStringLiteral("Your place in the document could not be kept. ") +
                  ReasonOf(pError));
    };
    if (m_eState == State::Shown) {
        m_pPlace->Begin();
    }
}

// --- asking ----------------------------------------------------------------

void VelkoPdfView::Open(const FilePath& path, Platform::SecretText password) {
    OpeningQueue::Request request{path.Absolute(), std::move(password)};
    if (!m_queue.IsIdle()) {
        m_queue.Replace(std::move(request));
        return;
    }
    m_return.reset();
    Begin(request);
}

void VelkoPdfView::Begin(const OpeningQueue::Request& request) {
    if (Expect(request)) { // first: a quick open raises the control's events within the call
        BeginOpening(request);
    }
}

void VelkoPdfView::BeginOpening(const OpeningQueue::Request& request) {
    try {
        Await(request.pFile ? m_pControl->OpenPdfDocument(request.pFile, request.password.Text())
                            : BeginOpen(*m_pControl, request.path, request.password));
    } catch (...) {
        const std::exception_ptr pError = std::current_exception();
        Await(
            concurrency::create_task([pError]() -> ErrorCode { std::rethrow_exception(pError); }));
    }
}

void VelkoPdfView::Follow(const FilePath& path, Opening opening) {
    if (!m_queue.IsIdle()) {
        Open(path); // both opens are the control's by now; this one has the last word
    } else if (Expect({path.Absolute(), {}})) {
        if (!m_shown && m_pControl->GetPDFDoc()) { // it came before this view could hear of it
            OnControlOpened(ErrorCode::e_ErrSuccess);
        }
        Await(std::move(opening));
    }
}

// False when a handler has taken this view away.
bool VelkoPdfView::Expect(const OpeningQueue::Request& request) {
    EndReload();
    if (HasDocument()) { // it goes as soon as the outcome is there
        RememberShown();
        if (m_pPlace) {
            m_pPlace->End();
        }
    }
    m_queue.Begin(request);
    m_path = request.path;
    m_pWindow->ShowBusyMark(true);
    const QPointer<VelkoPdfView> pThis(this);
    SetState(State::Opening);
    return !pThis.isNull();
}

// For an open that fails: the control lets go of its document whatever comes.
void VelkoPdfView::RememberShown() {
    m_before.reset();
    Guard([this] {
        if (auto view = PlaceNow(true)) {
            m_before = std::make_unique<KeptView>(std::move(*view));
        }
    });
}

void VelkoPdfView::Await(Opening opening) {
    AwaitOpen(this, std::move(opening), m_path,
              [](VelkoPdfView& view, const Opening& ended, const QString& strTrouble) {
                  view.OnOpenEnded(ended, strTrouble);
              });
}

// --- the control's events --------------------------------------------------

// Between the control's first layout and its first frame on the screen, so that
// the reader sees the document come up at its place.
void VelkoPdfView::OnControlOpened(ErrorCode eCode) {
    if (m_queue.IsDropped()) {
        return;
    }
    if (eCode == ErrorCode::e_ErrSuccess) {
        const auto pFile = m_pControl->GetDocumentFile();
        m_shown = pFile ? FilePath(pFile->Path()) : FilePath();
        m_queue.Arrive();
        BeginShowing();
    }
    if (m_queue.IsIdle()) { // a password that was given later, or a document of the host's
        QMetaObject::invokeMethod(
            this, [this] { OnGiven(); }, Qt::QueuedConnection);
    }
}

// Not within the control's event, which its closing ends. By then another document may
// be the one that is asked for.
void VelkoPdfView::OnPasswordGivenUp() {
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_eState == State::PasswordNeeded && m_queue.IsIdle() &&
                !m_pControl->PasswordJudge()) {
                CloseDocument();
            }
        },
        Qt::QueuedConnection);
}

void VelkoPdfView::BeginShowing() {
    if (!m_bReloading) {
        m_history.Clear();
        m_bSeen = false;
    }
    m_zoom.SetFitMode(ZoomMode::kFitPage);
    m_zoom.NoteFit();
    ShowAround();
    m_bPlaceWaits = !m_pControl->HasViewer();
    if (!m_bPlaceWaits) {
        Guard([this] { ShowKeptPlace(); });
    }
}

// A document that waited for its password, or that a host gave, is told of before
// it has a viewer to show a place in.
void VelkoPdfView::OnControlLaidOut() {
    if (std::exchange(m_bPlaceWaits, false)) {
        Guard([this] { ShowKeptPlace(); });
    }
}

void VelkoPdfView::OnGiven() {
    if (!m_queue.IsIdle()) {
        return; // another document was asked for meanwhile
    }
    if (HasDocument()) {
        OnShown();
    } else {
        CloseDocument();
    }
}

// --- the end of an open ----------------------------------------------------

void VelkoPdfView::OnOpenEnded(const Opening& opening, const QString& strTrouble) {
    m_pWindow->ShowBusyMark(false);
    const OpeningQueue::Ended ended = m_queue.End();
    if (ended.next) {
        m_return.reset();
        Begin(*ended.next);
    } else if (ended.eState == Arrival::Dropped) {
        Guard([this] { m_pControl->CloseDocument(); });
    } else {
        TakeOutcome(ended, opening, strTrouble);
    }
}

void VelkoPdfView::TakeOutcome(const OpeningQueue::Ended& ended, const Opening& opening,
                               const QString& strTrouble) {
    ErrorCode eCode = ErrorCode::e_ErrUnknown;
    try {
        eCode = opening.get();
    } catch (...) {
        OnOpenBroken(ended, std::current_exception(), strTrouble);
        return;
    }
    if (eCode == ErrorCode::e_ErrPassword && ended.eState != Arrival::Arrived) {
        m_password = {};
        OnPasswordNeeded();
    } else if (m_bReloading && eCode != ErrorCode::e_ErrSuccess) {
        OnReloadFailed();
    } else if (eCode != ErrorCode::e_ErrSuccess && eCode != ErrorCode::e_ErrPassword) {
        ShowWhatIsLeft(strTrouble.isEmpty() ? ReasonOf(eCode) : strTrouble);
    } else if (m_pControl->GetPageCount() == 0) {
        Guard([this] { m_pControl->CloseDocument(); });
        ShowWhatIsLeft(
            QStringLiteral("The document has no pages. Ask for it anew where it came "
                           "from."));
    } else {
        m_password = ended.request.password;
        OnShown();
    }
}

void VelkoPdfView::OnShown() {
    m_path = m_shown.value_or(FilePath());
    m_before.reset();
    if (std::exchange(m_bLost, false)) {
        HoldFor(kLongestReloadMs);
    }
    const auto refused = std::exchange(m_return, std::nullopt);
    if (!SetState(State::Shown) || !Refresh()) {
        return;
    }
    if (m_pPlace) {
        m_pPlace->Begin();
        m_pMoved->Follow(!m_bPlaceKnown);
    }
    FollowShownFile();
    const QPointer<VelkoPdfView> pThis(this);
    emit Opened(PageCount());
    if (pThis && std::exchange(m_bReloading, false)) {
        m_pKeptSelection->BringBack(m_pFollower->PagesMoved());
        emit Reloaded();
    }
    if (pThis && refused && !refused->strReason.isEmpty()) {
        emit OpenFailed(refused->path.Text(), refused->strReason);
    }
}

// The document waits in the control for its password; nothing of it is shown.
void VelkoPdfView::OnPasswordNeeded() {
    const FilePath path = m_path;
    if (std::exchange(m_return, std::nullopt)) {
        m_before.reset(); // it is the one from before that asks
    }
    if (!SetState(State::PasswordNeeded) || !Refresh()) {
        return;
    }
    if (!m_pControl->PasswordJudge()) { // given up before the open had ended
        OnPasswordGivenUp();
    } else if (!m_pControl->IsPasswordDialogEnabled()) {
        emit OpenFailed(path.Text(), ReasonOf(ErrorCode::e_ErrPassword));
    }
}

// A failure on the way. The control may not have come to the new document, may
// hold it without a layout, or may even show it, when a later handler failed.
void VelkoPdfView::OnOpenBroken(const OpeningQueue::Ended& ended, const std::exception_ptr& pError,
                                const QString& strTrouble) {
    if (ended.eState == Arrival::Arrived && HasDocument()) {
        TellLater(ReasonOf(pError));
        OnShown();
    } else if (m_bReloading) {
        OnReloadFailed();
    } else if (IsUnreadablePlace(pError) && ForgetPlaceIn(ended.request.path)) {
        Open(ended.request.path, ended.request.password);
    } else {
        ShowWhatIsLeft(strTrouble.isEmpty() ? ReasonOf(pError) : strTrouble);
    }
}

// After an open that failed: the document from before, where the control still
// shows that one, else brought back, else none.
void VelkoPdfView::ShowWhatIsLeft(const QString& strReason) {
    if (!HasDocument()) { // what the control holds besides is laid out by nobody
        Guard([this] { m_pControl->CloseDocument(); });
    }
    if (!HasDocument() && m_before && !m_return) {
        Return({m_path, strReason});
        return;
    }
    const Refused refused =
        std::exchange(m_return, std::nullopt).value_or(Refused{m_path, strReason});
    m_before.reset();
    m_path = m_shown.value_or(refused.path);
    if (!SetState(HasDocument() ? State::Shown : State::Failed) || !Refresh()) {
        return;
    }
    if (m_pPlace && HasDocument()) {
        m_pPlace->Begin();
    }
    emit OpenFailed(refused.path.Text(), refused.strReason);
}

void VelkoPdfView::Return(Refused refused) {
    m_return = std::move(refused);
    Begin({FilePath(m_before->strPath), {}});
}

void VelkoPdfView::CloseDocument() {
    const bool bGivesUp = m_eState == State::PasswordNeeded && m_queue.IsIdle() && m_before &&
                          m_before->strPath != m_path.Bytes(); // which would ask again
    m_queue.Drop();
    m_pWindow->ShowBusyMark(false);
    EndReload();
    if (m_pReloader) {
        m_pReloader->End();
    }
    if (m_pPlace && HasDocument()) {
        m_pPlace->End();
    }
    m_pFollower->Forget();
    Guard([this] { m_pControl->CloseDocument(); });
    m_path = {};
    m_history.Clear();
    m_return.reset();
    if (bGivesUp) {
        Return({});
        return;
    }
    m_before.reset();
    if (SetState(State::Empty)) {
        Refresh();
    }
}

bool VelkoPdfView::SetState(State eState) {
    const QPointer<VelkoPdfView> pThis(this);
    if (std::exchange(m_eState, eState) != eState) {
        emit StateChanged(eState);
    }
    return pThis && m_eState == eState;
}

}
