#include "platform/concurrency/StopSignal.h"

namespace concurrency {

namespace {

thread_local stop_signal* t_pSignal = nullptr;

}

class stop_signal::registration {
public:
    registration(stop_signal& signal, event& done) : m_signal(signal), m_done(done) {
        const std::lock_guard<std::mutex> lock(m_signal.m_lock);
        m_signal.m_waits.push_back(&m_done);
        if (m_signal.m_bStopped) {
            m_done.set();
        }
    }
    ~registration() {
        const std::lock_guard<std::mutex> lock(m_signal.m_lock);
        std::erase(m_signal.m_waits, &m_done);
    }
    registration(const registration&) = delete;
    registration& operator=(const registration&) = delete;

private:
    stop_signal& m_signal;
    event& m_done;
};

void stop_signal::stop() {
    const std::lock_guard<std::mutex> lock(m_lock);
    m_bStopped = true;
    for (event* const pDone : m_waits) {
        pDone->set();
    }
}

void stop_signal::wait(event& done) {
    if (t_pSignal == nullptr) {
        done.wait();
        return;
    }
    const registration registered(*t_pSignal, done);
    done.wait();
}

void stop_signal::install(stop_signal* pSignal) {
    t_pSignal = pSignal;
}

}
