#include "engines/mupdf/save/SaveTarget.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "document/engine/ErrorCode.h"
#include "platform/foundation/AsyncWait.h"
#include "platform/foundation/Exception.h"

namespace velko::engines::mupdf {

namespace {

using common::EngineException;
using common::ErrorCode;
using Windows::Foundation::WaitFor;
using Windows::Storage::Streams::VectorBuffer;

}

SaveTarget::SaveTarget(const std::shared_ptr<Windows::Storage::StorageFile>& pFile)
    : m_pTransaction(WaitFor(pFile->OpenTransactedWriteAsync())),
      m_pStream(m_pTransaction->Stream()) {}

void SaveTarget::Write(std::uint64_t nOffset, std::span<const std::uint8_t> bytes) {
    m_pStream->Seek(nOffset);
    WaitFor(m_pStream->WriteAsync(
        std::make_shared<VectorBuffer>(std::vector<std::uint8_t>(bytes.begin(), bytes.end()))));
    m_nSize = std::max(m_nSize, nOffset + bytes.size());
}

void SaveTarget::Cut(std::uint64_t nSize) {
    m_pStream->SetSize(nSize);
    m_nSize = nSize;
}

void SaveTarget::Read(std::uint64_t nOffset, std::span<std::uint8_t> destination) {
    m_pStream->Seek(nOffset);
    while (!destination.empty()) {
        const auto pBytes =
            WaitFor(m_pStream->ReadAsync(static_cast<std::uint32_t>(destination.size())));
        if (pBytes->Length() == 0) {
            throw Platform::ReadFaultException("what was written cannot be read back");
        }
        std::ranges::copy(pBytes->Bytes(), destination.begin());
        destination = destination.subspan(pBytes->Length());
    }
}

void SaveTarget::Commit() {
    WaitFor(m_pTransaction->CommitAsync());
}

SavedReader::SavedReader(std::shared_ptr<SaveTarget> pTarget) : m_pTarget(std::move(pTarget)) {
    if (m_pTarget->Size() > std::numeric_limits<std::int32_t>::max()) {
        throw EngineException(ErrorCode::e_ErrFile, "the file would be too large");
    }
}

std::uint32_t SavedReader::GetSize() {
    return static_cast<std::uint32_t>(m_pTarget->Size());
}

bool SavedReader::ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                            std::uint32_t) {
    m_pTarget->Read(nOffset, destination);
    return true;
}

}
