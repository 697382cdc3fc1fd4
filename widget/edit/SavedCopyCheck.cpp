#include "widget/edit/SavedCopyCheck.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <mutex>
#include <string>
#include <utility>

#include "document/engine/ErrorCode.h"
#include "document/engine/IFileReaderCallback.h"
#include "document/engine/PDFDoc.h"
#include "document/engine/PDFPage.h"
#include "platform/system/Activation.h"
#include "widget/edit/SaveFailure.h"

namespace velko::vkit {

using velko::common::ErrorCode;
using velko::pdf::PDFDoc;

namespace {

constexpr std::int32_t kMostPages = 200; // are compared, spread over the document
constexpr float kLikeSize = 0.01F;       // points

class FileBytes final : public velko::common::vxbase::IFileReaderCallback {
public:
    explicit FileBytes(const std::string& strPath)
        : m_file(strPath, std::ios::binary | std::ios::ate) {
        const std::streamoff nSize = m_file ? static_cast<std::streamoff>(m_file.tellg()) : -1;
        if (nSize < 0 || nSize > std::numeric_limits<std::int32_t>::max()) {
            throw BadSaveException("what was written cannot be opened");
        }
        m_nSize = static_cast<std::uint32_t>(nSize);
    }

    std::uint32_t GetSize() override { return m_nSize; }
    bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                   std::uint32_t nSize) override {
        const std::lock_guard lock(m_lock);
        m_file.clear();
        m_file.seekg(static_cast<std::streamoff>(nOffset));
        m_file.read(reinterpret_cast<char*>(destination.data()), nSize);
        return m_file.gcount() == static_cast<std::streamsize>(nSize);
    }
    bool Release() override { return true; }

private:
    std::mutex m_lock;
    std::ifstream m_file;
    std::uint32_t m_nSize = 0;
};

void ComparePages(PDFDoc& copy, PDFDoc& original) {
    const std::int32_t nPages = original.GetPageCount();
    if (copy.GetPageCount() != nPages) {
        throw BadSaveException("what was written has other pages");
    }
    const std::int32_t nStep = std::max(1, nPages / kMostPages);
    for (std::int32_t i = 0; i < nPages; i += nStep) {
        const auto pOne = copy.GetPage(i);
        const auto pOther = original.GetPage(i);
        if (std::abs(pOne->GetWidth() - pOther->GetWidth()) > kLikeSize ||
            std::abs(pOne->GetHeight() - pOther->GetHeight()) > kLikeSize) {
            throw BadSaveException("a page that was written has another size");
        }
    }
}

}

void CheckSavedCopy(const Windows::Storage::StorageFile& file, PDFDoc& original) {
    const auto pCopy =
        Platform::GetActivationFactory<velko::pdf::IPDFDocFactory>(velko::pdf::kPDFDocClass)
            ->Create(std::make_shared<FileBytes>(file.Path()));
    const ErrorCode eCode = pCopy->Load({});
    if (eCode == ErrorCode::e_ErrPassword && original.GetEncryptionType() != 0) {
        return;
    }
    if (eCode != ErrorCode::e_ErrSuccess) {
        throw BadSaveException("what was written does not open");
    }
    ComparePages(*pCopy, original);
}

}
