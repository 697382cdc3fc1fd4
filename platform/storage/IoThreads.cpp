#include "platform/storage/IoThreads_p.h"

namespace Windows::Storage {

concurrency::ThreadPool& IoThreads() {
    // A thread may hang in a system call for as long as the disk or the network
    // likes; the end of the process waits for none such.
    static auto* const s_pThreads = new concurrency::ThreadPool(2);
    static const struct Ender {
        ~Ender() { s_pThreads->abandon(); }
    } s_ender;
    return *s_pThreads;
}

}
