#include "app/viewer/RecentRow.h"

#include <QKeyEvent>
#include <QPainter>

#include "app/viewer/FocusRing.h"
#include "app/viewer/GlyphButton.h"
#include "app/viewer/RecentFiles.h"

namespace velko::viewer {

namespace {

constexpr int kWidth = 460;
constexpr int kLeastWidth = 160;
constexpr int kMargin = 10;
constexpr int kButton = 30;
constexpr int kHoverAlpha = 22;
constexpr int kGoneAlpha = 150; // faint, yet with a contrast above 4 to 1
constexpr int kCorner = 5;
constexpr int kLongestFolder = 200; // characters; it is cut to the width besides

}

RecentRow::RecentRow(const vkit::FilePath& path, QWidget* pParent)
    : QAbstractButton(pParent), m_path(path) {
    auto* const pRemove = new GlyphButton(Glyph::Close, nullptr, this);
    pRemove->setAccessibleName("Take out of the list");
    pRemove->setToolTip("Take out of the list (Del)");
    m_pRemove = pRemove;
    setText(path.Name());
    setToolTip(path.Text());
    setAccessibleName(path.Name());
    setAccessibleDescription(path.Folder());
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    connect(pRemove, &QToolButton::clicked, this, &RecentRow::Removed);
}

void RecentRow::MarkGone() {
    m_bGone = true;
    setAccessibleName(m_path.Name() + ", not found");
    setToolTip(m_path.Text() + "\nThe file is not there any more.");
    update();
}

QSize RecentRow::sizeHint() const {
    return {kWidth, 2 * fontMetrics().height() + kMargin};
}

QSize RecentRow::minimumSizeHint() const {
    return {kLeastWidth, sizeHint().height()};
}

void RecentRow::resizeEvent(QResizeEvent* /*pEvent*/) {
    m_pRemove->setGeometry(width() - kButton, (height() - kButton) / 2, kButton, kButton);
}

void RecentRow::keyPressEvent(QKeyEvent* pEvent) {
    if (PressByReturn(*this, *pEvent)) {
        return;
    }
    switch (pEvent->key()) {
        case Qt::Key_Delete:
            emit Removed();
            break;
        case Qt::Key_Up:
        case Qt::Key_Down:
            emit Stepped(pEvent->key() == Qt::Key_Up ? -1 : 1);
            break;
        default:
            QAbstractButton::keyPressEvent(pEvent);
    }
}

void RecentRow::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    QColor color = palette().color(QPalette::WindowText);
    color.setAlpha(m_bGone ? kGoneAlpha : 255);
    if (underMouse() || isDown()) {
        QColor back = palette().color(QPalette::WindowText);
        back.setAlpha(kHoverAlpha);
        painter.setPen(Qt::NoPen);
        painter.setBrush(back);
        painter.drawRoundedRect(rect(), kCorner, kCorner);
    }
    DrawFocusRing(painter, *this);
    const QFontMetrics metrics = fontMetrics();
    QRect rcLine(kMargin, kMargin / 2, width() - 2 * kMargin - kButton, metrics.height());
    painter.setPen(m_bGone ? color : palette().color(QPalette::Link));
    const QString strName = m_bGone ? m_path.Name() + " – not found" : m_path.Name();
    painter.drawText(rcLine, Qt::AlignLeft,
                     metrics.elidedText(strName, Qt::ElideMiddle, rcLine.width()));
    rcLine.translate(0, metrics.height());
    painter.setPen(color);
    painter.drawText(
        rcLine, Qt::AlignLeft,
        metrics.elidedText(ShortFolder(m_path, kLongestFolder), Qt::ElideMiddle, rcLine.width()));
}

}
