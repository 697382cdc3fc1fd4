// Says that text is being copied where that takes long, and how to stop it.
//
// Lifetime: goes before the selection. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

#include "widget/text/ViewSelection.h"

namespace velko::viewer {

class NoticeBar;

class CopyNotice : public QObject {
public:
    CopyNotice(vkit::ViewSelection& selection, std::function<NoticeBar&()> fnBar, QObject* pParent);

private:
    void Follow();

    vkit::ViewSelection& m_selection;
    const std::function<NoticeBar&()> m_fnBar; // made with the first notice
    QTimer m_patience;
    bool m_bTold = false;
};

}
