#include "tests/support/pdf_writer/PlainText.h"

#include <mupdf/pdf.h>

#include <algorithm>

namespace velko::testing {

namespace {

// Appends the page's text to a buffer of the library's.
void AppendPage(fz_context* ctx, pdf_document* pDocument, int nPage, fz_buffer* pText) {
    pdf_page* pPage = nullptr;
    fz_stext_page* pExtracted = nullptr;
    fz_output* pOutput = nullptr;
    fz_var(pPage);
    fz_var(pExtracted);
    fz_var(pOutput);
    fz_try(ctx) {
        const fz_stext_options options = {FZ_STEXT_MEDIABOX_CLIP, 1.0F};
        pPage = pdf_load_page(ctx, pDocument, nPage);
        pExtracted = fz_new_stext_page_from_page(ctx, &pPage->super, &options);
        pOutput = fz_new_output_with_buffer(ctx, pText);
        fz_print_stext_page_as_text(ctx, pOutput, pExtracted);
        fz_close_output(ctx, pOutput);
    }
    fz_always(ctx) {
        fz_drop_output(ctx, pOutput);
        fz_drop_stext_page(ctx, pExtracted);
        fz_drop_page(ctx, reinterpret_cast<fz_page*>(pPage));
    }
    fz_catch(ctx) {
        fz_append_byte(ctx, pText, '\n'); // a page that cannot be read has no text
    }
}

void Ignore(void*, const char*) {}

}

std::vector<std::string> PlainTextOf(const std::string& strBytes, int nMost) {
    std::vector<std::string> pages;
    fz_context* const ctx = fz_new_context(nullptr, nullptr, FZ_STORE_DEFAULT);
    fz_set_warning_callback(ctx, &Ignore, nullptr);
    fz_set_error_callback(ctx, &Ignore, nullptr);
    fz_stream* pStream = nullptr;
    pdf_document* pDocument = nullptr;
    fz_buffer* pText = nullptr;
    fz_var(pStream);
    fz_var(pDocument);
    fz_var(pText);
    fz_try(ctx) {
        pStream = fz_open_memory(ctx, reinterpret_cast<const unsigned char*>(strBytes.data()),
                                 strBytes.size());
        pDocument = pdf_open_document_with_stream(ctx, pStream);
        pText = fz_new_buffer(ctx, 4096);
        const int nPages = std::min(pdf_count_pages(ctx, pDocument), nMost);
        for (int i = 0; i < nPages; ++i) {
            fz_clear_buffer(ctx, pText);
            AppendPage(ctx, pDocument, i, pText);
            pages.emplace_back(fz_string_from_buffer(ctx, pText));
        }
    }
    fz_always(ctx) {
        fz_drop_buffer(ctx, pText);
        pdf_drop_document(ctx, pDocument);
        fz_drop_stream(ctx, pStream);
    }
    fz_catch(ctx) {
        pages.clear();
    }
    fz_drop_context(ctx);
    return pages;
}

}
