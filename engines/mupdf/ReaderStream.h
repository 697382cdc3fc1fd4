// The library's stream over the component's reader.
//
// A read that fails is remembered: the library may go on with what it has, and
// what it then builds is not what the file says. After every use of the file
// its owner asks `TakeFailure`, and opens the file anew after a failure.
//
// Threads: the stream one at a time (under the document's lock); `TakeFailure`
// by the thread that used it.
#pragma once

#include <mupdf/fitz.h>

#include <array>
#include <cstdint>
#include <memory>

#include "document/engine/IFileReaderCallback.h"

namespace velko::engines::mupdf {

class ReaderStream {
public:
    explicit ReaderStream(std::shared_ptr<common::vxbase::IFileReaderCallback> pReader);

    std::uint32_t Size() const { return m_nSize; }

    // A stream from the start of the file; it borrows this object. May throw
    // as the library does.
    fz_stream* NewStream(fz_context* ctx);

    // Why a read has failed since the last call, if one has.
    enum class Failure { kNone, kUnreadable, kChanged };
    Failure TakeFailure();

private:
    static constexpr std::size_t kBufferBytes = std::size_t{32} << 10;

    static int Next(fz_context* ctx, fz_stream* pStream, std::size_t nMax);
    static void Seek(fz_context* ctx, fz_stream* pStream, std::int64_t nOffset, int nWhence);

    void MoveTo(fz_stream* pStream, std::uint64_t nOffset);

    // Fills the buffer from the position on.
    Failure Fill() noexcept;

    std::shared_ptr<common::vxbase::IFileReaderCallback> m_pReader;
    std::uint32_t m_nSize;
    std::uint64_t m_nPosition = 0; // of the byte after the buffer
    std::uint32_t m_nFilled = 0;   // bytes in the buffer
    Failure m_eFailure = Failure::kNone;
    std::array<std::uint8_t, kBufferBytes> m_buffer{};
};

}
