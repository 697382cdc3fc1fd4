// Readers and writers of bytes over buffers and streams.
//
// Threads: one at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/foundation/AsyncOperation.h"
#include "platform/storage/Buffer.h"
#include "platform/storage/RandomAccessStream.h"

namespace Windows::Storage::Streams {

class DataReader {
public:
    // Over all bytes of a buffer; nothing needs loading.
    static std::shared_ptr<DataReader> FromBuffer(std::shared_ptr<IBuffer> pBuffer);
    // Over a stream, from its position on; `LoadAsync` fetches.
    static std::shared_ptr<DataReader> CreateDataReader(std::shared_ptr<IInputStream> pStream);

    // Fetches up to `nCount` bytes; the result is how many arrived.
    Windows::Foundation::AsyncOperation<std::uint32_t> LoadAsync(std::uint32_t nCount);

    std::uint32_t UnconsumedBufferLength() const;

    // Fill the destination, or take `nCount` bytes as a buffer. Raise
    // `OutOfBoundsException` when fewer bytes are there.
    void ReadBytes(std::span<std::uint8_t> destination);
    std::shared_ptr<IBuffer> ReadBuffer(std::uint32_t nCount);

    // Gives the stream back, so that it outlives the reader.
    std::shared_ptr<IInputStream> DetachStream();

private:
    struct State;
    explicit DataReader(std::shared_ptr<State> pState);
    std::shared_ptr<State> m_pState; // shared with a load that is under way
};

class DataWriter {
public:
    void WriteBytes(std::span<const std::uint8_t> bytes);
    // The bytes written so far; the writer is empty afterwards.
    std::shared_ptr<IBuffer> DetachBuffer();

private:
    std::vector<std::uint8_t> m_bytes;
};

}
