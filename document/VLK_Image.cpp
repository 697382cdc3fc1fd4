#include "document/VLK_Image.h"

#include <utility>

#include "platform/foundation/Exception.h"

namespace velko::vkit {

VLK_Image::VLK_Image() : m_pFileHandler(std::make_shared<VLKS_FileHandler>()) {
    const auto pReadWrite = std::make_shared<VLKS_FileHandlerReadWrite>();
    m_pReadWrite = pReadWrite;
    m_pFileHandler->SetReadWrite(pReadWrite);
}

VLK_Image::~VLK_Image() {
    Dispose();
}

void VLK_Image::ThrowIfDisposed() const {
    if (m_bDisposed) {
        throw Platform::ObjectDisposedException("the image is closed");
    }
}

const std::shared_ptr<VLKS_FileHandler>& VLK_Image::FileHandler() const {
    ThrowIfDisposed();
    return m_pFileHandler;
}

std::int32_t VLK_Image::FrameCount() const {
    ThrowIfDisposed();
    return m_nFrameCount;
}

void VLK_Image::Dispose() {
    if (!std::exchange(m_bDisposed, true)) {
        m_pFileHandler->Dispose();
        m_pFileHandler.reset();
    }
}

}
