// An image file behind a file handler.
//
// Lifetime: after `Dispose` every operation raises `ObjectDisposedException`.
// Threads: one at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "document/VLKS_FileHandler.h"

namespace velko::vkit {

class VLK_Image {
public:
    VLK_Image(); // without a file
    ~VLK_Image();
    VLK_Image(const VLK_Image&) = delete;
    VLK_Image& operator=(const VLK_Image&) = delete;

    const std::shared_ptr<VLKS_FileHandler>& FileHandler() const;
    std::int32_t FrameCount() const;

    void Dispose(); // a second call does nothing

private:
    void ThrowIfDisposed() const;

    std::weak_ptr<VLKS_FileHandlerReadWrite> m_pReadWrite; // owned by the handler
    std::shared_ptr<VLKS_FileHandler> m_pFileHandler;
    std::int32_t m_nFrameCount = 0;
    bool m_bDisposed = false;
};

}
