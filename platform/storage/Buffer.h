// A run of bytes that a platform operation made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace Windows::Storage::Streams {

// Immutable once handed over. Threads: any.
class IBuffer {
public:
    virtual ~IBuffer() = default;
    virtual std::span<const std::uint8_t> Bytes() const = 0;
    std::size_t Length() const { return Bytes().size(); }
};

class VectorBuffer final : public IBuffer {
public:
    explicit VectorBuffer(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}
    std::span<const std::uint8_t> Bytes() const override { return m_bytes; }

private:
    std::vector<std::uint8_t> m_bytes;
};

}
