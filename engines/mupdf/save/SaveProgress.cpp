#include "engines/mupdf/save/SaveProgress.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include "document/engine/ErrorCode.h"
#include "engines/mupdf/LoadedPage.h"
#include "engines/mupdf/PageTable.h"
#include "engines/mupdf/edit/ApplyEdit.h"
#include "engines/mupdf/edit/FileAnnots.h"
#include "engines/mupdf/save/DocumentWriter.h"
#include "platform/concurrency/Cancellation.h"
#include "platform/storage/FileChangedException.h"

namespace velko::engines::mupdf {

namespace {

using common::EngineException;
using common::ErrorCode;

constexpr std::int32_t kFailed = 0;
constexpr std::uint32_t kChunk = std::uint32_t{1} << 20U;
constexpr std::int32_t kPagesAtOnce = 64;

void Require(bool bGood, const char* szWhatIsWrong) {
    if (!bGood) {
        throw EngineException(ErrorCode::e_ErrFile, szWhatIsWrong);
    }
}

// Bytes of the document's own file.
void ReadOriginal(common::vxbase::IFileReaderCallback& reader, std::uint64_t nOffset,
                  std::span<std::uint8_t> destination) {
    bool bRead = false;
    try {
        bRead =
            reader.ReadBlock(destination, nOffset, static_cast<std::uint32_t>(destination.size()));
    } catch (const Platform::FileChangedException&) {
        throw EngineException(ErrorCode::e_ErrConflict, "the file was changed since it was opened");
    }
    Require(bRead, "a read of the file failed");
}

struct Shape {
    float fWidth = 0.0F;
    float fHeight = 0.0F;
    std::int32_t nRotation = 0;
    std::int32_t nAnnots = 0;
    bool operator==(const Shape&) const = default;
};

std::vector<Shape> ShapesOf(OpenedFile& file, std::int32_t nFirst, std::int32_t nEnd) {
    fz_context* const ctx = ThreadContext();
    std::vector<Shape> shapes(static_cast<std::size_t>(nEnd - nFirst));
    file.Use([&] {
        std::int32_t nPage = nFirst;
        for (Shape& shape : shapes) {
            const PageFacts facts = ReadPageFacts(ctx, file, nPage++);
            shape = {facts.fWidth, facts.fHeight, facts.nRotation, facts.nAnnots};
        }
    });
    return shapes;
}

// Looks at what was written: whatever is found wrong is a file that is no good.
template <class Body>
void Verify(Body&& body) {
    try {
        body();
    } catch (const EngineException& error) {
        if (error.Code() == ErrorCode::e_ErrOutOfMemory) {
            throw;
        }
        Require(false, "what was written cannot be read as the document");
    }
}

// Runs what the platform may fail. The code is the contract's, the cause stays inside.
template <class Body>
void AsEngine(Body&& body) {
    try {
        body();
    } catch (const LibraryError& error) {
        throw EngineException(
            error.Code() == ErrorCode::e_ErrOutOfMemory ? error.Code() : ErrorCode::e_ErrFile,
            error.what());
    } catch (const EngineException&) {
        throw;
    } catch (const concurrency::task_canceled&) {
        throw; // the program ends
    } catch (const std::bad_alloc&) {
        throw EngineException(ErrorCode::e_ErrOutOfMemory, "no memory to save the document");
    } catch (const std::exception& error) {
        std::throw_with_nested(EngineException(ErrorCode::e_ErrFile, error.what()));
    }
}

}

const std::vector<SaveProgress::Step>& SaveProgress::Steps() {
    static const std::vector<Step> steps = {
        &SaveProgress::OpenTarget,   &SaveProgress::OpenSource, &SaveProgress::Edit,
        &SaveProgress::Copy,         &SaveProgress::Write,      &SaveProgress::OpenWritten,
        &SaveProgress::CompareSizes, &SaveProgress::LoadEdited, &SaveProgress::Commit};
    return steps;
}

std::int32_t SaveProgress::Continue() {
    if (m_nState != kToBeContinued) {
        return m_nState;
    }
    m_nState = kFailed; // unless the step ends well
    try {
        AsEngine([this] { TakeStep(); });
    } catch (...) {
        LetGo();
        throw;
    }
    return m_nState;
}

void SaveProgress::TakeStep() {
    if ((this->*Steps()[m_nStep])()) {
        ++m_nStep;
        m_nDone = 0;
    }
    const bool bEnd = m_nStep == Steps().size();
    m_nState = bEnd ? kFinished : kToBeContinued;
    if (bEnd) {
        LetGo();
    }
}

void SaveProgress::LetGo() {
    m_pWritten.reset();
    m_pSource.reset();
    m_pTarget.reset();
    m_order = SaveOrder();
}

void SaveProgress::Tell(float fFrom, float fTo, std::size_t nDone, std::size_t nAll) {
    const float fPart = nAll == 0 ? 1.0F : static_cast<float>(nDone) / static_cast<float>(nAll);
    m_fShare = std::max(m_fShare, fFrom + (fTo - fFrom) * fPart);
}

bool SaveProgress::OpenTarget() {
    m_pTarget = std::make_shared<SaveTarget>(m_order.pFile);
    return true;
}

bool SaveProgress::OpenSource() {
    if (!IsCopyEnough()) {
        m_pSource = OpenedFile::Open(m_order.pReader, m_order.password, m_order.nPages);
    }
    return true;
}

bool SaveProgress::Edit() {
    if (m_nDone < m_order.edits.size()) {
        ApplyEdit(*m_pSource, *m_order.edits[m_nDone++]);
    }
    Tell(0.0F, 0.2F, m_nDone, m_order.edits.size());
    if (m_nDone < m_order.edits.size()) {
        return false;
    }
    m_order.bUpdate = m_order.bUpdate && (!m_pSource || CanBeUpdated(*m_pSource));
    return true;
}

bool SaveProgress::Copy() {
    const std::uint64_t nSize = m_order.bUpdate ? m_order.pReader->GetSize() : 0;
    const std::uint64_t nFrom = m_pTarget->Size();
    if (nFrom < nSize) {
        std::vector<std::uint8_t> bytes(std::min<std::uint64_t>(kChunk, nSize - nFrom));
        ReadOriginal(*m_order.pReader, nFrom, bytes);
        m_pTarget->Write(nFrom, bytes);
    }
    Tell(0.2F, 0.6F, m_pTarget->Size(), nSize);
    return m_pTarget->Size() >= nSize;
}

bool SaveProgress::Write() {
    if (m_pSource && m_order.bUpdate) {
        WriteUpdate(*m_pSource, m_pTarget);
    } else if (m_pSource) {
        WriteAnew(*m_pSource, m_pTarget);
    }
    Tell(0.6F, 0.7F, 1, 1);
    return true;
}

// A copy is what the document was read from, good or not.
bool SaveProgress::OpenWritten() {
    if (m_pSource) {
        Verify([this] {
            m_pWritten = OpenedFile::Open(std::make_shared<SavedReader>(m_pTarget),
                                          m_order.password, m_order.nPages);
            Require(m_pWritten->EncryptionType() == m_pSource->EncryptionType(),
                    "what was written is not protected as the document is");
        });
    }
    return true;
}

bool SaveProgress::CompareSizes() {
    if (!m_pWritten) {
        return true;
    }
    const auto nFirst = static_cast<std::int32_t>(m_nDone);
    const std::int32_t nEnd = std::min(nFirst + kPagesAtOnce, m_order.nPages);
    Require(ShapesOf(*m_pWritten, nFirst, nEnd) == ShapesOf(*m_pSource, nFirst, nEnd),
            "what was written has other pages");
    m_nDone = static_cast<std::size_t>(nEnd);
    Tell(0.7F, 0.9F, m_nDone, static_cast<std::size_t>(m_order.nPages));
    return nEnd == m_order.nPages;
}

bool SaveProgress::LoadEdited() {
    if (!m_pWritten) {
        return true;
    }
    if (m_nDone < m_order.edits.size()) {
        const std::int32_t nPage = m_order.edits[m_nDone++]->nPage;
        Verify([&] { LoadPage(*m_pWritten, nPage); });
        Require(m_pWritten->Annots().Describe(nPage).size() ==
                    m_pSource->Annots().Describe(nPage).size(),
                "what was written has other annotations");
    }
    Tell(0.9F, 0.95F, m_nDone, m_order.edits.size());
    if (m_nDone < m_order.edits.size()) {
        return false;
    }
    Require(!m_pWritten->WasRepaired(), "what was written is damaged");
    return true;
}

bool SaveProgress::Commit() {
    m_pWritten.reset(); // it reads the target
    m_pTarget->Commit();
    Tell(1.0F, 1.0F, 1, 1);
    return true;
}

}
