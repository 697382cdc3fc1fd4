#include "tools/replay/CountedEngine.h"

#include <utility>

#include "document/engine/PDFDoc.h"
#include "document/engine/ReflowPage.h"
#include "document/engine/Renderer.h"

namespace velko::replay {

namespace {

using velko::common::Bitmap;
using velko::common::IPauseCallback;
using velko::common::IRendererFactory;
using velko::common::Progressive;
using velko::common::Renderer;
using velko::common::vxbase::IFileReaderCallback;
using velko::common::vxbase::Matrix2D;
using velko::pdf::IAnnot;
using velko::pdf::IPDFDocFactory;
using velko::pdf::PDFDoc;
using velko::pdf::PDFPage;
using velko::pdf::ReflowPage;

class CountedRenderer final : public Renderer {
public:
    CountedRenderer(std::shared_ptr<Renderer> pInner, std::shared_ptr<Counters> pCounters,
                    std::shared_ptr<Faults> pFaults)
        : m_pInner(std::move(pInner)),
          m_pCounters(std::move(pCounters)),
          m_pFaults(std::move(pFaults)) {}

    void SetColorMode(std::int32_t nMode) override { m_pInner->SetColorMode(nMode); }
    void SetMappingModeColors(std::uint32_t nBackColor, std::uint32_t nForeColor) override {
        m_pInner->SetMappingModeColors(nBackColor, nForeColor);
    }
    void SetScanColors(velko::common::ScanColors eColors) override {
        m_pInner->SetScanColors(eColors);
    }
    void SetRenderContentFlags(std::uint32_t nFlags) override {
        m_pInner->SetRenderContentFlags(nFlags);
    }
    std::shared_ptr<Progressive> StartRender(std::shared_ptr<PDFPage> pPage, const Matrix2D& matrix,
                                             IPauseCallback* pPause) override {
        CountRender();
        return m_pInner->StartRender(std::move(pPage), matrix, pPause);
    }
    bool RenderAnnot(std::shared_ptr<IAnnot> pAnnot, const Matrix2D& matrix) override {
        return m_pInner->RenderAnnot(std::move(pAnnot), matrix);
    }
    std::shared_ptr<Progressive> StartRenderReflowPage(std::shared_ptr<ReflowPage> pPage,
                                                       const Matrix2D& matrix,
                                                       IPauseCallback* pPause) override {
        CountRender();
        return m_pInner->StartRenderReflowPage(std::move(pPage), matrix, pPause);
    }
    void SetAbortFlag(std::shared_ptr<const std::atomic<bool>> pAbort) override {
        m_pInner->SetAbortFlag(std::move(pAbort));
    }
    bool IsIncomplete() const override { return m_pInner->IsIncomplete(); }

private:
    void CountRender() {
        ++m_pCounters->nEngineRenders;
        if (m_pFaults->Strikes(Fault::EngineThrow)) {
            throw velko::common::EngineException(velko::common::ErrorCode::e_ErrUnknown,
                                                 "ordered engine failure");
        }
    }

    std::shared_ptr<Renderer> m_pInner;
    std::shared_ptr<Counters> m_pCounters;
    std::shared_ptr<Faults> m_pFaults;
};

class CountedRendererFactory final : public IRendererFactory {
public:
    CountedRendererFactory(std::shared_ptr<IRendererFactory> pInner,
                           std::shared_ptr<Counters> pCounters, std::shared_ptr<Faults> pFaults)
        : m_pInner(std::move(pInner)),
          m_pCounters(std::move(pCounters)),
          m_pFaults(std::move(pFaults)) {}

    std::shared_ptr<Renderer> Create(std::shared_ptr<Bitmap> pBitmap) override {
        return std::make_shared<CountedRenderer>(m_pInner->Create(std::move(pBitmap)), m_pCounters,
                                                 m_pFaults);
    }

private:
    std::shared_ptr<IRendererFactory> m_pInner;
    std::shared_ptr<Counters> m_pCounters;
    std::shared_ptr<Faults> m_pFaults;
};

class CountedDocFactory final : public IPDFDocFactory {
public:
    CountedDocFactory(std::shared_ptr<IPDFDocFactory> pInner, std::shared_ptr<Counters> pCounters)
        : m_pInner(std::move(pInner)), m_pCounters(std::move(pCounters)) {}

    std::shared_ptr<PDFDoc> Create(std::shared_ptr<IFileReaderCallback> pReader) override {
        ++m_pCounters->nEngineOpens;
        return m_pInner->Create(std::move(pReader));
    }

private:
    std::shared_ptr<IPDFDocFactory> m_pInner;
    std::shared_ptr<Counters> m_pCounters;
};

}

void CountEngine(std::shared_ptr<Counters> pCounters, std::shared_ptr<Faults> pFaults) {
    using velko::common::kRendererClass;
    using velko::pdf::kPDFDocClass;
    auto pDocs = Platform::GetActivationFactory<IPDFDocFactory>(kPDFDocClass);
    auto pRenderers = Platform::GetActivationFactory<IRendererFactory>(kRendererClass);
    Platform::RegisterActivationFactory(
        kPDFDocClass, std::make_shared<CountedDocFactory>(std::move(pDocs), pCounters));
    Platform::RegisterActivationFactory(
        kRendererClass, std::make_shared<CountedRendererFactory>(
                            std::move(pRenderers), std::move(pCounters), std::move(pFaults)));
}

}
