#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <functional>

#include "tests/support/scripted_engine/ScriptedObjects_p.h"

namespace velko::testing {

using common::EngineException;
using common::ErrorCode;
using common::vxbase::Matrix2D;
using common::vxbase::PointF;
using common::vxbase::RectF;

namespace {

constexpr std::int64_t kMaxPixels = std::int64_t{64} << 20;

class ScriptedBitmap final : public common::Bitmap {
public:
    ScriptedBitmap(EnginePtr pEngine, std::int32_t nWidth, std::int32_t nHeight)
        : m_pEngine(std::move(pEngine)),
          m_counted(m_pEngine->m_nBitmaps),
          m_nWidth(nWidth),
          m_nHeight(nHeight),
          m_pixels(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) * 4) {}

    std::span<std::uint8_t> GetBuffer() override { return m_pixels; }
    std::int32_t GetWidth() const override { return m_nWidth; }
    std::int32_t GetHeight() const override { return m_nHeight; }

    void FillRect(std::uint32_t nColor, const common::vxbase::RectI& rc) override {
        const std::uint32_t nAlpha = nColor >> 24U;
        std::array<std::uint8_t, 4> pixel{0, 0, 0, static_cast<std::uint8_t>(nAlpha)};
        for (unsigned nChannel = 0; nChannel < 3; ++nChannel) {
            const std::uint32_t nValue = (nColor >> (8U * nChannel)) & 0xFFU;
            pixel[nChannel] = static_cast<std::uint8_t>((nValue * nAlpha + 127U) / 255U);
        }
        for (std::int32_t y = std::max(rc.Top, 0); y < std::min(rc.Bottom, m_nHeight); ++y) {
            for (std::int32_t x = std::max(rc.Left, 0); x < std::min(rc.Right, m_nWidth); ++x) {
                std::memcpy(
                    &m_pixels[(std::size_t(y) * std::size_t(m_nWidth) + std::size_t(x)) * 4],
                    pixel.data(), pixel.size());
            }
        }
    }

private:
    EnginePtr m_pEngine;
    ScriptedEngine::Counted m_counted;
    std::int32_t m_nWidth;
    std::int32_t m_nHeight;
    std::vector<std::uint8_t> m_pixels;
};

class BitmapFactory final : public common::IBitmapFactory {
public:
    explicit BitmapFactory(EnginePtr pEngine) : m_pEngine(std::move(pEngine)) {}
    std::shared_ptr<common::Bitmap> Create(std::int32_t nWidth, std::int32_t nHeight,
                                           std::int32_t nFormat, void* pBuffer,
                                           std::int32_t nPitch) override {
        m_pEngine->Arrive(EngineOp::CreateBitmap);
        if (nWidth <= 0 || nHeight <= 0 || nFormat != common::Bitmap::kFormat32 ||
            pBuffer != nullptr || nPitch != 0) {
            throw EngineException(ErrorCode::e_ErrParam, "a bitmap of that kind is not made");
        }
        if (std::int64_t{nWidth} * nHeight > kMaxPixels) {
            throw EngineException(ErrorCode::e_ErrOutOfMemory, "a bitmap of that size is not made");
        }
        return std::make_shared<ScriptedBitmap>(m_pEngine, nWidth, nHeight);
    }

private:
    EnginePtr m_pEngine;
};

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

class ScriptedRenderer final : public common::Renderer {
public:
    ScriptedRenderer(EnginePtr pEngine, std::shared_ptr<common::Bitmap> pBitmap)
        : m_pEngine(std::move(pEngine)), m_pBitmap(std::move(pBitmap)) {}

    void SetColorMode(std::int32_t nMode) override { m_state.nColorMode = nMode; }
    void SetMappingModeColors(std::uint32_t nBackColor, std::uint32_t nForeColor) override {
        m_state.nBackColor = nBackColor;
        m_state.nForeColor = nForeColor;
    }
    void SetRenderContentFlags(std::uint32_t nFlags) override { m_nContentFlags = nFlags; }
    void SetAbortFlag(std::shared_ptr<const std::atomic<bool>> pAbort) override {
        m_pAbort = std::move(pAbort);
    }
    bool IsIncomplete() const override { return m_bIncomplete; }

    std::shared_ptr<common::Progressive> StartRender(std::shared_ptr<pdf::PDFPage> pPage,
                                                     const Matrix2D& matrix,
                                                     common::IPauseCallback*) override;
    bool RenderAnnot(std::shared_ptr<pdf::IAnnot> pAnnot, const Matrix2D& matrix) override;
    std::shared_ptr<common::Progressive> StartRenderReflowPage(
        std::shared_ptr<pdf::ReflowPage> pPage, const Matrix2D& matrix,
        common::IPauseCallback*) override;

private:
    // The colour at a point of page space; 0 leaves the pixel alone.
    using ColorAt = std::function<std::uint32_t(PointF)>;

    void Arrive(EngineOp eOp, std::int32_t nPage, std::int32_t nIndex, const Matrix2D& matrix);
    void Paint(const Matrix2D& matrix, const ColorAt& fnColorAt);

    EnginePtr m_pEngine;
    std::shared_ptr<common::Bitmap> m_pBitmap;
    EngineCall m_state; // the colours
    std::uint32_t m_nContentFlags = kRenderContent;
    std::shared_ptr<const std::atomic<bool>> m_pAbort;
    bool m_bIncomplete = false;
};

void ScriptedRenderer::Arrive(EngineOp eOp, std::int32_t nPage, std::int32_t nIndex,
                              const Matrix2D& matrix) {
    EngineCall call = m_state;
    call.eOp = eOp;
    call.nPage = nPage;
    call.nIndex = nIndex;
    call.matrix = matrix;
    call.nWidth = m_pBitmap->GetWidth();
    call.nHeight = m_pBitmap->GetHeight();
    m_pEngine->Arrive(call, m_pAbort.get());
}

std::shared_ptr<common::Progressive> ScriptedRenderer::StartRender(
    std::shared_ptr<pdf::PDFPage> pPage, const Matrix2D& matrix, common::IPauseCallback*) {
    const auto pScripted = std::dynamic_pointer_cast<ScriptedPageObject>(pPage);
    if (!pScripted) {
        throw EngineException(ErrorCode::e_ErrParam, "a page of another engine");
    }
    const ScriptedEngine::Counted running(m_pEngine->m_nRenders);
    for (int nPeak = m_pEngine->m_nPeakRenders, nNow = m_pEngine->m_nRenders;
         nPeak < nNow && !m_pEngine->m_nPeakRenders.compare_exchange_weak(nPeak, nNow);) {
    }
    const std::int32_t nIndex = pScripted->GetIndex();
    Arrive(EngineOp::StartRender, nIndex, -1, matrix);
    if (!pScripted->IsParsed()) {
        pScripted->StartParse(0, nullptr, 0);
    }
    m_bIncomplete = m_bIncomplete || m_pEngine->IsCutShort(nIndex);
    const ScriptedPage& page = pScripted->Script();
    const bool bBlank = page.ePaper == ScriptedPage::Paper::None && page.rects.empty();
    if ((m_nContentFlags & kRenderContent) && !bBlank) {
        Paint(matrix, [&](PointF pt) { return PageColorAt(page, nIndex, pt); });
    }
    return std::make_shared<CountedProgress>(0);
}

std::shared_ptr<common::Progressive> ScriptedRenderer::StartRenderReflowPage(
    std::shared_ptr<pdf::ReflowPage> pPage, const Matrix2D& matrix, common::IPauseCallback*) {
    const auto pScripted = std::dynamic_pointer_cast<ScriptedReflow>(pPage);
    if (!pScripted) {
        throw EngineException(ErrorCode::e_ErrParam, "a page of another engine");
    }
    Arrive(EngineOp::StartRender, pScripted->Index(), -1, matrix);
    return std::make_shared<CountedProgress>(0);
}

bool ScriptedRenderer::RenderAnnot(std::shared_ptr<pdf::IAnnot> pAnnot, const Matrix2D& matrix) {
    const auto pScripted = std::dynamic_pointer_cast<ScriptedAnnotObject>(pAnnot);
    if (!pScripted) {
        throw EngineException(ErrorCode::e_ErrParam, "an annotation of another engine");
    }
    Arrive(EngineOp::RenderAnnot, pScripted->nPage, pScripted->nIndex, matrix);
    const auto& [nType, rcArea, nColor] = pScripted->annot;
    Paint(matrix, [&](PointF pt) { return Contains(rcArea, pt) ? nColor : 0U; });
    return true;
}

void ScriptedRenderer::Paint(const Matrix2D& matrix, const ColorAt& fnColorAt) {
    const PixelToPage pageOf(matrix);
    if (!pageOf.Exists()) {
        return;
    }
    const std::int32_t nWidth = m_pBitmap->GetWidth();
    std::uint8_t* pPixel = m_pBitmap->GetBuffer().data();
    for (std::int32_t y = 0; y < m_pBitmap->GetHeight(); ++y) {
        m_pEngine->ThrowIfAborted(m_pAbort.get());
        for (std::int32_t x = 0; x < nWidth; ++x, pPixel += 4) {
            std::uint32_t nColor = fnColorAt(pageOf(x, y));
            if (nColor == 0) {
                continue;
            }
            if (m_state.nColorMode == kColorModeMapped) {
                nColor = MapColor(nColor, m_state.nBackColor, m_state.nForeColor);
            }
            pPixel[0] = static_cast<std::uint8_t>(nColor);
            pPixel[1] = static_cast<std::uint8_t>(nColor >> 8U);
            pPixel[2] = static_cast<std::uint8_t>(nColor >> 16U);
            pPixel[3] = 0xFF;
        }
    }
}

class ReflowFactory final : public pdf::IReflowPageFactory {
public:
    explicit ReflowFactory(EnginePtr pEngine) : m_pEngine(std::move(pEngine)) {}
    std::shared_ptr<pdf::ReflowPage> Create(std::shared_ptr<pdf::PDFPage> pPage) override {
        auto pScripted = std::dynamic_pointer_cast<ScriptedPageObject>(std::move(pPage));
        if (!pScripted) {
            throw EngineException(ErrorCode::e_ErrParam, "a page of another engine");
        }
        return std::make_shared<ScriptedReflow>(m_pEngine, std::move(pScripted));
    }

private:
    EnginePtr m_pEngine;
};

class RendererFactory final : public common::IRendererFactory {
public:
    explicit RendererFactory(EnginePtr pEngine) : m_pEngine(std::move(pEngine)) {}
    std::shared_ptr<common::Renderer> Create(std::shared_ptr<common::Bitmap> pBitmap) override {
        if (!pBitmap) {
            throw EngineException(ErrorCode::e_ErrParam, "no bitmap to draw into");
        }
        m_pEngine->Arrive(EngineOp::CreateRenderer);
        return std::make_shared<ScriptedRenderer>(m_pEngine, std::move(pBitmap));
    }

private:
    EnginePtr m_pEngine;
};

}

std::shared_ptr<common::Progressive> ScriptedReflow::StartParse(common::IPauseCallback* pPause) {
    m_pEngine->Arrive({EngineOp::Reflow, Index()});
    if (pPause != nullptr && pPause->NeedToPauseNow()) {
        return std::make_shared<CountedProgress>(1);
    }
    const ScriptedPage& page = m_pPage->Script();
    const bool bPictures = m_nFlags == kTextAndPictures;
    m_nHeight = (page.nTextHeight + (bPictures ? page.nPictureHeight : 0)) * m_nPercent / 100;
    return std::make_shared<CountedProgress>(0);
}

std::shared_ptr<pdf::IReflowPageFactory> MakeReflowFactory(EnginePtr pEngine) {
    return std::make_shared<ReflowFactory>(std::move(pEngine));
}

std::shared_ptr<common::IBitmapFactory> MakeBitmapFactory(EnginePtr pEngine) {
    return std::make_shared<BitmapFactory>(std::move(pEngine));
}

std::shared_ptr<common::IRendererFactory> MakeRendererFactory(EnginePtr pEngine) {
    return std::make_shared<RendererFactory>(std::move(pEngine));
}

}
