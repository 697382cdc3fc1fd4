// The stream over an open file.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/storage/FileVersion.h"
#include "platform/storage/PosixCalls_p.h"
#include "platform/storage/RandomAccessStream.h"

namespace Windows::Storage {

// Reads and writes by offset, so that several streams share one open file.
class FileStream final : public Streams::IRandomAccessStream,
                         public std::enable_shared_from_this<FileStream> {
public:
    enum class Use { Reading, ReadingAndWriting };

    FileStream(Posix::SharedDescriptor pFd, Use eUse)
        : m_pFd(std::move(pFd)), m_bWritable(eUse == Use::ReadingAndWriting) {}
    // Refuses the bytes of any other version.
    FileStream(Posix::SharedDescriptor pFd, const FileVersion& pinned)
        : m_pFd(std::move(pFd)), m_pinned(pinned) {}

    // From now on it only reads.
    void EndWriting() { m_bWritable = false; }

    std::uint64_t Size() const override;
    void SetSize(std::uint64_t nSize) override;
    void Seek(std::uint64_t nPosition) override { m_nPosition = nPosition; }
    Foundation::AsyncOperation<std::shared_ptr<Streams::IBuffer>> ReadAsync(
        std::uint32_t nCount) override;
    Foundation::AsyncOperation<std::uint32_t> WriteAsync(
        std::shared_ptr<Streams::IBuffer> pBuffer) override;
    Foundation::AsyncAction FlushAsync() override;

private:
    std::shared_ptr<Streams::IBuffer> Read(std::uint64_t nCount);
    std::uint32_t Write(const Streams::IBuffer& buffer);
    void DemandWritable() const;

    const Posix::SharedDescriptor m_pFd;
    const std::optional<FileVersion> m_pinned;
    std::atomic<bool> m_bWritable = false;
    std::uint64_t m_nPosition = 0;
};

}
