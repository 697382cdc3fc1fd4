// Showing a document anew when its file has changed.
#include <QGuiApplication>
#include <utility>

#include "component/KeptView.h"
#include "platform/qt/QtElementWindow.h"
#include "widget/OpenFailure.h"
#include "widget/PageNotices.h"
#include "widget/PlaceKeeper.h"
#include "widget/VelkoPdfView.h"
#include "widget/edit/DocSaver.h"
#include "widget/edit/ViewEdits.h"
#include "widget/places/PlaceFollower.h"
#include "widget/reload/DocReloader.h"
#include "widget/reload/OpenedFile.h"
#include "widget/text/KeptSelection.h"

namespace velko::vkit {

void VelkoPdfView::FollowFile(bool bFollow) {
    m_pReloader.reset();
    if (!bFollow) {
        return;
    }
    DocReloader::Hands hands;
    hands.fnIsBusy = [this] { return IsInTheMiddle(); };
    hands.fnIsEdited = [this] { return IsModified(); };
    hands.fnWasRepaired = [this] { return IsRepaired(); };
    hands.fnPrepare = [this](const JudgedFile& ready, std::function<void()> fnDone) {
        PrepareReload(ready, std::move(fnDone));
    };
    hands.fnReload = [this](auto pFile) { Reload(std::move(pFile)); };
    m_pReloader = std::make_unique<DocReloader>(std::move(hands));
    DocReloader* const pReloader = m_pReloader.get();
    connect(this, &VelkoPdfView::ViewChanged, pReloader, &DocReloader::Try);
    connect(m_pSaver.get(), &DocSaver::Saved, pReloader, &DocReloader::TakeSaved);
    connect(pReloader, &DocReloader::Changed, this, [this] {
        if (HasDocument()) {
            Guard([this] { m_pControl->UpdateViewer(); });
        }
    });
    // A page that cannot be read while the file is written comes by itself.
    m_pNotices->HideWhile([this](const PageFailure& failure) {
        return m_pReloader && m_pReloader->IsAutomatic() &&
               m_pReloader->WhyNot() == DocReloader::Why::None &&
               failure.eCode == velko::common::ErrorCode::e_ErrConflict;
    });
    if (m_eState == State::Shown) {
        FollowShownFile();
    }
}

void VelkoPdfView::FollowShownFile() {
    if (m_pReloader) {
        m_pReloader->Begin(m_path,
                           std::dynamic_pointer_cast<OpenedFile>(m_pControl->GetDocumentFile()),
                           m_password);
    }
}

bool VelkoPdfView::IsInTheMiddle() const {
    return !m_queue.IsIdle() || m_eState != State::Shown ||
           QGuiApplication::mouseButtons() != Qt::NoButton || m_pWindow->IsTouched() ||
           m_pWindow->IsInertiaRunning() || m_pSaver->IsSaving() || m_pEdits->Edits().IsBusy();
}

void VelkoPdfView::PrepareReload(const JudgedFile& ready, std::function<void()> fnDone) {
    const auto fnPlace = [this]() -> std::optional<KeptView> {
        return m_bLost && m_before ? std::optional(*m_before) : PlaceNow(true);
    };
    m_pFollower->Prepare(ready, m_password, fnPlace, std::move(fnDone));
}

// The state stays what it is: for the reader it is one document.
void VelkoPdfView::Reload(std::shared_ptr<OpenedFile> pFile) {
    if (!m_bLost) {
        m_pKeptSelection->Take();
        RememberShown();
        if (m_pPlace) {
            m_pPlace->End();
        }
    }
    m_pFollower->EndPreparing(m_before.get());
    m_bReloading = true;
    const OpeningQueue::Request request{m_path, m_password, std::move(pFile)};
    m_queue.Begin(request);
    BeginOpening(request);
}

// The file was written again just then. Where that has cost the document that was
// shown, its picture stays until there is a good file.
void VelkoPdfView::OnReloadFailed() {
    m_bReloading = false;
    if (!HasDocument()) {
        Guard([this] { m_pControl->CloseDocument(); });
        m_bLost = true;
        m_pWindow->HoldFrame();
        m_hold.stop();
    } else if (m_pPlace) {
        m_pPlace->Begin();
    }
    if (m_pReloader) {
        m_pReloader->OnFailed();
    }
}

// Another document is to be shown, or none.
void VelkoPdfView::EndReload() {
    m_bReloading = false;
    if (std::exchange(m_bLost, false)) {
        m_before.reset(); // nothing can bring that one back
        m_pWindow->ReleaseFrame();
    }
}

}
