#include "bench/floor/MuPdfFloor.h"

#include <stdexcept>

#include <mupdf/fitz.h>

namespace velko::bench {

struct MuPdfFloor::State {
    fz_context* pContext = nullptr;
    fz_document* pDocument = nullptr;
    int nPages = 0;
    std::vector<std::uint8_t> pixels;

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        fz_drop_document(pContext, pDocument);
        fz_drop_context(pContext);
    }
};

namespace {

// The calls below stand apart from C++ objects: a failure of the library jumps
// out of them.
__attribute__((noinline)) bool OpenFile(fz_context* pContext, const char* szPath,
                                        fz_document** ppDocument, int* pPages) {
    volatile bool bDone = false;
    fz_try(pContext) {
        fz_register_document_handlers(pContext);
        *ppDocument = fz_open_document(pContext, szPath);
        *pPages = fz_count_pages(pContext, *ppDocument);
        bDone = true;
    }
    fz_catch(pContext) {}
    return bDone;
}

__attribute__((noinline)) bool DrawPage(fz_context* pContext, fz_document* pDocument, int nPage,
                                        int nWidth, int nHeight, unsigned char* pSamples) {
    fz_page* pPage = nullptr;
    fz_pixmap* pPixmap = nullptr;
    fz_device* pDevice = nullptr;
    fz_var(pPage);
    fz_var(pPixmap);
    fz_var(pDevice);
    volatile bool bDone = false;
    fz_try(pContext) {
        pPage = fz_load_page(pContext, pDocument, nPage);
        const fz_rect box = fz_bound_page(pContext, pPage);
        const fz_matrix matrix = fz_scale(static_cast<float>(nWidth) / (box.x1 - box.x0),
                                          static_cast<float>(nHeight) / (box.y1 - box.y0));
        pPixmap = fz_new_pixmap_with_data(pContext, fz_device_bgr(pContext), nWidth, nHeight,
                                          nullptr, 1, nWidth * 4, pSamples);
        fz_clear_pixmap_with_value(pContext, pPixmap, 255);
        pDevice = fz_new_draw_device(pContext, matrix, pPixmap);
        fz_run_page(pContext, pPage, pDevice, fz_identity, nullptr);
        fz_close_device(pContext, pDevice);
        bDone = true;
    }
    fz_always(pContext) {
        fz_drop_device(pContext, pDevice);
        fz_drop_pixmap(pContext, pPixmap);
        fz_drop_page(pContext, pPage);
    }
    fz_catch(pContext) {}
    return bDone;
}

}

MuPdfFloor::MuPdfFloor(const std::string& strPath) : m_pState(std::make_unique<State>()) {
    m_pState->pContext = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
    if (m_pState->pContext == nullptr) {
        throw std::runtime_error("no context");
    }
    if (!OpenFile(m_pState->pContext, strPath.c_str(), &m_pState->pDocument, &m_pState->nPages)) {
        throw std::runtime_error("cannot open " + strPath);
    }
}

MuPdfFloor::~MuPdfFloor() = default;

int MuPdfFloor::PageCount() const {
    return m_pState->nPages;
}

const std::vector<std::uint8_t>& MuPdfFloor::RenderPage(int nPage, int nWidth, int nHeight) {
    m_pState->pixels.resize(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight) *
                            4U);
    if (!DrawPage(m_pState->pContext, m_pState->pDocument, nPage, nWidth, nHeight,
                  m_pState->pixels.data())) {
        throw std::runtime_error("cannot draw page " + std::to_string(nPage));
    }
    return m_pState->pixels;
}

}
