// What the reader is told and asked when the shown file changes on disk, and the setting
// whether a changed file is shown by itself.
//
// Lifetime: a child of the window. Threads: UI thread only.
#pragma once

#include <QObject>
#include <functional>

#include "widget/VelkoPdfView.h"
#include "widget/reload/DocReloader.h"

namespace velko::viewer {

class NoticeBar;

class ReloadNotices : public QObject {
public:
    // The view's file is followed from now on. `fnNotice` makes the notice when it is
    // first needed.
    ReloadNotices(vkit::VelkoPdfView& view, std::function<NoticeBar&()> fnNotice, QWidget* pWindow);

    // In force in all windows, and kept.
    static void SetAutomatic(bool bAutomatic);

private:
    void OnChanged();
    void TellWhile(vkit::DocReloader::Why eWhy, const QString& strText, const QString& strYes = {});

    vkit::VelkoPdfView& m_view;
    vkit::DocReloader& m_reloader;
    const std::function<NoticeBar&()> m_fnNotice;
    bool m_bTold = false; // something
};

}
