// Keeps the reader's place while a document is read: when it has rested for two
// seconds, every five while it goes on and on, and when the document is left.
//
// Keeping waits for no disk; see `ApplicationData` for when it is stored, and for
// the failures of that. Threads: UI thread only. Errors: a place that cannot be
// taken is told by `OnFailure`, once until one can be taken again.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <exception>
#include <functional>
#include <optional>

#include "component/KeptView.h"

namespace velko::vkit {

class PlaceKeeper : public QObject {
public:
    // Gives the place as it is now: empty when nothing is shown, and when the
    // place is just changing, unless it is `bLeft`. It is asked again soon then.
    using Take = std::function<std::optional<KeptView>(bool bLeft)>;

    explicit PlaceKeeper(Take fnTake, QObject* pParent = nullptr);

    void Begin();   // a document is shown
    void Changed(); // what is shown, perhaps
    void End();     // it is about to be left

    std::function<void(const std::exception_ptr&)> OnFailure;

private:
    bool Keep(bool bLeft); // whether there was a place
    void Tell(const std::exception_ptr& pError);

    const Take m_fnTake;
    QTimer m_timer;
    QElapsedTimer m_changing;       // since the first change that is not kept
    bool m_bRunning = false;        // between `Begin` and `End`
    std::optional<KeptView> m_last; // kept last
    bool m_bFailing = false;
};

}
