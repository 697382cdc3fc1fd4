// The SQLite file that settings and the recently used list live in.
//
// Reading changes nothing: it makes no file, waits for no lock longer than it is
// told, and takes a file without our tables for an empty store. The one
// exception is what a killed writer left half done: SQLite takes that back before
// anything can be read.
//
// Failures: `LockedStoreException`, `LaterStoreException`, `CorruptStoreException`
// (of reading alone: writing sets such a file aside), and those of the disk.
// Threads: any; each call opens the file for itself and waits for the disk.
#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "platform/storage/SettingsImage_p.h"

namespace Windows::Storage {

// What the file holds; nothing when there is none.
SettingsContents ReadSettings(const std::string& strPath, std::chrono::milliseconds patience);

// Stores the changes in one transaction, or, in a file that has to be begun,
// `fnWhole()`. Makes what is missing of the folder. A file that cannot be read is
// set aside first (its name gets ".corrupt" and a number, a line goes to the debug
// output), and `fnOnSetAside` told why.
void WriteSettings(const std::string& strPath, const SettingsChanges& changes,
                   const std::function<SettingsContents()>& fnWhole,
                   const std::function<void(const std::string& strReason)>& fnOnSetAside,
                   std::chrono::milliseconds patience);

}
