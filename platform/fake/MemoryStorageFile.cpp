#include "platform/fake/MemoryStorageFile.h"

#include <algorithm>
#include <deque>
#include <mutex>

#include "platform/concurrency/ThreadPool.h"
#include "platform/fake/OffUiScope.h"
#include "platform/foundation/Exception.h"

namespace Platform::Fake {

using concurrency::task_completion_event;
using Windows::Foundation::AsyncAction;
using Windows::Foundation::AsyncOperation;
using Windows::Storage::BasicProperties;
using Windows::Storage::FileAccessMode;
using Windows::Storage::StorageFile;
using Windows::Storage::Streams::IBuffer;
using Windows::Storage::Streams::IRandomAccessStream;
using Windows::Storage::Streams::VectorBuffer;

namespace {

void Raise(FileFailure eFailure) {
    switch (eFailure) {
        case FileFailure::None:
            return;
        case FileFailure::FileNotFound:
            throw FileNotFoundException();
        case FileFailure::AccessDenied:
            throw AccessDeniedException();
        case FileFailure::ReadFault:
            throw ReadFaultException();
        case FileFailure::WriteFault:
            throw WriteFaultException();
        case FileFailure::DiskFull:
            throw DiskFullException();
        case FileFailure::Canceled:
            throw concurrency::task_canceled();
    }
}

concurrency::ThreadPool& CompletionThreads() {
    static concurrency::ThreadPool s_threads(1);
    return s_threads;
}

// Ends `completion` with what `fnBody` gives or raises.
template <class T, class F>
void EndWith(const task_completion_event<T>& completion, F& fnBody) {
    try {
        if constexpr (std::is_void_v<T>) {
            fnBody();
            completion.set();
        } else {
            completion.set(fnBody());
        }
    } catch (const concurrency::task_canceled&) {
        completion.set_canceled();
    } catch (...) {
        completion.set_exception(std::current_exception());
    }
}

}

// What a file, its pins and its streams share.
struct MemoryStorageFile::Node {
    mutable std::mutex lock; // guards everything below; a leaf
    std::shared_ptr<const Data> pBytes;
    bool bDeleted = false;
    std::uint32_t nAttributes = 0;
    std::optional<std::uint64_t> nPretendedSize;
    FileCompletion eCompletion = FileCompletion::Inline;
    FileFailure eProperties = FileFailure::None;
    FileFailure eOpen = FileFailure::None;
    FileFailure eReplace = FileFailure::None;
    FileFailure eDelete = FileFailure::None;
    FileFailure eRead = FileFailure::None;
    std::size_t nReadsUntilFailure = 0;
    bool bReadsKeepFailing = false;
    std::size_t nOpens = 0;
    std::vector<ReadRecord> reads;
    std::deque<concurrency::work> waiting;

    std::uint64_t SizeOf(const Data& bytes) const { return nPretendedSize.value_or(bytes.size()); }

    FileFailure CountRead(std::uint64_t nOffset, std::uint32_t nCount) {
        reads.push_back({nOffset, nCount});
        if (nReadsUntilFailure == 0) {
            return FileFailure::None;
        }
        if (nReadsUntilFailure > 1) {
            --nReadsUntilFailure;
            return FileFailure::None;
        }
        nReadsUntilFailure = bReadsKeepFailing ? 1 : 0;
        return eRead;
    }

    // Runs `fnBody` where the script says, and gives the operation of it.
    template <class T, class F>
    AsyncOperation<T> Start(F fnBody) {
        const task_completion_event<T> completion;
        concurrency::work fnEnd(
            [completion, fnBody = std::move(fnBody)]() mutable { EndWith<T>(completion, fnBody); });
        Dispatch(std::move(fnEnd));
        return AsyncOperation<T>(completion.get_task());
    }

    void Dispatch(concurrency::work fnEnd) {
        FileCompletion eWhere = FileCompletion::Inline;
        {
            const std::lock_guard<std::mutex> guard(lock);
            eWhere = eCompletion;
            if (eWhere == FileCompletion::OnDemand) {
                waiting.push_back(std::move(fnEnd));
            }
        }
        if (eWhere == FileCompletion::OwnThread) {
            CompletionThreads().schedule(std::move(fnEnd));
        } else if (eWhere == FileCompletion::Inline) {
            const OffUiScope offUi;
            fnEnd();
        }
    }
};

class MemoryStorageFile::Stream final : public IRandomAccessStream {
public:
    Stream(std::shared_ptr<Node> pNode, std::shared_ptr<const Data> pBytes)
        : m_pNode(std::move(pNode)), m_pBytes(std::move(pBytes)) {}

    std::uint64_t Size() const override {
        const std::lock_guard<std::mutex> guard(m_pNode->lock);
        return m_pNode->SizeOf(*m_pBytes);
    }
    void Seek(std::uint64_t nPosition) override { m_nPosition = nPosition; }

    AsyncOperation<std::shared_ptr<IBuffer>> ReadAsync(std::uint32_t nCount) override {
        const std::uint64_t nFrom = std::min<std::uint64_t>(m_nPosition, m_pBytes->size());
        const std::uint64_t nHere = std::min<std::uint64_t>(nCount, m_pBytes->size() - nFrom);
        auto fnRead = [pNode = m_pNode, pBytes = m_pBytes, nAsked = m_nPosition, nCount, nFrom,
                       nHere] {
            FileFailure eFailure = FileFailure::None;
            {
                const std::lock_guard<std::mutex> guard(pNode->lock);
                eFailure = pNode->CountRead(nAsked, nCount);
            }
            Raise(eFailure);
            const auto itFrom = pBytes->begin() + static_cast<std::ptrdiff_t>(nFrom);
            return std::shared_ptr<IBuffer>(std::make_shared<VectorBuffer>(
                Data(itFrom, itFrom + static_cast<std::ptrdiff_t>(nHere))));
        };
        m_nPosition += nHere;
        return m_pNode->Start<std::shared_ptr<IBuffer>>(std::move(fnRead));
    }

private:
    const std::shared_ptr<Node> m_pNode;
    const std::shared_ptr<const Data> m_pBytes;
    std::uint64_t m_nPosition = 0;
};

MemoryStorageFile::MemoryStorageFile(std::string strPath, std::shared_ptr<Node> pNode,
                                     std::shared_ptr<const Data> pPinned)
    : m_strPath(std::move(strPath)), m_pNode(std::move(pNode)), m_pPinned(std::move(pPinned)) {}

std::shared_ptr<MemoryStorageFile> MemoryStorageFile::Create(const std::string& strPath,
                                                             Data bytes) {
    auto pNode = std::make_shared<Node>();
    pNode->pBytes = std::make_shared<const Data>(std::move(bytes));
    return std::shared_ptr<MemoryStorageFile>(
        new MemoryStorageFile(strPath, std::move(pNode), nullptr));
}

std::string MemoryStorageFile::Name() const {
    return m_strPath.substr(m_strPath.rfind('/') + 1);
}

std::uint32_t MemoryStorageFile::Attributes() const {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    return m_pNode->nAttributes;
}

AsyncOperation<BasicProperties> MemoryStorageFile::GetBasicPropertiesAsync() {
    return m_pNode->Start<BasicProperties>([pNode = m_pNode, pPinned = m_pPinned] {
        const std::lock_guard<std::mutex> guard(pNode->lock);
        Raise(pNode->eProperties);
        if (!pPinned && pNode->bDeleted) {
            throw FileNotFoundException();
        }
        BasicProperties properties;
        properties.Size = pNode->SizeOf(pPinned ? *pPinned : *pNode->pBytes);
        return properties;
    });
}

AsyncOperation<std::shared_ptr<IRandomAccessStream>> MemoryStorageFile::OpenAsync(
    FileAccessMode /*eMode*/) {
    using StreamPtr = std::shared_ptr<IRandomAccessStream>;
    return m_pNode->Start<StreamPtr>([pNode = m_pNode, pPinned = m_pPinned]() -> StreamPtr {
        const std::lock_guard<std::mutex> guard(pNode->lock);
        ++pNode->nOpens;
        Raise(pNode->eOpen);
        if (!pPinned && pNode->bDeleted) {
            throw FileNotFoundException();
        }
        return std::make_shared<Stream>(pNode, pPinned ? pPinned : pNode->pBytes);
    });
}

std::shared_ptr<StorageFile> MemoryStorageFile::PinForReading() {
    std::shared_ptr<const Data> pBytes = m_pPinned;
    if (!pBytes) {
        const std::lock_guard<std::mutex> guard(m_pNode->lock);
        if (!m_pNode->bDeleted) {
            pBytes = m_pNode->pBytes;
        }
    }
    return std::shared_ptr<StorageFile>(
        new MemoryStorageFile(m_strPath, m_pNode, std::move(pBytes)));
}

AsyncAction MemoryStorageFile::CopyAndReplaceAsync(std::shared_ptr<StorageFile> pTarget) {
    const auto pMemoryTarget = std::dynamic_pointer_cast<MemoryStorageFile>(pTarget);
    auto fnCopy = [pNode = m_pNode, pPinned = m_pPinned,
                   pInto = pMemoryTarget ? pMemoryTarget->m_pNode : nullptr] {
        if (!pInto) {
            throw InvalidArgumentException("the target is no file in memory");
        }
        std::shared_ptr<const Data> pBytes = pPinned;
        {
            const std::lock_guard<std::mutex> guard(pNode->lock);
            Raise(pNode->eReplace);
            if (!pBytes && pNode->bDeleted) {
                throw FileNotFoundException();
            }
            pBytes = pBytes ? pBytes : pNode->pBytes;
        }
        const std::lock_guard<std::mutex> guard(pInto->lock);
        pInto->pBytes = std::move(pBytes);
        pInto->bDeleted = false;
    };
    return m_pNode->Start<void>(std::move(fnCopy));
}

AsyncAction MemoryStorageFile::DeleteAsync() {
    return m_pNode->Start<void>([pNode = m_pNode] {
        const std::lock_guard<std::mutex> guard(pNode->lock);
        Raise(pNode->eDelete);
        if (std::exchange(pNode->bDeleted, true)) {
            throw FileNotFoundException();
        }
    });
}

void MemoryStorageFile::SetCompletion(FileCompletion eCompletion) {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->eCompletion = eCompletion;
}

void MemoryStorageFile::SetAttributes(std::uint32_t nAttributes) {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->nAttributes = nAttributes;
}

void MemoryStorageFile::FailProperties(FileFailure eFailure) {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->eProperties = eFailure;
}

void MemoryStorageFile::FailOpen(FileFailure eFailure) {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->eOpen = eFailure;
}

void MemoryStorageFile::FailRead(std::size_t nNth, FileFailure eFailure, bool bFromThenOn) {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->nReadsUntilFailure = eFailure == FileFailure::None ? 0 : nNth;
    m_pNode->eRead = eFailure;
    m_pNode->bReadsKeepFailing = bFromThenOn;
}

void MemoryStorageFile::FailReplace(FileFailure eFailure) {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->eReplace = eFailure;
}

void MemoryStorageFile::FailDelete(FileFailure eFailure) {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->eDelete = eFailure;
}

void MemoryStorageFile::PretendSize(std::uint64_t nSize) {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->nPretendedSize = nSize;
}

bool MemoryStorageFile::CompleteOne() {
    concurrency::work fnEnd;
    {
        const std::lock_guard<std::mutex> guard(m_pNode->lock);
        if (m_pNode->waiting.empty()) {
            return false;
        }
        fnEnd = std::move(m_pNode->waiting.front());
        m_pNode->waiting.pop_front();
    }
    const OffUiScope offUi;
    fnEnd();
    return true;
}

std::size_t MemoryStorageFile::CompleteAll() {
    std::size_t nEnded = 0;
    while (CompleteOne()) {
        ++nEnded;
    }
    return nEnded;
}

std::size_t MemoryStorageFile::PendingCompletions() const {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    return m_pNode->waiting.size();
}

std::vector<MemoryStorageFile::ReadRecord> MemoryStorageFile::Reads() const {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    return m_pNode->reads;
}

std::size_t MemoryStorageFile::Opens() const {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    return m_pNode->nOpens;
}

bool MemoryStorageFile::IsDeleted() const {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    return m_pNode->bDeleted;
}

MemoryStorageFile::Data MemoryStorageFile::Bytes() const {
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    return m_pPinned ? *m_pPinned : *m_pNode->pBytes;
}

void MemoryStorageFile::SetBytes(Data bytes) {
    auto pBytes = std::make_shared<const Data>(std::move(bytes));
    const std::lock_guard<std::mutex> guard(m_pNode->lock);
    m_pNode->pBytes.swap(pBytes);
    m_pNode->bDeleted = false;
}

}
