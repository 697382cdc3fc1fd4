// How an engine reads the bytes of a document. The component implements it.
//
// An engine may call it from any of its threads, several at a time; a call may
// block for as long as a file read takes.
#pragma once

#include <cstdint>
#include <span>

namespace velko::common::vxbase {

class IFileReaderCallback {
public:
    virtual ~IFileReaderCallback() = default;

    // Size of the document in bytes. An engine clamps every read to it.
    virtual std::uint32_t GetSize() = 0;

    // Fills `destination` with the `nSize` bytes at `nOffset`; `nSize` is the
    // destination's length. False when nothing could be read. May raise a
    // platform exception; an engine lets none of them through its own frames.
    virtual bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                           std::uint32_t nSize) = 0;

    // The engine is done with the reader; it makes no call afterwards.
    virtual bool Release() = 0;
};

}
