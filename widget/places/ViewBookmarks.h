// The reader's bookmarks in the document that a view shows.
//
// Known once they are asked for, read on the task pool; views of one document in one
// process share what each changes. In another version of the document than they were put
// into each is where its words are by then, soon after.
// Lifetime: goes with the view. Threads: UI thread only. Errors: none is raised.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "component/Bookmarks.h"
#include "platform/concurrency/Task.h"
#include "widget/VelkoPdfView.h"

namespace velko::vkit {

struct FoundPlace;

class ViewBookmarks : public QObject {
    Q_OBJECT

public:
    explicit ViewBookmarks(VelkoPdfView& view);
    ~ViewBookmarks() override;

    // In the order of the document; empty also while they are read, which begins here at
    // the latest.
    const std::vector<Bookmark>& List();

    // Puts one at the place in sight, named by the section or the first words there, or
    // takes the one there away.
    void Toggle();
    void Rename(int nBookmark, const QString& strName); // an empty name changes nothing
    void Remove(int nBookmark);
    void Goto(int nBookmark); // a jump

signals:
    void Changed();                    // the list
    void Told(const QString& strText); // what `Toggle` has done

private:
    static concurrency::task<void> Read(QPointer<ViewBookmarks> pSelf, int nReading);
    static concurrency::task<void> LookForAll(QPointer<ViewBookmarks> pSelf);
    void TakeFound(const std::vector<Bookmark>& before,
                   const std::vector<std::optional<FoundPlace>>& found);
    static concurrency::task<void> Name(QPointer<ViewBookmarks> pSelf, Bookmark bookmark);
    void WhenRead(std::function<void()> fnDo);
    void Forget();
    void ToggleHere();
    int FindNear(const Bookmark& here) const; // -1: none
    void Keep();
    void TakeFrom(const KeptBookmarks& kept);

    VelkoPdfView& m_view;
    KeptBookmarks m_kept;
    std::vector<std::function<void()>> m_waiting; // for the reading
    bool m_bAsked = false;
    bool m_bRead = false;
    int m_nReading = 0;
    std::shared_ptr<std::atomic<bool>> m_pAbort; // of the looking for them
};

}
