#include "engines/mupdf/save/DocumentWriter.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace velko::engines::mupdf {

namespace {

using OutputHandle = Handle<fz_output, fz_drop_output>;

// The library's output onto a target. What the target raises is kept, as no exception
// may cross the library's frames.
class StreamOutput {
public:
    explicit StreamOutput(std::shared_ptr<SaveTarget> pTarget)
        : m_pTarget(std::move(pTarget)), m_nPosition(m_pTarget->Size()) {}

    // It borrows this object. May throw as the library does.
    fz_output* New(fz_context* ctx);

    void RaiseFailure() const {
        if (m_pFailure) {
            std::rethrow_exception(m_pFailure);
        }
    }

private:
    static void Write(fz_context* ctx, void* pState, const void* pBytes, std::size_t nBytes);
    static void Seek(fz_context* ctx, void* pState, std::int64_t nOffset, int nWhence);
    static std::int64_t Tell(fz_context* ctx, void* pState);
    static fz_stream* AsStream(fz_context* ctx, void* pState);
    static void Truncate(fz_context* ctx, void* pState);

    bool Put(std::span<const std::uint8_t> bytes) noexcept;
    bool Cut() noexcept;
    ReaderStream* NewReader() noexcept; // null when there is no memory

    const std::shared_ptr<SaveTarget> m_pTarget;
    std::uint64_t m_nPosition;
    std::exception_ptr m_pFailure;
    std::vector<std::unique_ptr<ReaderStream>> m_readers; // of streams that the library took
};

fz_output* StreamOutput::New(fz_context* ctx) {
    constexpr int kBufferBytes = 1 << 18;
    fz_output* const pOutput = fz_new_output(ctx, kBufferBytes, this, &Write, nullptr, nullptr);
    pOutput->seek = &Seek;
    pOutput->tell = &Tell;
    pOutput->as_stream = &AsStream;
    pOutput->truncate = &Truncate;
    return pOutput;
}

bool StreamOutput::Put(std::span<const std::uint8_t> bytes) noexcept {
    try {
        m_pTarget->Write(m_nPosition, bytes);
        m_nPosition += bytes.size();
        return true;
    } catch (...) {
        m_pFailure = std::current_exception();
        return false;
    }
}

void StreamOutput::Write(fz_context* ctx, void* pState, const void* pBytes, std::size_t nBytes) {
    auto* const pThis = static_cast<StreamOutput*>(pState);
    if (!pThis->Put({static_cast<const std::uint8_t*>(pBytes), nBytes})) {
        fz_throw(ctx, FZ_ERROR_GENERIC, "the file cannot be written");
    }
}

void StreamOutput::Seek(fz_context*, void* pState, std::int64_t nOffset, int nWhence) {
    auto* const pThis = static_cast<StreamOutput*>(pState);
    const std::uint64_t nFrom = nWhence == SEEK_END   ? pThis->m_pTarget->Size()
                                : nWhence == SEEK_CUR ? pThis->m_nPosition
                                                      : 0;
    pThis->m_nPosition = nFrom + static_cast<std::uint64_t>(nOffset);
}

std::int64_t StreamOutput::Tell(fz_context*, void* pState) {
    return static_cast<std::int64_t>(static_cast<StreamOutput*>(pState)->m_nPosition);
}

bool StreamOutput::Cut() noexcept {
    try {
        m_pTarget->Cut(m_nPosition);
        return true;
    } catch (...) {
        m_pFailure = std::current_exception();
        return false;
    }
}

void StreamOutput::Truncate(fz_context* ctx, void* pState) {
    if (!static_cast<StreamOutput*>(pState)->Cut()) {
        fz_throw(ctx, FZ_ERROR_GENERIC, "the file cannot be written");
    }
}

ReaderStream* StreamOutput::NewReader() noexcept {
    try {
        m_readers.push_back(
            std::make_unique<ReaderStream>(std::make_shared<SavedReader>(m_pTarget)));
        return m_readers.back().get();
    } catch (...) {
        m_pFailure = std::current_exception();
        return nullptr;
    }
}

// The library looks at how the bytes end that it writes behind.
fz_stream* StreamOutput::AsStream(fz_context* ctx, void* pState) {
    ReaderStream* const pReader = static_cast<StreamOutput*>(pState)->NewReader();
    if (pReader == nullptr) {
        fz_throw(ctx, FZ_ERROR_GENERIC, "what was written cannot be read");
    }
    return pReader->NewStream(ctx);
}

// The library takes from its random numbers what tells versions of a file apart, and what
// strings and streams are encrypted with; they start alike in every process.
void Shuffle(fz_context* ctx) {
    constexpr std::size_t kNumbers = 3; // that change from one to the next
    std::random_device random;
    for (std::size_t i = 0; i < kNumbers; ++i) {
        ctx->seed48[i] = static_cast<std::uint16_t>(random());
    }
}

void WriteWith(OpenedFile& file, std::shared_ptr<SaveTarget> pTarget,
               const pdf_write_options& options) {
    fz_context* const ctx = ThreadContext();
    Shuffle(ctx);
    StreamOutput stream(std::move(pTarget));
    OutputHandle output;
    try {
        file.Use([&] {
            output.Out() = stream.New(ctx);
            pdf_write_document(ctx, file.Document(), output.Get(), &options);
            fz_close_output(ctx, output.Get());
        });
    } catch (const LibraryError&) {
        stream.RaiseFailure(); // the better reason, if there is one
        throw;
    }
    stream.RaiseFailure();
}

// A file with both kinds of tables the library would not update, not knowing which kind
// to write: it gets one of the kind of its last.
void SettleKindOfTable(fz_context* ctx, pdf_document* pDocument) {
    pdf_obj* const pTrailer = pdf_trailer(ctx, pDocument);
    const bool bStream =
        pdf_name_eq(ctx, pdf_dict_get(ctx, pTrailer, PDF_NAME(Type)), PDF_NAME(XRef)) != 0;
    (bStream ? pDocument->has_old_style_xrefs : pDocument->has_xref_streams) = 0;
    pdf_dict_del(ctx, pTrailer, PDF_NAME(XRefStm)); // belongs to the table that it stands in
}

}

bool CanBeUpdated(OpenedFile& file) {
    fz_context* const ctx = ThreadContext();
    bool bCan = false;
    file.Use([&] {
        SettleKindOfTable(ctx, file.Document());
        bCan = pdf_was_repaired(ctx, file.Document()) == 0 &&
               pdf_can_be_saved_incrementally(ctx, file.Document()) != 0;
    });
    return bCan;
}

void WriteUpdate(OpenedFile& file, std::shared_ptr<SaveTarget> pTarget) {
    pdf_write_options options = pdf_default_write_options;
    options.do_incremental = 1;
    options.do_encrypt = PDF_ENCRYPT_KEEP;
    WriteWith(file, std::move(pTarget), options);
}

void WriteAnew(OpenedFile& file, std::shared_ptr<SaveTarget> pTarget) {
    pdf_write_options options = pdf_default_write_options;
    options.do_garbage = 1; // what nothing refers to is left out
    options.do_encrypt = PDF_ENCRYPT_KEEP;
    WriteWith(file, std::move(pTarget), options);
}

}
