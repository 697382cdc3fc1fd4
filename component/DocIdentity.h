// By what a document is known again when its file has another name, or other bytes.
//
// Threads: values.
#pragma once

#include <cstdint>
#include <string>

#include "platform/foundation/PropertyValue.h"
#include "platform/storage/FileVersion.h"

namespace velko::vkit {

struct DocIdentity {
    std::string strPath;
    Windows::Storage::FileVersion version;
    std::string strIdentifier;      // the document's own; many share it with their copies
    std::uint64_t nFingerprint = 0; // of a part of the bytes; 0: not known
};

// The same file under another name: it was renamed, or has two names.
bool IsSameFile(const DocIdentity& one, const DocIdentity& other);
// Files that hold the same, as a file does and its copy, or what it was moved to.
bool HaveSameBytes(const DocIdentity& one, const DocIdentity& other);

// To and from a set of settings, which may hold more. What is absent, or of another
// type, is not known.
void WriteIdentity(Windows::Foundation::Collections::PropertySet& values, const DocIdentity& of);
DocIdentity ReadIdentity(const Windows::Foundation::Collections::PropertySet& values);

}
