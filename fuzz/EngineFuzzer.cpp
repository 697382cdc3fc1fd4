// Hands arbitrary bytes to the engine module the way the component does: opens
// them through the reader callback, asks for the sizes, parses and draws the
// first page with its annotations, follows the page's links, edits its annotations and
// saves what came of it.
//
// What it looks for: crashes, sanitizer findings, exceptions other than the
// engine's, and answers that break the contract (checked with `Require`).
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "document/engine/AnnotEditor.h"
#include "document/engine/Bitmap.h"
#include "document/engine/HostServices.h"
#include "document/engine/PDFDoc.h"
#include "document/engine/Renderer.h"
#include "engines/mupdf/Register.h"
#include "platform/concurrency/ThreadPool.h"
#include "platform/storage/StorageFile.h"
#include "platform/system/Activation.h"

namespace {

using velko::common::Bitmap;
using velko::common::ErrorCode;
using velko::common::vxbase::IFileReaderCallback;
using velko::pdf::PDFDoc;
using velko::pdf::PDFPage;

constexpr std::int32_t kSide = 200; // of the bitmap, pixels
constexpr std::int32_t kMaxAnnots = 50;
constexpr std::size_t kMaxEdited = 6;

void Require(bool bHolds, const char* szWhat) {
    if (!bHolds) {
        std::fprintf(stderr, "contract broken: %s\n", szWhat);
        std::abort();
    }
}

class BytesReader final : public IFileReaderCallback {
public:
    BytesReader(const std::uint8_t* pData, std::size_t nSize) : m_bytes(pData, pData + nSize) {}
    std::uint32_t GetSize() override { return static_cast<std::uint32_t>(m_bytes.size()); }
    bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                   std::uint32_t nSize) override {
        Require(destination.size() == nSize, "a read names the length of its destination");
        Require(nOffset <= m_bytes.size() && nSize <= m_bytes.size() - nOffset,
                "a read stays within the size");
        std::copy_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(nOffset), nSize,
                    destination.begin());
        return true;
    }
    bool Release() override { return true; }

private:
    std::vector<std::uint8_t> m_bytes;
};

void RegisterOnce() {
    static const bool s_bDone = [] {
        concurrency::set_task_pool(std::make_shared<concurrency::ThreadPool>(2));
        velko::engines::mupdf::RegisterEngine();
        return true;
    }();
    (void)s_bDone;
}

std::shared_ptr<PDFDoc> MakeDocument(const std::uint8_t* pData, std::size_t nSize) {
    auto pFactory =
        Platform::GetActivationFactory<velko::pdf::IPDFDocFactory>(velko::pdf::kPDFDocClass);
    return pFactory->Create(std::make_shared<BytesReader>(pData, nSize));
}

void DrawAnnots(PDFPage& page, velko::common::Renderer& renderer,
                const velko::common::vxbase::Matrix2D& matrix) {
    const std::int32_t nCount = std::min(page.GetAnnotCount(), kMaxAnnots);
    for (std::int32_t n = 0; n < nCount; ++n) {
        if (const auto pAnnot = page.GetAnnot(n)) {
            Require(pAnnot->GetType() >= 0 && pAnnot->GetType() <= 27, "annotation kinds");
            renderer.RenderAnnot(pAnnot, matrix);
        }
    }
}

void DrawPage(const std::shared_ptr<PDFPage>& pPage) {
    auto pBitmap =
        Platform::GetActivationFactory<velko::common::IBitmapFactory>(velko::common::kBitmapClass)
            ->Create(kSide, kSide, Bitmap::kFormat32, nullptr, 0);
    auto pRenderer = Platform::GetActivationFactory<velko::common::IRendererFactory>(
                         velko::common::kRendererClass)
                         ->Create(pBitmap);
    const auto matrix = pPage->GetDisplayMatrix(0, 0, kSide, kSide, 0);
    const auto pParse = pPage->StartParse(0, nullptr, 0);
    Require(pParse != nullptr, "a parse always gives its progress");
    while (pParse->Continue() == velko::common::Progressive::kToBeContinued) {
    }
    pRenderer->StartRender(pPage, matrix, nullptr);
    DrawAnnots(*pPage, *pRenderer, matrix);
}

void FollowLinks(const std::shared_ptr<PDFDoc>& pDoc) {
    const auto pLinks = std::dynamic_pointer_cast<velko::pdf::ILinkSource>(pDoc);
    if (!pLinks) {
        return;
    }
    for (const velko::pdf::LinkRecord& link : pLinks->GetLinks(0)) {
        const auto pTarget = link.pAction ? link.pAction->GetDestination() : nullptr;
        if (pTarget) {
            Require(pTarget->GetPageIndex(*pDoc) < pDoc->GetPageCount(), "a target exists");
            Require(pTarget->GetZoomMode() >= 0 && pTarget->GetZoomMode() <= 8, "zoom modes");
        }
    }
    pLinks->FindNamedDestination("chapter1");
}

// Runs what broken bytes may make fail, and says whether they did.
template <class Body>
bool Allowed(Body&& body) {
    try {
        body();
        return true;
    } catch (const velko::common::EngineException&) {
        return false;
    }
}

void EditAnnot(velko::pdf::IAnnotEditor& editor, const velko::pdf::ListedAnnot& annot) {
    velko::pdf::AnnotRecord record = annot.record;
    record.strContents += "x";
    record.nColor = 0x123456;
    Allowed([&] {
        editor.ChangeAnnot(0, annot.nId, record);
        editor.RemoveAnnot(0, annot.nId);
        editor.RestoreAnnot(0, annot.nId);
    });
}

void EditFirstPage(const std::shared_ptr<PDFDoc>& pDoc) {
    auto& editor = dynamic_cast<velko::pdf::IAnnotEditor&>(*pDoc);
    const auto annots = editor.ListAnnots(0);
    for (std::size_t i = 0; i < std::min(annots.size(), kMaxEdited); ++i) {
        EditAnnot(editor, annots[i]);
    }
    velko::pdf::AnnotRecord mark;
    mark.nType = 9;
    mark.quads = {{{10, 20}, {90, 20}, {10, 10}, {90, 10}}};
    mark.nColor = 0xFFFF00;
    const auto nBefore = editor.ListAnnots(0).size();
    const std::uint64_t nRevision = editor.Revision();
    const bool bAdded = Allowed([&] { editor.AddAnnot(0, mark); });
    Require(editor.Revision() == nRevision + (bAdded ? 1 : 0), "what failed is no edit");
    Require(editor.ListAnnots(0).size() == nBefore + (bAdded ? 1 : 0), "an edit adds one");
}

// The engine itself looks at what it wrote.
void Save(const std::shared_ptr<PDFDoc>& pDoc) {
    const std::string strPath = std::filesystem::temp_directory_path() /
                                ("velko-fuzz-" + std::to_string(::getpid()) + ".pdf");
    Allowed([&] {
        const auto pSave = pDoc->StartSaveAs(Windows::Storage::StorageFile::FromPath(strPath),
                                             PDFDoc::kIncremental, nullptr);
        while (pSave->Continue() == velko::common::Progressive::kToBeContinued) {
        }
    });
    std::error_code ignored;
    std::filesystem::remove(strPath, ignored);
}

void VisitFirstPage(const std::shared_ptr<PDFDoc>& pDoc) {
    const std::shared_ptr<PDFPage> pPage = pDoc->GetPage(0);
    Require(pPage != nullptr, "a page below the count exists");
    Require(pPage->GetWidth() >= 1.0F && pPage->GetWidth() <= 14400.0F, "page widths");
    Require(pPage->GetHeight() >= 1.0F && pPage->GetHeight() <= 14400.0F, "page heights");
    Require(pPage->GetRotation() >= 0 && pPage->GetRotation() <= 3, "rotations");
    DrawPage(pPage);
    FollowLinks(pDoc);
    EditFirstPage(pDoc);
    DrawPage(pPage);
    Save(pDoc);
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    RegisterOnce();
    try {
        const std::shared_ptr<PDFDoc> pDoc = MakeDocument(pData, nSize);
        const ErrorCode eCode = pDoc->Load("");
        Require(eCode != ErrorCode::e_ErrSuccess || pDoc->GetPageCount() > 0,
                "a loaded document has pages");
        if (eCode == ErrorCode::e_ErrPassword) {
            pDoc->Load("secret");
        }
        if (pDoc->GetPageCount() > 0) {
            VisitFirstPage(pDoc);
        }
    } catch (const velko::common::EngineException&) { // an allowed answer to broken bytes
    }
    return 0;
}
