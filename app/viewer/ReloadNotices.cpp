#include "app/viewer/ReloadNotices.h"

#include <QApplication>
#include <QPointer>
#include <utility>

#include "app/viewer/NoticeBar.h"
#include "app/viewer/ViewerSettings.h"

namespace velko::viewer {

using vkit::DocReloader;
using Why = DocReloader::Why;

namespace {

DocReloader& ReloaderOf(vkit::VelkoPdfView& view) {
    view.FollowFile(true);
    return *view.Reloader();
}

}

ReloadNotices::ReloadNotices(vkit::VelkoPdfView& view, std::function<NoticeBar&()> fnNotice,
                             QWidget* pWindow)
    : QObject(pWindow),
      m_view(view),
      m_reloader(ReloaderOf(view)),
      m_fnNotice(std::move(fnNotice)) {
    m_reloader.SetAutomatic(ViewerSettings::ReloadsChanged());
    connect(&m_reloader, &DocReloader::Changed, this, &ReloadNotices::OnChanged);
}

void ReloadNotices::SetAutomatic(bool bAutomatic) {
    ViewerSettings::ReloadsChanged(bAutomatic);
    for (QWidget* const pWindow : QApplication::topLevelWidgets()) {
        for (auto* const pNotices : pWindow->findChildren<ReloadNotices*>()) {
            pNotices->m_reloader.SetAutomatic(bAutomatic);
        }
    }
}

void ReloadNotices::OnChanged() {
    const QString strName = m_view.File().Name();
    switch (m_reloader.WhyNot()) {
        case Why::None:
            if (std::exchange(m_bTold, false)) {
                m_fnNotice().CheckStanding();
            }
            break;
        case Why::Gone:
            TellWhile(Why::Gone, QStringLiteral("The file “%1” cannot be read any more; what was "
                                                "shown last stays.")
                                     .arg(strName));
            break;
        case Why::Broken:
            TellWhile(Why::Broken, QStringLiteral("The file “%1” has changed and cannot be shown "
                                                  "as it is now; what was shown last stays.")
                                       .arg(strName));
            break;
        case Why::Edited:
            TellWhile(Why::Edited,
                      QStringLiteral("“%1” was changed by another program or window. What you have "
                                     "changed here is not saved: reloading loses it.")
                          .arg(strName),
                      QStringLiteral("Reload anyway"));
            break;
        case Why::Locked:
            TellWhile(Why::Locked,
                      QStringLiteral("“%1” has changed. It asks for its password.").arg(strName),
                      QStringLiteral("Reload"));
            break;
        case Why::Off:
            TellWhile(Why::Off, QStringLiteral("“%1” has changed.").arg(strName),
                      QStringLiteral("Reload"));
            break;
    }
}

void ReloadNotices::TellWhile(Why eWhy, const QString& strText, const QString& strYes) {
    m_bTold = true;
    const QPointer<ReloadNotices> pThis(this);
    m_fnNotice().TellWhile(strText,
                           [pThis, eWhy] { return pThis && pThis->m_reloader.WhyNot() == eWhy; },
                           {strYes, [pThis] {
                                if (pThis) {
                                    pThis->m_reloader.ReloadNow();
                                }
                            }});
}

}
