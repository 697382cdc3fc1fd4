#include "app/viewer/CopyNotice.h"

#include <utility>

#include "app/viewer/NoticeBar.h"

namespace velko::viewer {

namespace {

constexpr int kPatienceMs = 500;

}

CopyNotice::CopyNotice(vkit::ViewSelection& selection, std::function<NoticeBar&()> fnBar,
                       QObject* pParent)
    : QObject(pParent), m_selection(selection), m_fnBar(std::move(fnBar)) {
    connect(&m_selection, &vkit::ViewSelection::CopyingChanged, this, &CopyNotice::Follow);
    m_patience.setSingleShot(true);
    m_patience.setInterval(kPatienceMs);
    m_patience.callOnTimeout(this, [this] {
        m_bTold = true;
        m_fnBar().TellWhile(QStringLiteral("The text is being copied. Esc stops it."),
                            [this] { return m_selection.IsCopying(); });
    });
}

void CopyNotice::Follow() {
    if (m_selection.IsCopying()) {
        m_patience.start();
        return;
    }
    m_patience.stop();
    if (std::exchange(m_bTold, false)) {
        m_fnBar().CheckStanding();
    }
}

}
