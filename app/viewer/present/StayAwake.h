// Keeps the screen from going dark and from being locked while it lives, where the
// desktop can be asked for it.
//
// Threads: UI thread only; it waits for nobody's answer. Errors: a desktop that does not
// know the request goes on as it does.
#pragma once

#include <QString>
#include <memory>

namespace velko::viewer {

class StayAwake {
public:
    explicit StayAwake(const QString& strWhy);
    ~StayAwake();
    StayAwake(const StayAwake&) = delete;
    StayAwake& operator=(const StayAwake&) = delete;

private:
    struct Request;
    std::shared_ptr<Request> m_pRequest; // with the answer, which may come later
};

}
