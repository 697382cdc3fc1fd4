#include "engines/mupdf/reflow/ReflowedPage.h"

#include <utility>

#include "engines/mupdf/Document.h"
#include "engines/mupdf/FinishedProgress.h"
#include "engines/mupdf/reflow/ExtractedText.h"
#include "engines/mupdf/reflow/ModelBuilder.h"

namespace velko::engines::mupdf::reflow {

using Lock = concurrency::critical_section::scoped_lock;

void ReflowedPage::SetScreenSize(float fWidth, float fHeight) {
    m_parameters.fScreenWidth = fWidth;
    m_parameters.fScreenHeight = fHeight;
}

void ReflowedPage::SetParseFlags(std::int32_t nFlags) {
    m_parameters.bPictures = nFlags == kTextAndPictures;
}

ReflowedPage::Parsed ReflowedPage::Last() const {
    const Lock lock(m_lock);
    return m_last;
}

PageCache::Key ReflowedPage::KeyOf(PageCache::Kind eKind, std::uint64_t nVariant) const {
    return {m_pPage->Owner().CacheNumber(), m_pPage->GetIndex(), eKind, nVariant};
}

// Of what was made with the page's annotations as they are now.
PageCache::Key ReflowedPage::KeyWithAnnots(PageCache::Kind eKind, std::uint64_t nNumber) const {
    constexpr unsigned kNumberBits = 32U;
    return KeyOf(eKind, m_pPage->AnnotGeneration() << kNumberBits | nNumber);
}

// What a layout keeps alive leaves the cache after it.
void ReflowedPage::TouchModel() const {
    PageCache& cache = PageCache::Instance();
    cache.Touch(KeyWithAnnots(PageCache::Kind::Model, m_pPage->Owner().Sizes().Generation()));
    cache.Touch(KeyOf(PageCache::Kind::Content));
    cache.Touch(KeyOf(PageCache::Kind::Annots, m_pPage->AnnotGeneration()));
}

std::shared_ptr<const PageModel> ReflowedPage::Model() const {
    const PageCache::Key key =
        KeyWithAnnots(PageCache::Kind::Model, m_pPage->Owner().Sizes().Generation());
    if (auto pModel = PageCache::Instance().Find<PageModel>(key)) {
        return pModel;
    }
    auto pContent = m_pPage->Content(nullptr);
    auto pAnnots = m_pPage->GetAnnotCount() != 0 ? m_pPage->Annots(nullptr) : nullptr;
    Operation operation(nullptr, CurrentBudgets().parse);
    auto pModel = std::make_shared<const PageModel>(BuildModel(
        std::move(pContent), std::move(pAnnots), PageInLists(m_pPage->Facts()), operation));
    PageCache::Instance().Put(key, pModel);
    return pModel;
}

std::shared_ptr<const Layout> ReflowedPage::FindLayout(std::uint64_t nNumber) const {
    auto pLayout =
        PageCache::Instance().Find<Layout>(KeyWithAnnots(PageCache::Kind::Layout, nNumber));
    if (pLayout) {
        TouchModel();
    }
    return pLayout;
}

std::shared_ptr<const Layout> ReflowedPage::MakeLayout(const Parsed& parsed) const {
    const std::uint64_t nAnnots = m_pPage->AnnotGeneration(); // an edit may come meanwhile
    const PageCache::Key key = KeyWithAnnots(PageCache::Kind::Layout, parsed.nNumber);
    auto pLayout = SetModel(Model(), parsed.parameters);
    m_pPage->Owner().Sizes().Put(parsed.nNumber, m_pPage->GetIndex(),
                                 {pLayout->nWidth, pLayout->nHeight, pLayout->bCutShort, nAnnots});
    PageCache::Instance().Put(key, pLayout);
    TouchModel();
    return pLayout;
}

std::int32_t ReflowedPage::Parse(const SetParameters& parameters) {
    MeasuredSizes& sizes = m_pPage->Owner().Sizes();
    Parsed parsed;
    parsed.parameters = parameters;
    parsed.nNumber = sizes.NumberOf(parsed.parameters);
    parsed.pLayout = FindLayout(parsed.nNumber);
    const auto size = sizes.Find(parsed.nNumber, m_pPage->GetIndex());
    if (size && size->nAnnots == m_pPage->AnnotGeneration()) {
        parsed.size = *size;
    } else {
        parsed.pLayout = MakeLayout(parsed);
        const Layout& layout = *parsed.pLayout;
        parsed.size = {layout.nWidth, layout.nHeight, layout.bCutShort};
    }
    const bool bCutShort = parsed.size.bCutShort;
    const Lock lock(m_lock);
    m_last = std::move(parsed);
    return bCutShort ? common::Progressive::kCutShort : common::Progressive::kFinished;
}

std::shared_ptr<common::Progressive> ReflowedPage::StartParse(common::IPauseCallback* pPause) {
    const SetParameters parameters = Bounded(m_parameters);
    try {
        const Operation::Patience patience(pPause);
        return std::make_shared<FinishedProgress>(Parse(parameters));
    } catch (const Operation::Paused&) {
        return std::make_shared<PutOffProgress>(
            [pSelf = shared_from_this(), parameters] { return pSelf->Parse(parameters); });
    }
}

std::shared_ptr<const Layout> ReflowedPage::Result() const {
    const Parsed last = Last();
    if (last.pLayout || last.nNumber == 0) {
        return last.pLayout;
    }
    auto pLayout = FindLayout(last.nNumber);
    if (!pLayout) {
        pLayout = MakeLayout(last);
    }
    const Lock lock(m_lock);
    if (m_last.nNumber == last.nNumber) {
        m_last.pLayout = pLayout;
    }
    return pLayout;
}

std::int32_t ReflowedPage::GetContentWidth() const {
    return Last().size.nWidth;
}

std::int32_t ReflowedPage::GetContentHeight() const {
    return Last().size.nHeight;
}

std::shared_ptr<pdf::ReflowPage> ReflowedPageFactory::Create(std::shared_ptr<pdf::PDFPage> pPage) {
    auto pOwn = std::dynamic_pointer_cast<Page>(std::move(pPage));
    if (!pOwn) {
        throw common::EngineException(common::ErrorCode::e_ErrParam, "not a page of this engine");
    }
    return std::make_shared<ReflowedPage>(std::move(pOwn));
}

}
