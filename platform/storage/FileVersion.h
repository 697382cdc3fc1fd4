// What tells one state of a file from every other: which file it is, and what a
// write to it changes.
//
// Not told apart: two states of one file and size whose times of change are the
// same, which needs a write within the disk's grain of time (some ms; two seconds
// on a memory stick), or a program that sets the time back. Threads: a value.
#pragma once

#include <cstdint>

namespace Windows::Storage {

struct FileVersion {
    std::uint64_t Device = 0;
    std::uint64_t File = 0;   // its number on the device; 0 where it does not last
    std::uint64_t Size = 0;   // bytes
    std::int64_t Changed = 0; // time of the last change of its bytes: ns since 1970-01-01 UTC

    bool operator==(const FileVersion&) const = default;
};

}
