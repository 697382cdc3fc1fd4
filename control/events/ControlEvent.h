// An event of the control, as a host sees it: handlers are added and taken away;
// the control alone raises.
//
// Handlers run one after another in the order in which they came, those that
// were there when the raise began; each event's record says on which thread.
// What a handler throws reaches whoever raised, and the handlers after it do not
// run. A handler may do anything to the control, also let go of it.
// Threads: `add` and `remove` from any thread.
// Errors: `add` raises `ObjectDisposedException` once the control is disposed;
// the handlers that were there are let go of then, after the event that tells of
// the last document's end. `remove` never fails.
#pragma once

#include <atomic>
#include <memory>
#include <utility>

#include "platform/foundation/Event.h"
#include "platform/foundation/Exception.h"

namespace velko::vkit {

class PDFViewCtrl;
class PDFViewerManager;

template <class Record>
class ControlEvent {
    using Source = Windows::Foundation::Event<const std::shared_ptr<PDFViewCtrl>&,
                                              const std::shared_ptr<Record>&>;

public:
    using Handler = typename Source::Handler;
    using Token = Windows::Foundation::EventRegistrationToken;

    Token add(Handler fnHandler) {
        if (m_bClosed) {
            throw Platform::ObjectDisposedException("an event of a control that is disposed");
        }
        return m_source.add(std::move(fnHandler));
    }
    void remove(Token token) { m_source.remove(token); }

private:
    friend class PDFViewCtrl;
    friend class PDFViewerManager;

    void raise(const std::shared_ptr<PDFViewCtrl>& pSender,
               const std::shared_ptr<Record>& pRecord) const {
        m_source.raise(pSender, pRecord);
    }
    bool empty() const { return m_source.empty(); }

    void Close() { m_bClosed = true; }
    void Clear() {
        const auto pHandlers = m_source.Snapshot(); // outlives what is removed
        for (const auto& [nToken, fnHandler] : *pHandlers) {
            m_source.remove({nToken});
        }
    }

    Source m_source;
    std::atomic<bool> m_bClosed{false};
};

}
