#include "engines/mupdf/Guard.h"

#include <array>
#include <cstdio>

namespace velko::engines::mupdf {

namespace {

using common::ErrorCode;

// What is kept of an error until the jump buffers are out of the way.
struct Failure {
    int nKind = FZ_ERROR_NONE;
    std::array<char, 256> message{};
};

// Separate, so that no local of a C++ caller lives in the frame that is jumped to.
[[gnu::noinline]] void TryBody(fz_context* ctx, void (*pBody)(void*), void* pArgument,
                               Failure* pFailure) {
    fz_try(ctx) {
        pBody(pArgument);
    }
    fz_catch(ctx) {
        pFailure->nKind = fz_caught(ctx);
        std::snprintf(pFailure->message.data(), pFailure->message.size(), "%s",
                      fz_caught_message(ctx));
    }
}

ErrorCode CodeOf(int nKind) {
    switch (nKind) {
        case FZ_ERROR_MEMORY:
            return ErrorCode::e_ErrOutOfMemory;
        case FZ_ERROR_TRYLATER:
            return ErrorCode::e_ErrFile;
        case FZ_ERROR_SYNTAX:
            return ErrorCode::e_ErrInvalidData;
        default:
            return ErrorCode::e_ErrUnknown;
    }
}

}

LibraryError::LibraryError(int nKind, const std::string& strMessage)
    : EngineException(CodeOf(nKind), strMessage), m_nKind(nKind) {}

void detail::RunGuarded(fz_context* ctx, void (*pBody)(void*), void* pArgument) {
    Failure failure;
    TryBody(ctx, pBody, pArgument, &failure);
    if (failure.nKind != FZ_ERROR_NONE) {
        throw LibraryError(failure.nKind, failure.message.data());
    }
}

}
