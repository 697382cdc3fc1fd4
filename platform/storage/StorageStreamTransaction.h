// A file that is written aside and takes the place of another in one act.
//
//     const auto pTransaction = co_await pFile->OpenTransactedWriteAsync();
//     co_await pTransaction->Stream()->WriteAsync(pBytes);
//     co_await pTransaction->CommitAsync();
//
// Until then the file is untouched, and who opens it sees its old bytes. A
// transaction that is let go without a commit, or whose process dies, changes
// nothing and leaves nothing behind.
//
// Threads: any, one at a time; a commit needs all operations of the stream ended.
#pragma once

#include <memory>

#include "platform/foundation/AsyncOperation.h"
#include "platform/storage/RandomAccessStream.h"

namespace Windows::Storage {

class StorageStreamTransaction {
public:
    virtual ~StorageStreamTransaction() = default;

    // Readable and writable, empty at first; always the same one. After the
    // commit it reads what was written and refuses to write.
    virtual std::shared_ptr<Streams::IRandomAccessStream> Stream() = 0;

    // Synchronises what was written with the disk and puts it in the file's
    // place, with all that `StorageFile::CopyAndReplaceAsync` promises. Once: a
    // second one, also after one that failed, fails with
    // `ObjectDisposedException`.
    virtual Foundation::AsyncAction CommitAsync() = 0;
};

}
