#include "widget/VelkoPdfView.h"

#include <utility>

#include "component/KeptView.h"
#include "platform/qt/QtElementWindow.h"
#include "widget/FlingLimit.h"
#include "widget/LinkFollower.h"
#include "widget/OpenFailure.h"
#include "widget/PlaceKeeper.h"
#include "widget/StoreNotice.h"
#include "widget/VelkoRuntime.h"

namespace velko::vkit {

using concurrency::task;
using velko::common::ErrorCode;

namespace {

task<void> AwaitOpen(QPointer<VelkoPdfView> pView, VelkoPdfView::Opening opening,
                     std::function<void(VelkoPdfView&, const VelkoPdfView::Opening&)> fnEnded) {
    co_await opening.settled();
    if (pView) {
        fnEnded(*pView, opening);
    }
}

}

std::shared_ptr<PDFViewCtrl> VelkoPdfView::CreateControl() {
    auto pControl = PDFViewCtrl::Create();
    pControl->ApplyTemplate();
    return pControl;
}

VelkoPdfView::Opening VelkoPdfView::BeginOpen(PDFViewCtrl& control, const FilePath& path,
                                              const QString& strPassword) {
    return control.OpenPdfDocument(path.Absolute().Bytes(), strPassword.toStdString());
}

VelkoPdfView::VelkoPdfView(QWidget* pParent) : VelkoPdfView(CreateControl(), pParent) {}

VelkoPdfView::VelkoPdfView(std::shared_ptr<PDFViewCtrl> pControl, QWidget* pParent)
    : QWidget(pParent),
      m_pControl(std::move(pControl)),
      m_pWindow(new Platform::Qt::QtElementWindow(VelkoRuntime::Environment(), m_pControl, this)),
      m_pLinks(std::make_unique<LinkFollower>(*m_pControl, *m_pWindow)),
      m_pFlingLimit(std::make_unique<FlingLimit>(*m_pControl, *m_pWindow)),
      m_pStoreNotice(std::make_unique<StoreNotice>(
          [this](const auto& failure) { emit Failed(StoreNotice::TextOf(failure)); })) {
    m_pWindow->ShowBusyMark(false);
    setFocusProxy(m_pWindow);
    ConnectWindow();
    ConnectLinks();
    m_facts = ReadFacts();
    ShowAround();
}

VelkoPdfView::~VelkoPdfView() {
    if (m_pPlace) {
        m_pPlace->End();
        m_pPlace.reset();
    }
    m_pLinks.reset();
    m_pFlingLimit.reset();
    delete m_pWindow; // unloads the tree while the control still lives
    m_pWindow = nullptr;
    try {
        m_pControl->Dispose();
    } catch (...) { // a host's handler of the closing; there is no one left to tell
    }
}

void VelkoPdfView::ConnectWindow() {
    m_pWindow->OnFailure = [this](const std::exception_ptr& pError) { Report(pError); };
    m_pWindow->OnBeforeArrange = [this] { BeforeArrange(); };
    m_pWindow->OnAfterArrange = [this] { AfterArrange(); };
    m_pWindow->OnPresented = [this] { QueueRefresh(); };
    m_pWindow->OnPainted = [this] { OnPainted(); };
    m_pControl->OpenDocEvent.add(
        [pView = QPointer<VelkoPdfView>(this)](const auto&, const auto& pArgs) {
            if (pView) {
                pView->OnControlOpened(pArgs->ErrorCode);
            }
        });
}

void VelkoPdfView::ConnectLinks() {
    m_pLinks->OnFollow = [this](const LinkFollower::Link& link) { FollowLink(link); };
    m_pLinks->OnHover = [this](const LinkFollower::Link* pLink) {
        emit LinkHovered(pLink != nullptr ? TargetOf(*pLink) : QString());
    };
}

void VelkoPdfView::KeepPlace(bool bKeep) {
    m_pPlace.reset();
    if (!bKeep) {
        return;
    }
    m_pPlace = std::make_unique<PlaceKeeper>([this](bool bLeft) { return PlaceNow(bLeft); });
    m_pPlace->OnFailure = [this](const std::exception_ptr& pError) {
        emit Failed(QStringLiteral("Your place in the document could not be kept: ") +
                    ReasonOf(pError));
    };
    if (m_eState == State::Shown) {
        m_pPlace->Begin();
    }
}

// --- opening and closing ---------------------------------------------------

void VelkoPdfView::Open(const FilePath& path, const QString& strPassword) {
    if (m_bOpening) {
        m_next = Request{path, strPassword};
        return;
    }
    Expect(path); // first: a quick open raises the control's events within the call
    try {
        Await(BeginOpen(*m_pControl, path, strPassword));
    } catch (...) {
        OnOpenFailed(std::current_exception());
    }
}

void VelkoPdfView::Follow(const FilePath& path, Opening opening) {
    Expect(path);
    Await(std::move(opening));
}

void VelkoPdfView::Expect(const FilePath& path) {
    if (m_pPlace && HasDocument()) {
        m_pPlace->End(); // the document goes as soon as the next one is there
    }
    m_bOpening = true;
    m_path = path.Absolute();
    m_pWindow->ShowBusyMark(true);
    SetState(State::Opening);
}

void VelkoPdfView::Await(Opening opening) {
    AwaitOpen(this, std::move(opening),
              [](VelkoPdfView& view, const Opening& ended) { view.OnOpenEnded(ended); });
}

// Between the control's first layout and its first frame on the screen, so that
// the reader sees the document come up at its place.
void VelkoPdfView::OnControlOpened(ErrorCode eCode) {
    const bool bShown = eCode == ErrorCode::e_ErrSuccess;
    if (bShown) {
        m_history.Clear();
        m_bSeen = false;
        m_eFit = Fit::Page;
        m_fFitScale = m_pControl->GetScale();
        ShowAround();
        Guard([this] { ShowKeptPlace(); });
    }
    // A password that is given later shows the document without an open ending.
    if (m_eState == State::PasswordNeeded) {
        QMetaObject::invokeMethod(
            this, [this, bShown] { OnPasswordAnswered(bShown); }, Qt::QueuedConnection);
    }
}

void VelkoPdfView::OnOpenEnded(const Opening& opening) {
    ErrorCode eCode = ErrorCode::e_ErrUnknown;
    try {
        eCode = opening.get();
    } catch (...) {
        OnOpenFailed(std::current_exception());
        return;
    }
    EndOpening();
    if (m_next) {
        OpenNext();
    } else if (eCode == ErrorCode::e_ErrSuccess) {
        OnShown();
    } else {
        OnOpenRefused(eCode);
    }
}

void VelkoPdfView::EndOpening() {
    m_bOpening = false;
    m_pWindow->ShowBusyMark(false);
}

void VelkoPdfView::OpenNext() {
    const Request next = *std::exchange(m_next, std::nullopt);
    Open(next.path, next.strPassword);
}

// The control never came to the new document and still shows the old one.
void VelkoPdfView::OnOpenFailed(const std::exception_ptr& pError) {
    EndOpening();
    if (m_next) {
        OpenNext();
        return;
    }
    const FilePath refused = std::exchange(m_path, m_shownPath);
    SetState(HasDocument() ? State::Shown : State::Failed);
    if (m_pPlace && HasDocument()) {
        m_pPlace->Begin();
    }
    Refresh();
    emit OpenFailed(refused.Text(), ReasonOf(pError));
}

void VelkoPdfView::OnOpenRefused(ErrorCode eCode) {
    const bool bPassword = eCode == ErrorCode::e_ErrPassword;
    if (!bPassword) {
        // The control keeps the failed document; nothing of it can be shown.
        Guard([this] { m_pControl->CloseDocument(); });
    }
    m_shownPath = {};
    SetState(bPassword ? State::PasswordNeeded : State::Failed);
    Refresh();
    emit OpenFailed(m_path.Text(), ReasonOf(eCode));
}

void VelkoPdfView::OnPasswordAnswered(bool bShown) {
    if (m_eState != State::PasswordNeeded) {
        return; // another document was asked for meanwhile
    }
    if (bShown) {
        OnShown();
    } else {
        CloseDocument();
    }
}

void VelkoPdfView::OnShown() {
    m_shownPath = m_path;
    SetState(State::Shown);
    Refresh();
    if (m_pPlace) {
        m_pPlace->Begin();
    }
    emit Opened(PageCount());
}

void VelkoPdfView::CloseDocument() {
    m_next.reset();
    if (m_pPlace && HasDocument()) {
        m_pPlace->End();
    }
    Guard([this] { m_pControl->CloseDocument(); });
    m_path = {};
    m_shownPath = {};
    m_history.Clear();
    SetState(State::Empty);
    Refresh();
}

void VelkoPdfView::SetState(State eState) {
    if (std::exchange(m_eState, eState) != eState) {
        emit StateChanged(eState);
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
    try {
        fnBody();
    } catch (...) {
        Report(std::current_exception());
    }
}

void VelkoPdfView::Report(const std::exception_ptr& pError) {
    emit Failed(ReasonOf(pError));
}

}
