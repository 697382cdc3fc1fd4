#include "app/viewer/SelectionBubble.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QToolButton>
#include <algorithm>

#include "platform/qt/QtElementWindow.h"
#include "widget/text/ViewSelection.h"

namespace velko::viewer {

namespace {

constexpr int kHeight = 44;
constexpr int kApart = 8;
constexpr int kHandle = 30; // that hangs below the text

}

SelectionBubble::SelectionBubble(vkit::VelkoPdfView& view, const Commands& commands)
    : QFrame(&view), m_view(view) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setObjectName("selection");
    setAccessibleName(QStringLiteral("For what is selected"));
    auto* const pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->setSpacing(0);
    for (const Command eCommand : {Command::Copy, Command::Highlight, Command::SelectAll}) {
        auto* const pButton = new QToolButton(this);
        pButton->setDefaultAction(commands[eCommand]);
        pButton->setAutoRaise(true);
        pButton->setMinimumHeight(kHeight);
        pButton->setFocusPolicy(Qt::NoFocus);
        pLayout->addWidget(pButton);
        connect(pButton, &QToolButton::clicked, this, &QWidget::hide);
    }
    m_view.Window().installEventFilter(this);
    connect(&m_view.Selection(), &vkit::ViewSelection::Changed, this, &QWidget::hide);
    hide();
}

// Above it, else below it with its handles, else in the middle of it.
void SelectionBubble::ShowBeside() {
    const QRect rc = m_view.Selection().InSight().toAlignedRect().translated(
        m_view.Window().mapTo(&m_view, QPoint(0, 0)));
    if (rc.isEmpty()) {
        return;
    }
    const QSize size = sizeHint();
    const int nAbove = rc.top() - kApart - size.height();
    const int nBelow = rc.bottom() + kHandle + kApart;
    const int nY = nAbove >= 0                                 ? nAbove
                   : nBelow + size.height() <= m_view.height() ? nBelow
                                                               : rc.center().y();
    const int nX = std::clamp(rc.center().x() - size.width() / 2, 0,
                              std::max(0, m_view.width() - size.width()));
    setGeometry(QRect(QPoint(nX, nY), size));
    show();
    raise();
}

bool SelectionBubble::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    switch (pEvent->type()) {
        case QEvent::TouchBegin:
        case QEvent::MouseButtonPress:
        case QEvent::TabletPress:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::Resize:
            hide();
            break;
        default:
            break;
    }
    return false;
}

}
