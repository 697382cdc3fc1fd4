#include "document/VLKS_FileHandlerReadWrite.h"

#include <algorithm>
#include <limits>
#include <span>
#include <utility>

#include "platform/concurrency/CriticalSection.h"
#include "platform/foundation/AsyncOperation.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/DataReaderWriter.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

using Platform::Debug::OutputDebugString;
using Windows::Foundation::AsyncOperation;
using Windows::Foundation::AsyncStatus;
using Windows::Storage::FileAccessMode;
using Windows::Storage::StorageFile;
using Windows::Storage::Streams::DataReader;
using Windows::Storage::Streams::DataWriter;
using Windows::Storage::Streams::IRandomAccessStream;

namespace {

constexpr std::uint64_t kMaxFileSize = std::numeric_limits<std::int32_t>::max();

}

// One read on its way: what to read, what to do with it, how it ended. The
// stages of the read share it with the thread that waits.
struct VLKS_FileHandlerReadWrite::PendingRead {
    using OpenOperation = AsyncOperation<std::shared_ptr<IRandomAccessStream>>;
    using LoadOperation = AsyncOperation<std::uint32_t>;

    std::uint64_t nOffset = 0;
    std::uint32_t nSize = 0;
    Take fnTake;
    bool bOk = false;
    std::uint64_t nStreamSize = 0;
    concurrency::event done;

    // Ends the wait when the last stage lets go of it: whichever way the read
    // went, also when the platform drops a handler that it never called.
    class Ender {
    public:
        explicit Ender(std::shared_ptr<PendingRead> pRead) : m_pRead(std::move(pRead)) {}
        ~Ender() { m_pRead->done.set(); }
        Ender(const Ender&) = delete;
        Ender& operator=(const Ender&) = delete;
        PendingRead& Read() const { return *m_pRead; }

    private:
        std::shared_ptr<PendingRead> m_pRead;
    };
    using EnderPtr = std::shared_ptr<Ender>;

    static void Start(StorageFile& file, const EnderPtr& pEnder);
    static void OnOpened(const OpenOperation& operation, const EnderPtr& pEnder);
    static void OnLoaded(const LoadOperation& operation, const std::shared_ptr<DataReader>& pReader,
                         const EnderPtr& pEnder);
    std::shared_ptr<DataReader> MakeReader(const OpenOperation& operation);
};

// Each stage catches all that its step can raise: nobody is above it to hear,
// and the thread that waits hears by the flag.

void VLKS_FileHandlerReadWrite::PendingRead::Start(StorageFile& file, const EnderPtr& pEnder) {
    try {
        file.OpenAsync(FileAccessMode::Read)
            .Completed([pEnder](const OpenOperation& operation, AsyncStatus /*eStatus*/) {
                OnOpened(operation, pEnder);
            });
    } catch (...) {
        OutputDebugString("status ERROR!!!!!\n");
    }
}

void VLKS_FileHandlerReadWrite::PendingRead::OnOpened(const OpenOperation& operation,
                                                      const EnderPtr& pEnder) {
    std::shared_ptr<DataReader> pReader;
    try {
        pReader = pEnder->Read().MakeReader(operation);
    } catch (...) {
        OutputDebugString("status ERROR!!!!!\n");
        return;
    }
    try {
        pReader->LoadAsync(pEnder->Read().nSize)
            .Completed([pReader, pEnder](const LoadOperation& load, AsyncStatus /*eStatus*/) {
                OnLoaded(load, pReader, pEnder);
            });
    } catch (...) {
        OutputDebugString("LoadAsync status ERROR!!!!!\n");
    }
}

// Asking for the result raises for every status but the completed one.
std::shared_ptr<DataReader> VLKS_FileHandlerReadWrite::PendingRead::MakeReader(
    const OpenOperation& operation) {
    const std::shared_ptr<IRandomAccessStream> pStream = operation.GetResults();
    nStreamSize = pStream->Size();
    if (nStreamSize > kMaxFileSize) {
        throw Platform::InvalidArgumentException("the file is too large");
    }
    pStream->Seek(nOffset);
    return DataReader::CreateDataReader(pStream);
}

void VLKS_FileHandlerReadWrite::PendingRead::OnLoaded(const LoadOperation& operation,
                                                      const std::shared_ptr<DataReader>& pReader,
                                                      const EnderPtr& pEnder) {
    try {
        const std::uint32_t nLoaded = operation.GetResults();
        if (nLoaded > 0) {
            pEnder->Read().fnTake(*pReader, nLoaded);
        }
        pEnder->Read().bOk = true;
    } catch (...) {
        OutputDebugString("LoadAsync status ERROR!!!!!\n");
    }
}

VLKS_FileHandlerReadWrite::VLKS_FileHandlerReadWrite() : m_pBlocks(std::make_shared<BlockList>()) {}

VLKS_FileHandlerReadWrite::~VLKS_FileHandlerReadWrite() {
    m_pFile.reset();
    if (m_pBlocks->Size() > 0) {
        m_pBlocks->Clear();
    }
}

void VLKS_FileHandlerReadWrite::SetFile(const std::shared_ptr<StorageFile>& pFile,
                                        std::int32_t nFileSize) {
    if (nFileSize < 0) {
        throw Platform::InvalidArgumentException("a file of negative size");
    }
    m_pFile = pFile ? pFile->PinForReading() : nullptr;
    m_nFileSize = nFileSize;
}

bool VLKS_FileHandlerReadWrite::PreloadFile() {
    if (!m_pFile) {
        return false;
    }
    const auto nSize = std::min(static_cast<std::uint32_t>(m_nFileSize), kCacheLimit);
    auto pCache = std::make_unique<std::uint8_t[]>(nSize);
    const std::span<std::uint8_t> cache(pCache.get(), nSize);
    const std::shared_ptr<PendingRead> pRead =
        ReadFile(0, nSize, [cache](DataReader& reader, std::uint32_t nLoaded) {
            reader.ReadBytes(cache.first(nLoaded));
            reader.DetachStream(); // the stream outlives the reader's own end
        });
    m_nStreamSize = pRead->nStreamSize;
    m_pCache = std::move(pCache);
    return pRead->bOk;
}

VLKS_FileHandlerReadWrite::BufferPtr VLKS_FileHandlerReadWrite::ReadBytes(std::uint64_t nOffset,
                                                                          std::uint32_t nSize) {
    if (!m_pFile || !IsHeld(nOffset, nSize)) {
        return nullptr;
    }
    if (m_pCache && nOffset + nSize <= kCacheLimit) {
        DataWriter writer;
        writer.WriteBytes({m_pCache.get() + nOffset, nSize});
        return writer.DetachBuffer();
    }
    const auto pSlot = std::make_shared<BufferPtr>();
    ReadFile(nOffset, nSize, [pSlot](DataReader& reader, std::uint32_t nLoaded) {
        *pSlot = reader.ReadBuffer(nLoaded);
    });
    return *pSlot;
}

// Written so that no sum of the two can run over.
bool VLKS_FileHandlerReadWrite::IsHeld(std::uint64_t nOffset, std::uint32_t nSize) const {
    const auto nFileSize = static_cast<std::uint64_t>(m_nFileSize);
    return nOffset <= nFileSize && nSize <= nFileSize - nOffset;
}

std::shared_ptr<VLKS_FileHandlerReadWrite::PendingRead> VLKS_FileHandlerReadWrite::ReadFile(
    std::uint64_t nOffset, std::uint32_t nSize, Take fnTake) const {
    auto pRead = std::make_shared<PendingRead>();
    pRead->nOffset = nOffset;
    pRead->nSize = nSize;
    pRead->fnTake = std::move(fnTake);
    PendingRead::Start(*m_pFile, std::make_shared<PendingRead::Ender>(pRead));
    pRead->done.wait();
    return pRead;
}

}
