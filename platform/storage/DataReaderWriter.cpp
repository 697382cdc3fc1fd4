#include "platform/storage/DataReaderWriter.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "platform/foundation/Exception.h"

namespace Windows::Storage::Streams {

using Foundation::AsyncOperation;

// Loaded buffers in order; the first is consumed up to `nConsumed`.
struct DataReader::State {
    std::shared_ptr<IInputStream> pStream;
    std::deque<std::shared_ptr<IBuffer>> buffers;
    std::size_t nConsumed = 0;
    std::size_t nLoaded = 0; // not consumed yet

    void Add(std::shared_ptr<IBuffer> pBuffer) {
        if (pBuffer->Length() > 0) {
            nLoaded += pBuffer->Length();
            buffers.push_back(std::move(pBuffer));
        }
    }

    void Take(std::span<std::uint8_t> destination) {
        nLoaded -= destination.size();
        while (!destination.empty()) {
            const auto rest = buffers.front()->Bytes().subspan(nConsumed);
            const std::size_t nNow = std::min(rest.size(), destination.size());
            std::copy_n(rest.begin(), nNow, destination.begin());
            destination = destination.subspan(nNow);
            nConsumed += nNow;
            if (nNow == rest.size()) {
                buffers.pop_front();
                nConsumed = 0;
            }
        }
    }

    void CheckLoaded(std::size_t nCount) const {
        if (nCount > nLoaded) {
            throw Platform::OutOfBoundsException("fewer bytes are loaded than asked for");
        }
    }
};

namespace {

concurrency::task<std::uint32_t> Load(AsyncOperation<std::shared_ptr<IBuffer>> read,
                                      std::function<void(std::shared_ptr<IBuffer>)> fnAdd) {
    co_await read.AsTask().settled_anywhere();
    std::shared_ptr<IBuffer> pBuffer = read.GetResults();
    const auto nCount = static_cast<std::uint32_t>(pBuffer->Length());
    fnAdd(std::move(pBuffer));
    co_return nCount;
}

}

DataReader::DataReader(std::shared_ptr<State> pState) : m_pState(std::move(pState)) {}

std::shared_ptr<DataReader> DataReader::FromBuffer(std::shared_ptr<IBuffer> pBuffer) {
    if (!pBuffer) {
        throw Platform::NullReferenceException("no buffer");
    }
    auto pState = std::make_shared<State>();
    pState->Add(std::move(pBuffer));
    return std::shared_ptr<DataReader>(new DataReader(std::move(pState)));
}

std::shared_ptr<DataReader> DataReader::CreateDataReader(std::shared_ptr<IInputStream> pStream) {
    if (!pStream) {
        throw Platform::NullReferenceException("no stream");
    }
    auto pState = std::make_shared<State>();
    pState->pStream = std::move(pStream);
    return std::shared_ptr<DataReader>(new DataReader(std::move(pState)));
}

AsyncOperation<std::uint32_t> DataReader::LoadAsync(std::uint32_t nCount) {
    if (!m_pState->pStream) {
        throw Platform::ObjectDisposedException("the reader has no stream");
    }
    auto fnAdd = [pState = m_pState](std::shared_ptr<IBuffer> pBuffer) {
        pState->Add(std::move(pBuffer));
    };
    return Load(m_pState->pStream->ReadAsync(nCount), std::move(fnAdd));
}

std::uint32_t DataReader::UnconsumedBufferLength() const {
    return static_cast<std::uint32_t>(m_pState->nLoaded);
}

void DataReader::ReadBytes(std::span<std::uint8_t> destination) {
    m_pState->CheckLoaded(destination.size());
    m_pState->Take(destination);
}

std::shared_ptr<IBuffer> DataReader::ReadBuffer(std::uint32_t nCount) {
    State& state = *m_pState;
    state.CheckLoaded(nCount);
    if (state.nConsumed == 0 && !state.buffers.empty() &&
        state.buffers.front()->Length() == nCount) {
        std::shared_ptr<IBuffer> pWhole = std::move(state.buffers.front()); // spares the copy
        state.buffers.pop_front();
        state.nLoaded -= nCount;
        return pWhole;
    }
    std::vector<std::uint8_t> bytes(nCount);
    state.Take(bytes);
    return std::make_shared<VectorBuffer>(std::move(bytes));
}

std::shared_ptr<IInputStream> DataReader::DetachStream() {
    return std::exchange(m_pState->pStream, nullptr);
}

void DataWriter::WriteBytes(std::span<const std::uint8_t> bytes) {
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
}

std::shared_ptr<IBuffer> DataWriter::DetachBuffer() {
    return std::make_shared<VectorBuffer>(std::exchange(m_bytes, {}));
}

}
