#include "engines/mupdf/ReaderStream.h"

#include <algorithm>
#include <span>
#include <utility>

#include "engines/mupdf/Operation.h"
#include "platform/storage/FileChangedException.h"

namespace velko::engines::mupdf {

ReaderStream::ReaderStream(std::shared_ptr<common::vxbase::IFileReaderCallback> pReader)
    : m_pReader(std::move(pReader)), m_nSize(m_pReader->GetSize()) {}

fz_stream* ReaderStream::NewStream(fz_context* ctx) {
    m_nPosition = 0;
    m_nFilled = 0;
    fz_stream* const pStream = fz_new_stream(ctx, this, &Next, nullptr);
    pStream->seek = &Seek;
    return pStream;
}

ReaderStream::Failure ReaderStream::TakeFailure() {
    return std::exchange(m_eFailure, Failure::kNone);
}

// No exception may cross the library's frames.
ReaderStream::Failure ReaderStream::Fill() noexcept {
    const Operation::Waiting waiting;
    m_nFilled =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(kBufferBytes, m_nSize - m_nPosition));
    try {
        const bool bRead =
            m_pReader->ReadBlock(std::span(m_buffer).first(m_nFilled), m_nPosition, m_nFilled);
        return bRead ? Failure::kNone : Failure::kUnreadable;
    } catch (const Platform::FileChangedException&) {
        return Failure::kChanged;
    } catch (...) {
        return Failure::kUnreadable;
    }
}

int ReaderStream::Next(fz_context* ctx, fz_stream* pStream, std::size_t) {
    auto* const pThis = static_cast<ReaderStream*>(pStream->state);
    Operation::Poll();
    if (pThis->m_nPosition >= pThis->m_nSize) {
        return EOF;
    }
    if (const Failure eFailure = pThis->Fill(); eFailure != Failure::kNone) {
        pThis->m_eFailure = eFailure;
        pThis->m_nFilled = 0;
        pStream->rp = pStream->wp = pThis->m_buffer.data();
        // Any other kind would count as the end of the file.
        fz_throw(ctx, FZ_ERROR_TRYLATER, "a read of the file failed");
    }
    pThis->m_nPosition += pThis->m_nFilled;
    pStream->rp = pThis->m_buffer.data();
    pStream->wp = pThis->m_buffer.data() + pThis->m_nFilled;
    pStream->pos = static_cast<std::int64_t>(pThis->m_nPosition);
    return *pStream->rp++;
}

// Objects that are looked up one after the other mostly lie close together, so
// what is in the buffer stays in use.
void ReaderStream::MoveTo(fz_stream* pStream, std::uint64_t nOffset) {
    const std::uint64_t nStart = m_nPosition - m_nFilled;
    if (nOffset >= nStart && nOffset < m_nPosition) {
        pStream->rp = m_buffer.data() + (nOffset - nStart);
        pStream->wp = m_buffer.data() + m_nFilled;
    } else {
        m_nPosition = nOffset;
        m_nFilled = 0;
        pStream->rp = pStream->wp = m_buffer.data();
    }
    pStream->pos = static_cast<std::int64_t>(m_nPosition);
}

void ReaderStream::Seek(fz_context*, fz_stream* pStream, std::int64_t nOffset, int nWhence) {
    auto* const pThis = static_cast<ReaderStream*>(pStream->state);
    const auto nSize = static_cast<std::int64_t>(pThis->m_nSize);
    if (nWhence == SEEK_CUR) {
        nOffset += pStream->pos - (pStream->wp - pStream->rp);
    } else if (nWhence == SEEK_END) {
        nOffset += nSize;
    }
    pThis->MoveTo(pStream, static_cast<std::uint64_t>(std::clamp<std::int64_t>(nOffset, 0, nSize)));
}

}
