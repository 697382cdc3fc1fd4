// The border between the library's error handling and C++.
//
// The library reports errors by `longjmp`. Every call that may fail goes through
// `Guard`, which turns the error into an exception. What runs inside is skipped
// over by the jump: a guarded body has no local with a destructor, does not
// raise, and leaves results in variables outside of it.
//
// Threads: any, with the calling thread's own context.
#pragma once

#include <mupdf/fitz.h>

#include <string>
#include <type_traits>
#include <utility>

#include "document/engine/ErrorCode.h"
#include "engines/mupdf/Context.h"

namespace velko::engines::mupdf {

// An error of the library; the code is what the host gets to see.
class LibraryError : public common::EngineException {
public:
    LibraryError(int nKind, const std::string& strMessage);
    int Kind() const noexcept { return m_nKind; } // FZ_ERROR_...

private:
    int m_nKind;
};

namespace detail {
// Runs `pBody(pArgument)`; raises `LibraryError`.
void RunGuarded(fz_context* ctx, void (*pBody)(void*), void* pArgument);
}

template <class Body>
void Guard(fz_context* ctx, Body&& body) {
    using Plain = std::remove_reference_t<Body>;
    detail::RunGuarded(
        ctx, [](void* pArgument) { (*static_cast<Plain*>(pArgument))(); },
        const_cast<std::remove_const_t<Plain>*>(&body));
}

// Owns one reference to an object of the library.
template <class T, void (*Drop)(fz_context*, T*)>
class Handle {
public:
    Handle() = default;
    explicit Handle(T* pObject) : m_pObject(pObject) {}
    Handle(Handle&& other) noexcept : m_pObject(std::exchange(other.m_pObject, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(m_pObject, other.m_pObject);
        return *this;
    }
    ~Handle() {
        if (m_pObject != nullptr) {
            Drop(ThreadContext(), m_pObject);
        }
    }

    T* Get() const { return m_pObject; }
    explicit operator bool() const { return m_pObject != nullptr; }

    // For a guarded body: assigns what a call of the library returned.
    T*& Out() { return m_pObject; }

private:
    T* m_pObject = nullptr;
};

using DisplayListHandle = Handle<fz_display_list, fz_drop_display_list>;
using DeviceHandle = Handle<fz_device, fz_drop_device>;
using PixmapHandle = Handle<fz_pixmap, fz_drop_pixmap>;
using StreamHandle = Handle<fz_stream, fz_drop_stream>;

}
