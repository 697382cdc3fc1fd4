// Streams over a file.
//
// Failures are those of `StorageFile`; one of a write leaves the position where
// it was, and what lies behind it as it may.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/foundation/AsyncOperation.h"
#include "platform/storage/Buffer.h"

namespace Windows::Storage::Streams {

class IInputStream {
public:
    virtual ~IInputStream() = default;
    // Reads up to `nCount` bytes from the position on and moves it; an empty
    // buffer at the end.
    virtual Windows::Foundation::AsyncOperation<std::shared_ptr<IBuffer>> ReadAsync(
        std::uint32_t nCount) = 0;
};

class IOutputStream {
public:
    virtual ~IOutputStream() = default;
    // Writes all bytes of `pBuffer` (not null) at the position and moves it; the
    // result is their number. A file that ends before the position gets zeros
    // up to it.
    virtual Windows::Foundation::AsyncOperation<std::uint32_t> WriteAsync(
        std::shared_ptr<IBuffer> pBuffer) = 0;
    // Ends when all that was written is on the disk.
    virtual Windows::Foundation::AsyncAction FlushAsync() = 0;
};

// A stream with a position of its own. An open stream stays on the file that
// it was opened on, whatever happens to the path. One that was opened for
// reading, or whose transaction was committed, refuses whatever writes with
// `AccessDeniedException`. Threads: one at a time, and no operation is begun
// before the one before it has ended.
class IRandomAccessStream : public IInputStream, public IOutputStream {
public:
    virtual std::uint64_t Size() const = 0;
    // Cuts the file, or lengthens it by a hole; the position stays.
    virtual void SetSize(std::uint64_t nSize) = 0;
    virtual void Seek(std::uint64_t nPosition) = 0;
};

}
