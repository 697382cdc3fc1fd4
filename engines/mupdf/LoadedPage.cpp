#include "engines/mupdf/LoadedPage.h"

#include <string>

namespace velko::engines::mupdf {

// While it loads a page the library draws appearances that are missing, into objects that
// are its own. When it finds such objects of an earlier loading it writes into those of
// the file instead, so they go first.
PageHandle LoadPage(OpenedFile& file, std::int32_t nPage) {
    fz_context* const ctx = ThreadContext();
    PageHandle page;
    try {
        file.Use([&] {
            pdf_drop_local_xref_and_resources(ctx, file.Document());
            page.Out() = pdf_load_page(ctx, file.Document(), nPage);
            if (!pdf_is_dict(ctx, page.Get()->obj)) { // the library makes a page of nothing
                fz_throw(ctx, FZ_ERROR_GENERIC, "its object is missing");
            }
        });
    } catch (const LibraryError& error) {
        throw common::EngineException(common::ErrorCode::e_ErrNotFound,
                                      std::string("the file has no such page: ") + error.what());
    }
    return page;
}

}
