// Hears a widget's events before the widget does.
//
// Lifetime: goes with the widget; `fnHandle` may take both away.
// Threads: UI thread only.
#pragma once

#include <QObject>
#include <functional>
#include <utility>

namespace Platform::Qt {

class QtEventFilter : public QObject {
public:
    // True: the widget is not to see the event.
    using Handler = std::function<bool(QEvent& event)>;

    QtEventFilter(QObject& watched, Handler fnHandle)
        : QObject(&watched), m_fnHandle(std::move(fnHandle)) {
        watched.installEventFilter(this);
    }
    bool eventFilter(QObject* /*pWatched*/, QEvent* pEvent) override {
        const Handler fnHandle = m_fnHandle;
        return fnHandle(*pEvent);
    }

private:
    const Handler m_fnHandle;
};

}
