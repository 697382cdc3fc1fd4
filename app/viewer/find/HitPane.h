// The list of what a search has found, in the side panel: each hit with its line and its
// page; a click goes there.
//
// Lifetime: a part of the panel, goes before the view. Threads: UI thread only.
#pragma once

#include <QWidget>
#include <functional>

#include "widget/search/HitModel.h"

class QLabel;
class QListView;

namespace velko::viewer {

class HitPane : public QWidget {
    Q_OBJECT

public:
    HitPane(vkit::ViewSearch& search, vkit::PageTexts& texts,
            std::function<QString(int nPage)> fnPageName, QWidget* pParent);

protected:
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    class Rows;

    void PlaceParts();
    void Follow();
    void FollowCurrent();

    vkit::ViewSearch& m_search;
    vkit::HitModel m_model;
    QListView* m_pList;
    QLabel* m_pNothing; // in place of the list
    QLabel* m_pRest;    // below it, when it does not hold all
};

}
