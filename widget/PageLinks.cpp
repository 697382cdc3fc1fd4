#include "widget/PageLinks.h"

#include <QPointer>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"
#include "platform/system/Debug.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

using velko::pdf::ILinkSource;
using velko::pdf::PDFDoc;

namespace {

constexpr std::size_t kMostPages = 64; // whose links are kept

PageLinks::Links LinksOf(const std::shared_ptr<PDFDoc>& pDocument, std::int32_t nPage) {
    try {
        const auto pSource = std::dynamic_pointer_cast<ILinkSource>(pDocument);
        return pSource ? pSource->GetLinks(nPage) : PageLinks::Links();
    } catch (...) {
        Platform::Debug::OutputDebugString("the links of page " + std::to_string(nPage) +
                                           " could not be read\n");
        return {};
    }
}

}

bool PageLinks::IsSameDocument() {
    const auto pDocument = m_control.GetPDFDoc();
    if (pDocument && m_wkDocument.lock() == pDocument) {
        return true;
    }
    m_links.clear();
    m_wkDocument = pDocument;
    return false;
}

std::shared_ptr<const PageLinks::Links> PageLinks::Find(std::int32_t nPage) {
    if (m_control.GetPageLayoutMode() == LayoutMode::kReflow) {
        static const auto s_pNone = std::make_shared<const Links>();
        return s_pNone;
    }
    const auto it = m_links.find(nPage);
    if (it != m_links.end()) {
        return it->second;
    }
    Begin(nPage);
    return nullptr;
}

void PageLinks::Begin(std::int32_t nPage) {
    const auto pDocument = Document();
    if (!pDocument) {
        return;
    }
    if (m_links.size() >= kMostPages) {
        m_links.clear();
    }
    m_links[nPage].reset();
    const auto fnRead = [pDocument, nPage] { return LinksOf(pDocument, nPage); };
    concurrency::create_task(fnRead).then([pThis = QPointer<PageLinks>(this),
                                           wkDocument = std::weak_ptr<PDFDoc>(pDocument),
                                           nPage](const concurrency::task<Links>& reading) {
        if (pThis && reading.is_value()) {
            pThis->OnRead(wkDocument, nPage, reading.get());
        }
    });
}

void PageLinks::OnRead(const std::weak_ptr<PDFDoc>& wkDocument, std::int32_t nPage, Links links) {
    if (wkDocument.lock() == m_wkDocument.lock()) {
        m_links[nPage] = std::make_shared<const Links>(std::move(links));
        emit Read(nPage);
    }
}

}
