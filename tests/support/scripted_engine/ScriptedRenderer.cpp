#include <cmath>
#include <cstddef>

#include "tests/support/scripted_engine/ScriptedDoc_p.h"
#include "tests/support/scripted_engine/ScriptedReflowPage_p.h"
#include "tests/support/scripted_engine/ScriptedRenderer_p.h"

namespace velko::testing {

using common::EngineException;
using common::ErrorCode;
using common::vxbase::Matrix2D;
using common::vxbase::PointF;
using common::vxbase::RectF;

namespace {

bool Contains(const RectF& rc, PointF pt) {
    return pt.X >= rc.Left && pt.X < rc.Right && pt.Y >= rc.Bottom && pt.Y < rc.Top;
}

std::uint32_t PageColorAt(const ScriptedPage& page, std::int32_t nIndex, PointF pt) {
    if (!Contains(page.rcBox, pt)) {
        return 0;
    }
    std::uint32_t nColor = 0;
    if (page.ePaper == ScriptedPage::Paper::Pattern) {
        nColor = PatternColor(nIndex, pt);
    } else if (page.ePaper == ScriptedPage::Paper::Solid) {
        nColor = page.nColor;
    }
    for (const ScriptedRect& rect : page.rects) {
        if (Contains(rect.rcArea, pt)) {
            nColor = rect.nColor;
        }
    }
    return nColor;
}

// The inverse of a display matrix in full precision, so that a pixel finds the
// same page point in whatever bitmap it lies.
class PixelToPage {
public:
    explicit PixelToPage(const Matrix2D& m)
        : m_m(m), m_dbDeterminant(double{m.A} * m.D - double{m.B} * m.C) {}
    bool Exists() const { return m_dbDeterminant != 0.0 && std::isfinite(m_dbDeterminant); }
    PointF operator()(std::int32_t x, std::int32_t y) const {
        const double dbX = x + 0.5 - m_m.E;
        const double dbY = y + 0.5 - m_m.F;
        return {static_cast<float>((m_m.D * dbX - m_m.C * dbY) / m_dbDeterminant),
                static_cast<float>((m_m.A * dbY - m_m.B * dbX) / m_dbDeterminant)};
    }

private:
    Matrix2D m_m;
    double m_dbDeterminant;
};

// Counts a render as running and keeps the highest count.
class RunningRender {
public:
    explicit RunningRender(EngineScript& script) : m_script(script) {
        const int nNow = ++m_script.m_nRenders;
        int nPeak = m_script.m_nPeakRenders;
        while (nPeak < nNow && !m_script.m_nPeakRenders.compare_exchange_weak(nPeak, nNow)) {
        }
    }
    ~RunningRender() { --m_script.m_nRenders; }
    RunningRender(const RunningRender&) = delete;
    RunningRender& operator=(const RunningRender&) = delete;

private:
    EngineScript& m_script;
};

}

ScriptedRenderer::ScriptedRenderer(std::shared_ptr<EngineScript> pScript,
                                   std::shared_ptr<common::Bitmap> pBitmap)
    : m_pScript(std::move(pScript)), m_pBitmap(std::move(pBitmap)) {}

void ScriptedRenderer::SetMappingModeColors(std::uint32_t nBackColor, std::uint32_t nForeColor) {
    m_nBackColor = nBackColor;
    m_nForeColor = nForeColor;
}

void ScriptedRenderer::SetAbortFlag(std::shared_ptr<const std::atomic<bool>> pAbort) {
    m_pAbort = std::move(pAbort);
}

EngineCall ScriptedRenderer::MakeCall(EngineOp eOp, const Matrix2D& matrix) const {
    EngineCall call;
    call.eOp = eOp;
    call.matrix = matrix;
    call.nWidth = m_pBitmap->GetWidth();
    call.nHeight = m_pBitmap->GetHeight();
    call.nColorMode = m_nColorMode;
    call.nBackColor = m_nBackColor;
    call.nForeColor = m_nForeColor;
    call.bHasAbortFlag = m_pAbort != nullptr;
    return call;
}

std::shared_ptr<common::Progressive> ScriptedRenderer::StartRender(
    std::shared_ptr<pdf::PDFPage> pPage, const Matrix2D& matrix, common::IPauseCallback*) {
    const auto pScripted = std::dynamic_pointer_cast<ScriptedPageObject>(pPage);
    if (!pScripted) {
        throw EngineException(ErrorCode::e_ErrParam, "a page of another engine");
    }
    const RunningRender running(*m_pScript);
    EngineCall call = MakeCall(EngineOp::StartRender, matrix);
    call.nPage = pScripted->Index();
    m_pScript->Arrive(call, m_pAbort.get());
    if (!pScripted->IsParsed()) {
        pScripted->StartParse(0, nullptr, 0);
    }
    m_bIncomplete = m_bIncomplete || m_pScript->IsCutShort(pScripted->Index());
    const ScriptedPage& page = pScripted->Script();
    const bool bBlank = page.ePaper == ScriptedPage::Paper::None && page.rects.empty();
    if ((m_nContentFlags & kRenderContent) && !bBlank) {
        Paint(matrix, [&](PointF pt) { return PageColorAt(page, pScripted->Index(), pt); });
    }
    return std::make_shared<CountedProgress>(0);
}

bool ScriptedRenderer::RenderAnnot(std::shared_ptr<pdf::IAnnot> pAnnot, const Matrix2D& matrix) {
    const auto pScripted = std::dynamic_pointer_cast<ScriptedAnnotObject>(pAnnot);
    if (!pScripted) {
        throw EngineException(ErrorCode::e_ErrParam, "an annotation of another engine");
    }
    EngineCall call = MakeCall(EngineOp::RenderAnnot, matrix);
    call.nPage = pScripted->Page();
    call.nIndex = pScripted->Index();
    m_pScript->Arrive(call, m_pAbort.get());
    const ScriptedAnnot& annot = pScripted->Script();
    if (annot.rcArea.Right <= annot.rcArea.Left || annot.rcArea.Top <= annot.rcArea.Bottom) {
        return false;
    }
    Paint(matrix, [&](PointF pt) { return Contains(annot.rcArea, pt) ? annot.nColor : 0U; });
    return true;
}

std::shared_ptr<common::Progressive> ScriptedRenderer::StartRenderReflowPage(
    std::shared_ptr<pdf::ReflowPage> pPage, const Matrix2D& matrix, common::IPauseCallback*) {
    const auto pScripted = std::dynamic_pointer_cast<ScriptedReflowPage>(pPage);
    if (!pScripted) {
        throw EngineException(ErrorCode::e_ErrParam, "a reflow page of another engine");
    }
    const RunningRender running(*m_pScript);
    EngineCall call = MakeCall(EngineOp::StartRenderReflowPage, matrix);
    call.nPage = pScripted->Index();
    m_pScript->Arrive(call, m_pAbort.get());
    const RectF rcContent = {0.0F, 0.0F, static_cast<float>(pScripted->GetContentWidth()),
                             static_cast<float>(pScripted->GetContentHeight())};
    Paint(matrix, [&](PointF pt) {
        return Contains(rcContent, pt) ? PatternColor(pScripted->Index(), pt) : 0U;
    });
    return std::make_shared<CountedProgress>(0);
}

void ScriptedRenderer::Paint(const Matrix2D& matrix, const ColorAt& fnColorAt) {
    const PixelToPage pageOf(matrix);
    if (!pageOf.Exists()) {
        return;
    }
    const std::int32_t nWidth = m_pBitmap->GetWidth();
    std::uint8_t* pPixel = m_pBitmap->GetBuffer().data();
    for (std::int32_t y = 0; y < m_pBitmap->GetHeight(); ++y) {
        m_pScript->ThrowIfAborted(m_pAbort.get());
        for (std::int32_t x = 0; x < nWidth; ++x, pPixel += 4) {
            std::uint32_t nColor = fnColorAt(pageOf(x, y));
            if (nColor == 0) {
                continue;
            }
            if (m_nColorMode == kColorModeMapped) {
                nColor = MapColor(nColor, m_nBackColor, m_nForeColor);
            }
            pPixel[0] = static_cast<std::uint8_t>(nColor);
            pPixel[1] = static_cast<std::uint8_t>(nColor >> 8U);
            pPixel[2] = static_cast<std::uint8_t>(nColor >> 16U);
            pPixel[3] = 0xFF;
        }
    }
}

std::shared_ptr<common::Renderer> ScriptedRendererFactory::Create(
    std::shared_ptr<common::Bitmap> pBitmap) {
    if (!pBitmap) {
        throw EngineException(ErrorCode::e_ErrParam, "no bitmap to draw into");
    }
    EngineCall call;
    call.eOp = EngineOp::CreateRenderer;
    call.nWidth = pBitmap->GetWidth();
    call.nHeight = pBitmap->GetHeight();
    m_pScript->Arrive(call);
    return std::make_shared<ScriptedRenderer>(m_pScript, std::move(pBitmap));
}

}
