#include "app/viewer/RecentRow.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

#include "app/viewer/FocusRing.h"
#include "app/viewer/GlyphButton.h"
#include "app/viewer/RecentFiles.h"
#include "app/viewer/RecentPictures.h"

namespace velko::viewer {

namespace {

constexpr int kWidth = 460;
constexpr int kLeastWidth = 160;
constexpr int kMargin = 10;
constexpr int kButton = 30;
constexpr int kHoverAlpha = 22;
constexpr int kSheetAlpha = 16;
constexpr int kFrameAlpha = 90;
constexpr int kFrameRoom = 3;   // above and below a picture
constexpr int kGoneAlpha = 150; // faint, yet with a contrast above 4 to 1
constexpr int kCorner = 5;
constexpr int kLongestFolder = 200; // characters; it is cut to the width besides
constexpr QSize kLowRoom{24, 32};
constexpr QSize kSheet{210, 297}; // its proportions

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

void RecentRow::SetPicture(const QImage& image) {
    m_picture = image;
    update();
}

void RecentRow::SetLow(bool bLow) {
    m_bLow = bLow;
    updateGeometry();
    update();
}

QSize RecentRow::PictureRoom() const {
    return m_bLow ? kLowRoom : RecentPictures::kRoom;
}

QSize RecentRow::sizeHint() const {
    const int nText = 2 * fontMetrics().height() + kMargin;
    return {kWidth, std::max(nText, PictureRoom().height() + 2 * kFrameRoom)};
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
    if (underMouse() || isDown()) {
        QColor back = palette().color(QPalette::WindowText);
        back.setAlpha(kHoverAlpha);
        painter.setPen(Qt::NoPen);
        painter.setBrush(back);
        painter.drawRoundedRect(rect(), kCorner, kCorner);
    }
    DrawFocusRing(painter, *this);
    PaintPicture(painter);
    PaintText(painter);
}

// In the middle of its room, on whole units, so that it is sharp.
QRectF RecentRow::PicturePlace() const {
    const QSize room = PictureRoom();
    const QSizeF paper = m_picture.isNull() ? QSizeF(kSheet) : QSizeF(m_picture.size());
    const QSizeF size = paper.scaled(room, Qt::KeepAspectRatio);
    return {QPointF(kMargin + static_cast<int>((room.width() - size.width()) / 2.0),
                    static_cast<int>((height() - size.height()) / 2.0)),
            size};
}

void RecentRow::PaintPicture(QPainter& painter) const {
    const auto fnShade = [this](int nAlpha) {
        QColor shade = palette().color(QPalette::WindowText);
        shade.setAlpha(nAlpha);
        return shade;
    };
    const QRectF rc = PicturePlace();
    if (m_picture.isNull()) {
        painter.fillRect(rc, fnShade(kSheetAlpha));
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(rc, m_picture);
    }
    painter.setPen(QPen(fnShade(kFrameAlpha), 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rc.adjusted(-0.5, -0.5, 0.5, 0.5));
}

void RecentRow::PaintText(QPainter& painter) const {
    QColor color = palette().color(QPalette::WindowText);
    color.setAlpha(m_bGone ? kGoneAlpha : 255);
    const QFontMetrics metrics = fontMetrics();
    const int nLeft = kMargin + PictureRoom().width() + kMargin;
    QRect rcLine(nLeft, height() / 2 - metrics.height(), width() - nLeft - kMargin - kButton,
                 metrics.height());
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
