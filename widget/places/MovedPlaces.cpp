#include "widget/places/MovedPlaces.h"

#include <filesystem>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "widget/places/ShownIdentity.h"
#include "widget/reload/OpenedFile.h"

namespace velko::vkit {

namespace {

constexpr int kDelayMs = 700;

bool IsGone(const std::string& strPath) {
    std::error_code ignored;
    return !std::filesystem::exists(strPath, ignored);
}

}

MovedPlaces::MovedPlaces(std::shared_ptr<PDFViewCtrl> pControl,
                         std::function<void(const KeptView& kept)> fnFound)
    : m_pControl(std::move(pControl)), m_fnFound(std::move(fnFound)) {
    m_delay.setSingleShot(true);
    m_delay.setInterval(kDelayMs);
    m_delay.callOnTimeout(this, [this] { Read(this); });
}

void MovedPlaces::Begin() {
    End();
    const auto pFile = m_pControl->GetDocumentFile();
    const auto pOpened = std::dynamic_pointer_cast<OpenedFile>(pFile);
    m_identity.strPath = pFile ? pFile->Path() : std::string();
    m_identity.version =
        pOpened ? pOpened->Version().value_or(m_identity.version) : m_identity.version;
}

std::optional<KeptView> MovedPlaces::FindAtOnce() {
    auto kept = FindMovedView(m_identity, [](const std::string&) { return false; });
    if (kept) {
        ForgetWhenGone(kept->strPath);
    }
    return kept;
}

void MovedPlaces::Follow(bool bSeek) {
    m_bSeek = bSeek;
    m_delay.start();
}

void MovedPlaces::End() {
    ++m_nDocument;
    m_delay.stop();
    m_identity = {};
}

concurrency::task<void> MovedPlaces::Read(QPointer<MovedPlaces> pSelf) {
    const bool bSeek = pSelf->m_bSeek;
    const int nDocument = pSelf->m_nDocument;
    const auto identifying = ReadIdentityOf(*pSelf->m_pControl);
    const DocIdentity identity = co_await identifying;
    if (!pSelf || pSelf->m_nDocument != nDocument) {
        co_return;
    }
    pSelf->m_identity = identity;
    if (!bSeek) {
        co_return;
    }
    const auto seeking =
        concurrency::create_task([identity] { return FindMovedView(identity, IsGone); });
    const std::optional<KeptView> kept = co_await seeking;
    if (kept && pSelf && pSelf->m_nDocument == nDocument) {
        ForgetWhenGone(kept->strPath);
        pSelf->m_fnFound(*kept);
    }
}

// The list names no file twice.
void MovedPlaces::ForgetWhenGone(const std::string& strPath) {
    concurrency::create_task([strPath] {
        if (IsGone(strPath)) {
            ForgetViews({strPath});
        }
    });
}

}
