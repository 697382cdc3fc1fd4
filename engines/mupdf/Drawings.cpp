#include "engines/mupdf/Drawings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

#include "engines/mupdf/LenientUse.h"
#include "engines/mupdf/LinkBorder.h"
#include "engines/mupdf/LoadedPage.h"
#include "engines/mupdf/PictureProbe.h"
#include "engines/mupdf/edit/FileAnnots.h"

namespace velko::engines::mupdf {

namespace {

pdf_obj* AnnotArray(fz_context* ctx, pdf_obj* pPage) {
    return pdf_dict_get(ctx, pPage, PDF_NAME(Annots));
}

// Records what `fnRun` draws into the device that it is given, on a page of that
// area; empty for a part of one.
template <class Run>
Drawing::Part Record(OpenedFile& file, const fz_rect& rcPage, Run&& fnRun) {
    fz_context* const ctx = ThreadContext();
    Drawing::Part part;
    DeviceHandle device;
    file.Use([&] {
        part.list.Out() = fz_new_display_list(ctx, fz_infinite_rect);
        device.Out() = fz_new_list_device(ctx, part.list.Get());
    });
    UseLeniently(file, [&] { fnRun(ctx, device.Get()); });
    UseLeniently(file, [&] { fz_close_device(ctx, device.Get()); });
    const PictureFacts pictures = ProbePictures(part.list.Get(), rcPage);
    part.bHasPictures = pictures.bHas;
    part.bIsPicture = pictures.bIsAll;
    part.rcBounds = pictures.bIsAll ? rcPage : part.rcBounds;
    return part;
}

std::shared_ptr<const Drawing> Finish(std::shared_ptr<Drawing> pDrawing,
                                      const AllocationWatch& watch, const Operation& operation) {
    operation.ThrowIfAborted();
    pDrawing->bCutShort = operation.IsTimedOut();
    pDrawing->nBytes += watch.NetBytes();
    return pDrawing;
}

// Finds the library's annotations for the entries of a page's list. Both come
// in the list's order, the library's without links, popups and broken entries
// and with the form fields in a list of their own.
class AnnotMatcher {
public:
    AnnotMatcher(fz_context* ctx, pdf_page* pPage)
        : m_ctx(ctx),
          m_pAnnot(pdf_first_annot(ctx, pPage)),
          m_pWidget(pdf_first_widget(ctx, pPage)) {}

    pdf_annot* Match(pdf_obj* pEntry) {
        if (m_pAnnot != nullptr && IsSame(m_pAnnot, pEntry)) {
            return std::exchange(m_pAnnot, pdf_next_annot(m_ctx, m_pAnnot));
        }
        if (m_pWidget != nullptr && IsSame(m_pWidget, pEntry)) {
            return std::exchange(m_pWidget, pdf_next_widget(m_ctx, m_pWidget));
        }
        return nullptr;
    }

private:
    // Not by the contents: the library's copy of an annotation that stands in
    // the page's own dictionary may have gained an appearance and another box.
    bool IsSame(pdf_annot* pAnnot, pdf_obj* pEntry) {
        pdf_obj* const pOwn = pdf_annot_obj(m_ctx, pAnnot);
        if (pdf_is_indirect(m_ctx, pOwn) && pdf_is_indirect(m_ctx, pEntry)) {
            return pdf_to_num(m_ctx, pOwn) == pdf_to_num(m_ctx, pEntry);
        }
        return pdf_name_eq(m_ctx, pdf_dict_get(m_ctx, pOwn, PDF_NAME(Subtype)),
                           pdf_dict_get(m_ctx, pEntry, PDF_NAME(Subtype))) != 0;
    }

    fz_context* m_ctx;
    pdf_annot* m_pAnnot;
    pdf_annot* m_pWidget;
};

// The library's annotation for each entry; empty for those without one.
std::vector<pdf_annot*> MatchAnnots(OpenedFile& file, pdf_page* pPage, std::int32_t nAnnots) {
    fz_context* const ctx = ThreadContext();
    std::vector<pdf_annot*> annots(static_cast<std::size_t>(nAnnots), nullptr);
    UseLeniently(file, [&] {
        AnnotMatcher matcher(ctx, pPage);
        pdf_obj* const pArray = AnnotArray(ctx, pPage->obj);
        for (int i = 0; i < nAnnots; ++i) {
            annots[static_cast<std::size_t>(i)] = matcher.Match(pdf_array_get(ctx, pArray, i));
        }
    });
    return annots;
}

// The borders of the entries that the library has no annotation for.
std::vector<LinkBorder> ReadBorders(OpenedFile& file, pdf_page* pPage,
                                    const std::vector<pdf_annot*>& annots) {
    fz_context* const ctx = ThreadContext();
    std::vector<LinkBorder> borders(annots.size());
    for (std::size_t i = 0; i < annots.size(); ++i) {
        if (annots[i] == nullptr) {
            UseLeniently(file, [&] {
                pdf_obj* const pArray = AnnotArray(ctx, pPage->obj);
                borders[i] = ReadLinkBorder(ctx, file.Document(),
                                            pdf_array_get(ctx, pArray, static_cast<int>(i)));
            });
        }
    }
    return borders;
}

// Runs inside a guarded body.
void DrawBorder(fz_context* ctx, fz_device* pDevice, pdf_page* pPage, const LinkBorder& border) {
    fz_rect rcPage = fz_empty_rect;
    fz_matrix toList = fz_identity;
    pdf_page_transform(ctx, pPage, &rcPage, &toList);
    DrawLinkBorder(ctx, pDevice, border, toList);
}

// Where the part draws; a part that draws nothing loses its list.
void Measure(OpenedFile& file, Drawing::Part& part) {
    fz_context* const ctx = ThreadContext();
    fz_rect rc = fz_empty_rect;
    DeviceHandle device;
    UseLeniently(file, [&] {
        device.Out() = fz_new_bbox_device(ctx, &rc);
        fz_run_display_list(ctx, part.list.Get(), device.Get(), fz_identity, fz_infinite_rect,
                            nullptr);
        fz_close_device(ctx, device.Get());
    });
    part.rcBounds = rc;
    if (fz_is_empty_rect(rc)) {
        part = Drawing::Part();
    }
}

}

std::optional<std::size_t> Drawing::PartOf(pdf::AnnotId nId) const {
    const auto it = std::find_if(annots.begin(), annots.end(),
                                 [nId](const AnnotEntry& entry) { return entry.nId == nId; });
    return it == annots.end() ? std::nullopt
                              : std::optional(static_cast<std::size_t>(it - annots.begin()));
}

std::shared_ptr<const Drawing> DrawContent(std::shared_ptr<OpenedFile> pFile, std::int32_t nPage,
                                           Operation& operation) {
    const AllocationWatch watch;
    auto pDrawing = std::make_shared<Drawing>();
    pDrawing->pFile = pFile;
    const PageHandle page = LoadPage(*pFile, nPage);
    fz_rect rcPage = fz_empty_rect;
    UseLeniently(*pFile, [&] { rcPage = pdf_bound_page(ThreadContext(), page.Get()); });
    pDrawing->parts.push_back(Record(*pFile, rcPage, [&](fz_context* ctx, fz_device* pDevice) {
        pdf_run_page_contents(ctx, page.Get(), pDevice, fz_identity, operation.Cookie());
    }));
    return Finish(std::move(pDrawing), watch, operation);
}

std::shared_ptr<const Drawing> DrawAnnots(std::shared_ptr<OpenedFile> pFile, std::int32_t nPage,
                                          Operation& operation) {
    const AllocationWatch watch;
    auto pDrawing = std::make_shared<Drawing>();
    pDrawing->pFile = pFile;
    pDrawing->annots = pFile->Annots().List(nPage);
    const auto nAnnots = static_cast<std::int32_t>(pDrawing->annots.size());
    pDrawing->parts.resize(pDrawing->annots.size());
    const PageHandle page = LoadPage(*pFile, nPage);
    const std::vector<pdf_annot*> annots = MatchAnnots(*pFile, page.Get(), nAnnots);
    const std::vector<LinkBorder> borders = ReadBorders(*pFile, page.Get(), annots);
    for (std::size_t i = 0; i < annots.size(); ++i) {
        if (annots[i] == nullptr && borders[i].fWidth == 0.0F) {
            continue;
        }
        Drawing::Part& part = pDrawing->parts[i];
        part = Record(*pFile, fz_empty_rect, [&](fz_context* ctx, fz_device* pDevice) {
            if (annots[i] != nullptr) {
                pdf_run_annot(ctx, annots[i], pDevice, fz_identity, operation.Cookie());
            } else {
                DrawBorder(ctx, pDevice, page.Get(), borders[i]);
            }
        });
        Measure(*pFile, part);
    }
    return Finish(std::move(pDrawing), watch, operation);
}

}
