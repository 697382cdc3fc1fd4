#include "platform/storage/IoThreads_p.h"

namespace Windows::Storage {

concurrency::ThreadPool& IoThreads() {
    static concurrency::ThreadPool s_threads(2);
    return s_threads;
}

}
