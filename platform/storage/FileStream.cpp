#include <algorithm>

#include "platform/foundation/Exception.h"
#include "platform/storage/FileChangedException.h"
#include "platform/storage/FileStream_p.h"
#include "platform/storage/FillBuffer_p.h"
#include "platform/storage/IoThreads_p.h"

namespace Windows::Storage {

using Foundation::AsyncAction;
using Foundation::AsyncOperation;
using Streams::FillBuffer;
using Streams::IBuffer;

std::uint64_t FileStream::Size() const {
    return static_cast<std::uint64_t>(Posix::Status(m_pFd->Get(), "stream").st_size);
}

void FileStream::SetSize(std::uint64_t nSize) {
    DemandWritable();
    Posix::SetLength(m_pFd->Get(), nSize);
}

AsyncOperation<std::shared_ptr<IBuffer>> FileStream::ReadAsync(std::uint32_t nCount) {
    return RunOnIoThread([pSelf = shared_from_this(), nCount] { return pSelf->Read(nCount); });
}

AsyncOperation<std::uint32_t> FileStream::WriteAsync(std::shared_ptr<IBuffer> pBuffer) {
    return RunOnIoThread([pSelf = shared_from_this(), pBuffer = std::move(pBuffer)] {
        return pSelf->Write(*pBuffer);
    });
}

AsyncAction FileStream::FlushAsync() {
    return RunOnIoThread([pSelf = shared_from_this()] {
        pSelf->DemandWritable();
        Posix::Sync(pSelf->m_pFd->Get());
    });
}

std::shared_ptr<IBuffer> FileStream::Read(std::uint64_t nCount) {
    const std::uint64_t nSize = Size();
    const std::uint64_t nHere = nSize - std::min(nSize, m_nPosition);
    const auto pBuffer = std::make_shared<FillBuffer>(std::min(nCount, nHere));
    const std::size_t nRead = Posix::ReadAt(m_pFd->Get(), m_nPosition, pBuffer->Storage());
    // Looked at after the read, so that no write before its end is missed.
    if (m_pinned && !Posix::HasBytesOf(*m_pinned, Posix::Status(m_pFd->Get(), "read"))) {
        throw Platform::FileChangedException();
    }
    pBuffer->SetFilled(nRead);
    m_nPosition += nRead;
    return pBuffer;
}

std::uint32_t FileStream::Write(const IBuffer& buffer) {
    DemandWritable();
    Posix::WriteAt(m_pFd->Get(), m_nPosition, buffer.Bytes());
    m_nPosition += buffer.Length();
    return static_cast<std::uint32_t>(buffer.Length());
}

void FileStream::DemandWritable() const {
    if (!m_bWritable) {
        throw Platform::AccessDeniedException("the stream is for reading");
    }
}

}
