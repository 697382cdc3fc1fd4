// What a click and the keys do in a list or tree of the side panel: a click or Return
// takes an entry, and letters that are typed look for one instead of being the window's
// commands.
//
//   new SideKeys(*m_pTree, [this](const QModelIndex& index) { Take(index); });
//
// Lifetime: a child of the list. Threads: UI thread only.
#pragma once

#include <QAbstractItemView>
#include <QObject>
#include <functional>

namespace velko::viewer {

class SideKeys : public QObject {
public:
    enum class Takes { ByClick, ByReturn }; // a click takes as Return does, or chooses only

    SideKeys(QAbstractItemView& list, std::function<void(const QModelIndex& index)> fnTake,
             Takes eTakes = Takes::ByClick);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    QAbstractItemView& m_list;
    const std::function<void(const QModelIndex&)> m_fnTake;
};

}
