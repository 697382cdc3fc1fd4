#include "app/viewer/Hint.h"

#include "app/viewer/Announce.h"

namespace velko::viewer {

namespace {

constexpr int kShownMs = 5'000;
constexpr int kMargin = 10;
constexpr int kFromTop = 72; // below the bar, should that come too

}

Hint::Hint(QWidget* pParent) : QLabel(pParent) {
    MakeAlert(*this);
    setMargin(kMargin);
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setAlignment(Qt::AlignCenter);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setFrameStyle(QFrame::StyledPanel);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_timer.setSingleShot(true);
    m_timer.setInterval(kShownMs);
    connect(&m_timer, &QTimer::timeout, this, &QWidget::hide);
    hide();
}

void Hint::Say(const QString& strText) {
    setText(strText);
    Place();
    Announce(*this, strText);
    show();
    raise();
    m_timer.start();
}

void Hint::Place() {
    const QSize room = parentWidget()->size();
    const int nWidth = fontMetrics().horizontalAdvance(text()) + 4 * kMargin;
    const QSize size(qMin(nWidth, room.width() - 2 * kMargin), 0);
    setGeometry((room.width() - size.width()) / 2, kFromTop, size.width(),
                heightForWidth(size.width()));
}

}
