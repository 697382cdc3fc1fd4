#include "widget/reload/OpenedFile.h"

#include <utility>

namespace velko::vkit {

using Windows::Foundation::AsyncAction;
using Windows::Foundation::AsyncOperation;
using Windows::Storage::BasicProperties;
using Windows::Storage::FileAccessMode;
using Windows::Storage::FileVersion;
using Windows::Storage::StorageStreamTransaction;
using Windows::Storage::Streams::IRandomAccessStream;

OpenedFile::OpenedFile(const std::string& strPath) : m_pFile(StorageFile::FromPath(strPath)) {}

OpenedFile::OpenedFile(FilePtr pPinned)
    : m_pFile(StorageFile::FromPath(pPinned->Path())), m_pJudged(std::move(pPinned)) {}

OpenedFile::FilePtr OpenedFile::Pinned() const {
    const std::lock_guard lock(m_lock);
    return m_wkPinned.lock();
}

OpenedFile::FilePtr OpenedFile::Judged() const {
    const std::lock_guard lock(m_lock);
    return m_pJudged;
}

std::optional<FileVersion> OpenedFile::Version() const {
    const std::lock_guard lock(m_lock);
    if (m_version) {
        m_version->mark_observed();
    }
    return m_version && m_version->is_value() ? std::optional(m_version->get()) : std::nullopt;
}

OpenedFile::FilePtr OpenedFile::Source() const {
    const std::lock_guard lock(m_lock);
    return m_pJudged ? m_pJudged : m_pFile;
}

OpenedFile::FilePtr OpenedFile::PinForReading() {
    const FilePtr pPinned = Source()->PinForReading();
    const auto version = pPinned->GetVersionAsync().AsTask();
    const std::lock_guard lock(m_lock);
    m_pJudged.reset();
    m_wkPinned = pPinned;
    m_version = version;
    return pPinned;
}

AsyncOperation<BasicProperties> OpenedFile::GetBasicPropertiesAsync() {
    return Source()->GetBasicPropertiesAsync();
}

AsyncOperation<FileVersion> OpenedFile::GetVersionAsync() {
    return m_pFile->GetVersionAsync();
}

AsyncOperation<std::shared_ptr<IRandomAccessStream>> OpenedFile::OpenAsync(FileAccessMode eMode) {
    return m_pFile->OpenAsync(eMode);
}

AsyncAction OpenedFile::CopyAndReplaceAsync(FilePtr pTarget) {
    return m_pFile->CopyAndReplaceAsync(std::move(pTarget));
}

AsyncOperation<FileVersion> OpenedFile::ReplaceUnchangedAsync(FilePtr pTarget,
                                                              const FileVersion& expected) {
    return m_pFile->ReplaceUnchangedAsync(std::move(pTarget), expected);
}

AsyncOperation<std::shared_ptr<StorageStreamTransaction>> OpenedFile::OpenTransactedWriteAsync() {
    return m_pFile->OpenTransactedWriteAsync();
}

AsyncAction OpenedFile::DeleteAsync() {
    return m_pFile->DeleteAsync();
}

}
