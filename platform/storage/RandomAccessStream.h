// Streams over a file.
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

// A stream with a position of its own. An open stream stays on the file that
// it was opened on, whatever happens to the path. Threads: one at a time.
class IRandomAccessStream : public IInputStream {
public:
    virtual std::uint64_t Size() const = 0;
    virtual void Seek(std::uint64_t nPosition) = 0;
};

}
