// What the tests of the document layer start from: a host stepped by hand, the
// scripted engine, and an owner that notes its events.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "document/VLK_Document.h"
#include "platform/fake/TestHost.h"
#include "tests/document/RecordingOwner.h"
#include "tests/support/FileOnDisk.h"
#include "tests/support/scripted_engine/ScriptedEngine.h"

namespace velko::testing {

using Texts = std::vector<std::string>;
using DocumentPtr = std::shared_ptr<vkit::VLK_Document>;

template <class Host>
class DocumentFixture : public ::testing::Test {
protected:
    // A file of that many bytes, zeros all of them.
    std::shared_ptr<Windows::Storage::StorageFile> MakeFile(std::uint64_t nSize = 2000) {
        return TemporaryFolder::File(m_folder.WriteSparse("a.pdf", nSize));
    }

    template <class T>
    T Await(const concurrency::task<T>& pending) {
        if (!m_host.WaitUntil([&] { return pending.is_done(); })) {
            throw std::logic_error("the task does not end");
        }
        return pending.get();
    }

    // Around a loaded engine document, with the noting owner.
    DocumentPtr WrapDocument() {
        auto pDocument = std::make_shared<vkit::VLK_Document>(m_pEngine->MakeLoadedDoc());
        pDocument->SetOwner(m_pOwner);
        return pDocument;
    }

    static vkit::RenderBlockRequest Block(std::shared_ptr<pdf::PDFPage> pPage, std::int32_t nLeft,
                                          std::int32_t nTop, std::int32_t nWidth,
                                          std::int32_t nHeight) {
        vkit::RenderBlockRequest request;
        request.nLeft = nLeft;
        request.nTop = nTop;
        request.nBitmapWidth = nWidth;
        request.nBitmapHeight = nHeight;
        request.fDisplayWidth = pPage->GetWidth();
        request.fDisplayHeight = pPage->GetHeight();
        request.pPage = std::move(pPage);
        return request;
    }

    const TemporaryFolder m_folder;
    Host m_host;
    std::shared_ptr<ScriptedEngine> m_pEngine = std::make_shared<ScriptedEngine>(MakePages(3));
    ScriptedEngine::Registration m_registration{m_pEngine};
    std::shared_ptr<RecordingOwner> m_pOwner = std::make_shared<RecordingOwner>();
};

struct PoolHost : Platform::Fake::TestHost {
    PoolHost() : TestHost(RealPool{4}) {}
};

using SteppedDocumentTest = DocumentFixture<Platform::Fake::TestHost>;
using ThreadedDocumentTest = DocumentFixture<PoolHost>;

}
