// The pages and annotations of a scripted document, and what makes its objects.
#pragma once

#include <atomic>
#include <memory>

#include "document/engine/Bitmap.h"
#include "document/engine/PDFDoc.h"
#include "document/engine/ReflowPage.h"
#include "document/engine/Renderer.h"
#include "tests/support/scripted_engine/ScriptedEditor.h"
#include "tests/support/scripted_engine/ScriptedEngine.h"

namespace velko::testing {

using EnginePtr = std::shared_ptr<ScriptedEngine>;

std::shared_ptr<pdf::IPDFDocFactory> MakeDocFactory(EnginePtr pEngine);
std::shared_ptr<common::IBitmapFactory> MakeBitmapFactory(EnginePtr pEngine);
std::shared_ptr<common::IRendererFactory> MakeRendererFactory(EnginePtr pEngine);
std::shared_ptr<pdf::IReflowPageFactory> MakeReflowFactory(EnginePtr pEngine);

std::shared_ptr<common::Progressive> StartScriptedSave(
    const EnginePtr& pEngine, common::vxbase::IFileReaderCallback* pReader, // may be null
    const Windows::Storage::StorageFile& file, std::uint64_t nRevision);

// A progress that answers "to be continued" `nSteps` times.
class CountedProgress : public common::Progressive {
public:
    explicit CountedProgress(std::int32_t nSteps) : m_nSteps(nSteps) {}
    std::int32_t Continue() override { return m_nSteps-- > 0 ? kToBeContinued : kFinished; }

private:
    std::int32_t m_nSteps;
};

class ScriptedPageObject final : public pdf::PDFPage,
                                 public std::enable_shared_from_this<ScriptedPageObject> {
public:
    ScriptedPageObject(EnginePtr pEngine, std::shared_ptr<ScriptedEditor> pDoc, ScriptedPage page,
                       std::int32_t nIndex);

    const ScriptedPage& Script() const { return m_page; }

    float GetWidth() const override;
    float GetHeight() const override;
    std::int32_t GetIndex() const override { return m_nIndex; }
    std::int32_t GetRotation() const override { return m_page.nRotation & 3; }
    common::vxbase::RectF GetBox(std::int32_t) const override { return m_page.rcBox; }
    bool IsParsed() const override { return m_bParsed; }
    std::shared_ptr<common::Progressive> StartParse(std::int32_t nFlags,
                                                    common::IPauseCallback* pPause,
                                                    std::int32_t nReparse) override;
    common::vxbase::Matrix2D GetDisplayMatrix(std::int32_t nLeft, std::int32_t nTop,
                                              std::int32_t nWidth, std::int32_t nHeight,
                                              std::int32_t nRotate) const override;
    std::int32_t GetAnnotCount() override;
    std::shared_ptr<pdf::IAnnot> GetAnnot(std::int32_t nIndex) override;

private:
    class Parse;

    EnginePtr m_pEngine;
    ScriptedEngine::Counted m_counted;
    std::shared_ptr<ScriptedEditor> m_pDoc; // keeps the document alive
    ScriptedPage m_page;
    std::int32_t m_nIndex;
    std::atomic<bool> m_bParsed = false;
    std::atomic<std::int32_t> m_nToldAnnots = 0; // the largest count, which stays answerable
};

class ScriptedReflow final : public pdf::ReflowPage {
public:
    ScriptedReflow(EnginePtr pEngine, std::shared_ptr<ScriptedPageObject> pPage)
        : m_pEngine(std::move(pEngine)), m_pPage(std::move(pPage)) {}

    std::int32_t Index() const { return m_pPage->GetIndex(); }

    void SetScreenSize(float fWidth, float) override { m_nWidth = static_cast<int>(fWidth); }
    void SetZoom(std::int32_t nPercent) override { m_nPercent = nPercent; }
    void SetSpacing1(float) override {}
    void SetSpacing2(float) override {}
    void SetParseFlags(std::int32_t nFlags) override { m_nFlags = nFlags; }
    std::shared_ptr<common::Progressive> StartParse(common::IPauseCallback*) override;
    std::int32_t GetContentWidth() const override { return m_nHeight > 0 ? m_nWidth : 0; }
    std::int32_t GetContentHeight() const override { return m_nHeight; }
    common::vxbase::Matrix2D GetDisplayMatrix() const override { return {}; }

private:
    const EnginePtr m_pEngine;
    const std::shared_ptr<ScriptedPageObject> m_pPage;
    std::int32_t m_nWidth = 0;
    std::int32_t m_nPercent = 100;
    std::int32_t m_nFlags = kText;
    std::int32_t m_nHeight = 0; // measured
};

struct ScriptedAnnotObject final : pdf::IAnnot {
    ScriptedAnnotObject(const ScriptedAnnot& ofPage, std::int32_t nOfPage, std::int32_t nInPage)
        : annot(ofPage), nPage(nOfPage), nIndex(nInPage) {}
    std::int32_t GetType() const override { return annot.nType; }

    const ScriptedAnnot annot;
    const std::int32_t nPage;
    const std::int32_t nIndex;
};

}
