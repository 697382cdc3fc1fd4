#include "document/VLKS_FileHandlerReadWrite.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <limits>
#include <utility>

#include "platform/concurrency/StopSignal.h"
#include "platform/foundation/AsyncOperation.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/DataReaderWriter.h"
#include "platform/storage/FileChangedException.h"
#include "platform/system/Debug.h"

namespace velko::vkit {

using concurrency::critical_section;
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

// One read on its way: what to read, and how it ended. The stages of the read
// share it with the thread that waits, which looks at the results once the read
// has ended and may leave before: nothing here is the waiting thread's own.
struct VLKS_FileHandlerReadWrite::PendingRead {
    using OpenOperation = AsyncOperation<std::shared_ptr<IRandomAccessStream>>;
    using LoadOperation = AsyncOperation<std::uint32_t>;

    std::uint64_t nOffset = 0;
    std::uint32_t nSize = 0;

    bool bOk = false;
    BufferPtr pBytes; // empty when nothing came
    std::uint64_t nStreamSize = 0;
    std::exception_ptr pChanged; // set for a file that was written to

    std::atomic<bool> bEnded = false; // the results are there
    concurrency::event done;          // the wait is over, whatever ended it

    // Ends the read when the last stage lets go of it: whichever way it went,
    // also when the platform drops a handler that it never called.
    class Ender {
    public:
        explicit Ender(std::shared_ptr<PendingRead> pRead) : m_pRead(std::move(pRead)) {}
        ~Ender() {
            m_pRead->bEnded.store(true, std::memory_order_release);
            m_pRead->done.set();
        }
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
// and the thread that waits hears by the results.

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
    const std::shared_ptr<IRandomAccessStream>& pStream = operation.GetResults();
    nStreamSize = pStream->Size();
    if (nStreamSize > kMaxFileSize) {
        throw Platform::InvalidArgumentException("the file is too large");
    }
    pStream->Seek(nOffset);
    return DataReader::CreateDataReader(pStream);
}

// The reader hands over the buffer that the file was read into, as it is.
void VLKS_FileHandlerReadWrite::PendingRead::OnLoaded(const LoadOperation& operation,
                                                      const std::shared_ptr<DataReader>& pReader,
                                                      const EnderPtr& pEnder) {
    PendingRead& read = pEnder->Read();
    try {
        const std::uint32_t nLoaded = operation.GetResults();
        if (nLoaded > 0) {
            read.pBytes = pReader->ReadBuffer(nLoaded);
        }
        read.bOk = true;
        return;
    } catch (const Platform::FileChangedException&) {
        read.pChanged = std::current_exception();
    } catch (...) {
        // Told below, as every other failure.
    }
    OutputDebugString("LoadAsync status ERROR!!!!!\n");
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
    const std::shared_ptr<PendingRead> pRead =
        ReadFile(0, std::min(static_cast<std::uint32_t>(m_nFileSize), kCacheLimit));
    if (!pRead) {
        return false;
    }
    m_nStreamSize = pRead->nStreamSize;
    m_pCache = pRead->pBytes;
    return pRead->bOk;
}

bool VLKS_FileHandlerReadWrite::ReadInto(std::span<std::uint8_t> destination,
                                         std::uint64_t nOffset) {
    if (IsHeld(nOffset, destination.size())) {
        const auto bytes = m_pCache->Bytes().subspan(nOffset, destination.size());
        std::copy(bytes.begin(), bytes.end(), destination.begin());
        return true;
    }
    const BufferPtr pBytes = ReadBytes(nOffset, static_cast<std::uint32_t>(destination.size()));
    if (pBytes) {
        const auto bytes = pBytes->Bytes();
        if (bytes.size() < destination.size()) {
            throw Platform::OutOfBoundsException("the file gave fewer bytes than asked for");
        }
        std::copy_n(bytes.begin(), destination.size(), destination.begin());
    }
    return pBytes != nullptr;
}

VLKS_FileHandlerReadWrite::BufferPtr VLKS_FileHandlerReadWrite::ReadBytes(std::uint64_t nOffset,
                                                                          std::uint32_t nSize) {
    if (!m_pFile || !IsWithinFile(nOffset, nSize)) {
        return nullptr;
    }
    if (IsHeld(nOffset, nSize)) {
        DataWriter writer;
        writer.WriteBytes(m_pCache->Bytes().subspan(nOffset, nSize));
        return writer.DetachBuffer();
    }
    const std::shared_ptr<PendingRead> pRead = ReadFile(nOffset, nSize);
    if (pRead && pRead->pChanged) {
        std::rethrow_exception(pRead->pChanged);
    }
    return pRead ? pRead->pBytes : nullptr;
}

// Written so that no sum of the two can run over.
bool VLKS_FileHandlerReadWrite::IsWithinFile(std::uint64_t nOffset, std::uint64_t nSize) const {
    const auto nFileSize = static_cast<std::uint64_t>(m_nFileSize);
    return nOffset <= nFileSize && nSize <= nFileSize - nOffset;
}

bool VLKS_FileHandlerReadWrite::IsHeld(std::uint64_t nOffset, std::uint64_t nSize) const {
    const std::uint64_t nHeld = m_pCache ? m_pCache->Length() : 0;
    return m_pCache && nOffset <= nHeld && nSize <= nHeld - nOffset;
}

// Empty when the wait was ended before the read had.
std::shared_ptr<VLKS_FileHandlerReadWrite::PendingRead> VLKS_FileHandlerReadWrite::ReadFile(
    std::uint64_t nOffset, std::uint32_t nSize) {
    auto pRead = std::make_shared<PendingRead>();
    pRead->nOffset = nOffset;
    pRead->nSize = nSize;
    if (!BeginWait(pRead)) {
        return nullptr;
    }
    PendingRead::Start(*m_pFile, std::make_shared<PendingRead::Ender>(pRead));
    concurrency::stop_signal::wait(pRead->done);
    EndWait(pRead);
    return pRead->bEnded.load(std::memory_order_acquire) ? pRead : nullptr;
}

bool VLKS_FileHandlerReadWrite::BeginWait(const std::shared_ptr<PendingRead>& pRead) {
    const critical_section::scoped_lock lock(m_waitsLock);
    if (!m_bWaitsEnded) {
        m_waits.push_back(pRead);
    }
    return !m_bWaitsEnded;
}

void VLKS_FileHandlerReadWrite::EndWait(const std::shared_ptr<PendingRead>& pRead) {
    const critical_section::scoped_lock lock(m_waitsLock);
    std::erase(m_waits, pRead);
}

void VLKS_FileHandlerReadWrite::EndWaits() {
    const critical_section::scoped_lock lock(m_waitsLock);
    m_bWaitsEnded = true;
    for (const auto& pRead : m_waits) {
        pRead->done.set();
    }
}

}
