#include "platform/storage/StorageActivity.h"

#include "platform/storage/IoThreads_p.h"

namespace Windows::Storage {

bool AreFileOperationsPending() {
    return !IoThreads().is_idle();
}

}
