// Stores the reader's place while a document is read: soon after it is shown,
// every half minute when something has changed, and when it is left.
//
// The store waits for the disk, so it is written to on the task pool; what is
// not stored yet when this object goes is stored before the destructor returns.
// Threads: UI thread only. Errors: a place that cannot be stored is told by
// `OnFailure`, once until one can be stored again.
#pragma once

#include <QObject>
#include <QTimer>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include "component/KeptView.h"

namespace velko::vkit {

class PlaceKeeper : public QObject {
public:
    // Gives the place as it is now: empty when nothing is shown, and when the
    // place is just changing, unless it is `bLeft`. It is asked again soon then.
    using Take = std::function<std::optional<KeptView>(bool bLeft)>;

    explicit PlaceKeeper(Take fnTake, QObject* pParent = nullptr);
    ~PlaceKeeper() override;

    void Begin(); // a document is shown
    void End();   // it is about to be left

    // Stores the place that was taken last before it returns.
    void Flush();

    std::function<void(const std::exception_ptr&)> OnFailure;

private:
    struct Writing; // what the pool's threads see

    bool Save(bool bLeft); // whether there was a place
    void Store();
    void Tell(const std::exception_ptr& pError);

    const Take m_fnTake;
    const std::shared_ptr<Writing> m_pWriting;
    QTimer m_timer;
    std::optional<KeptView> m_last; // taken last, stored or about to be
    bool m_bFailing = false;
};

}
