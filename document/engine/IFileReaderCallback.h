// How an engine reads the bytes of a document. The component implements it.
//
// An engine may call it from any of its threads, several at a time; a call may
// block for as long as a file read takes. How long that is says nothing about
// the document, so it counts against no time limit of an engine.
#pragma once

#include <cstdint>
#include <span>

namespace velko::common::vxbase {

class IFileReaderCallback {
public:
    virtual ~IFileReaderCallback() = default;

    // Size of the document in bytes. An engine clamps every read to it.
    virtual std::uint32_t GetSize() = 0;

    // Fills `destination` with the bytes at `nOffset`. `nSize` is its length
    // once more; the memory needs no alignment. False when nothing could be read.
    // May raise a platform exception, of which `FileChangedException` is for an
    // engine to tell apart: what it read before belongs to another file. An
    // engine lets none of them through its own frames.
    virtual bool ReadBlock(std::span<std::uint8_t> destination, std::uint64_t nOffset,
                           std::uint32_t nSize) = 0;

    // The engine is done with the reader; it makes no call afterwards. The
    // result is true and has no meaning to an engine.
    virtual bool Release() = 0;
};

}
