#include <optional>
#include <utility>

#include "platform/foundation/Exception.h"
#include "platform/storage/AtomicReplace_p.h"
#include "platform/storage/FileStream_p.h"
#include "platform/storage/IoThreads_p.h"
#include "platform/storage/StreamTransaction_p.h"

namespace Windows::Storage {

namespace {

class StreamTransaction final : public StorageStreamTransaction,
                                public std::enable_shared_from_this<StreamTransaction> {
public:
    explicit StreamTransaction(const std::string& strTarget)
        : m_pReplacement(std::make_unique<Posix::Replacement>(strTarget)),
          m_pStream(std::make_shared<FileStream>(m_pReplacement->Descriptor(),
                                                 FileStream::Use::ReadingAndWriting)) {}

    std::shared_ptr<Streams::IRandomAccessStream> Stream() override { return m_pStream; }

    Foundation::AsyncAction CommitAsync() override {
        return RunOnIoThread([pSelf = shared_from_this()] { pSelf->Commit(); });
    }

private:
    void Commit() {
        const auto pReplacement = std::exchange(m_pReplacement, nullptr);
        if (!pReplacement) {
            throw Platform::ObjectDisposedException("the transaction has ended");
        }
        m_pStream->EndWriting(); // what is written from here on would be the file itself
        pReplacement->Commit(std::nullopt);
    }

    std::unique_ptr<Posix::Replacement> m_pReplacement; // empty after the commit
    const std::shared_ptr<FileStream> m_pStream;
};

}

std::shared_ptr<StorageStreamTransaction> BeginTransaction(const std::string& strTarget) {
    return std::make_shared<StreamTransaction>(strTarget);
}

}
