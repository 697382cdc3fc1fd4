#include "app/viewer/Hint.h"

#include <QFontInfo>
#include <QPainter>

#include "app/viewer/Announce.h"

namespace velko::viewer {

namespace {

constexpr int kShownMs = 3'000;
constexpr int kFadingMs = 400;
constexpr int kTop = 6;
constexpr int kSide = 12; // left and right of the text
constexpr int kAbove = 4; // and below it
constexpr double kCorner = 8.0;
constexpr double kSmaller = 0.9; // than the window's letters
const QColor kGround(32, 32, 36, 225);
const QColor kText(240, 240, 240);

}

Hint::Hint(QWidget* pParent) : QWidget(pParent) {
    MakeAlert(*this);
    QFont smaller = font();
    smaller.setPointSizeF(QFontInfo(smaller).pointSizeF() * kSmaller);
    setFont(smaller);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_timer.setSingleShot(true);
    m_timer.setInterval(kShownMs);
    m_fading.setDuration(kFadingMs);
    m_fading.setStartValue(1.0);
    m_fading.setEndValue(0.0);
    connect(&m_timer, &QTimer::timeout, this, &Hint::FadeOut);
    connect(&m_fading, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&m_fading, &QVariantAnimation::finished, this, &QWidget::hide);
    hide();
}

void Hint::Say(const QStringList& sentences) {
    m_sentences = sentences;
    m_fading.stop();
    m_fading.setCurrentTime(0);
    Place();
    Announce(*this, sentences.join(' '));
    show();
    raise();
    m_timer.start();
}

QString Hint::TextWithin(int nWidth) const {
    QStringList taken = m_sentences;
    while (taken.size() > 1 && fontMetrics().horizontalAdvance(taken.join(' ')) > nWidth) {
        taken.removeLast();
    }
    return taken.join(' ');
}

void Hint::Place() {
    const int nRoom = parentWidget()->width() - 2 * kSide;
    m_strText = TextWithin(nRoom - 2 * kSide);
    const QRect rcText =
        fontMetrics().boundingRect(0, 0, nRoom - 2 * kSide, parentWidget()->height(),
                                   Qt::AlignCenter | Qt::TextWordWrap, m_strText);
    const QSize size = rcText.size() + QSize(2 * kSide, 2 * kAbove);
    setGeometry((parentWidget()->width() - size.width()) / 2, kTop, size.width(), size.height());
    update();
}

void Hint::FadeOut() {
    m_timer.stop();
    if (isVisible() && m_fading.state() != QAbstractAnimation::Running) {
        m_fading.start();
    }
}

void Hint::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(m_fading.currentValue().toDouble());
    painter.setPen(Qt::NoPen);
    painter.setBrush(kGround);
    painter.drawRoundedRect(rect(), kCorner, kCorner);
    painter.setPen(kText);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_strText);
}

}
