// The reader's bookmarks as a list: a click or Return goes to one, F2 renames it, Del
// takes it away, as does the menu at it.
//
// Lifetime: goes before the view, its facts and its bookmarks. Threads: UI thread only.
#pragma once

#include <QWidget>

#include "widget/facts/DocFacts.h"
#include "widget/places/BookmarkModel.h"

class QLabel;
class QListView;
class QStackedLayout;

namespace velko::viewer {

class BookmarkPane : public QWidget {
public:
    BookmarkPane(vkit::ViewBookmarks& bookmarks, vkit::DocFacts& facts, QWidget* pParent);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    class Rows; // draws them

    void MakeList();
    void ShowWhatThereIs();
    void OpenMenu(QPoint pt);
    void Rename();
    void Remove();

    vkit::ViewBookmarks& m_bookmarks;
    vkit::DocFacts& m_facts;
    vkit::BookmarkModel m_model;
    QStackedLayout* m_pLayers;
    QListView* m_pList;
    QLabel* m_pNone;
};

}
