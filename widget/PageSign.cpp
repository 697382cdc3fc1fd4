#include "widget/PageSign.h"

#include <QPainter>
#include <algorithm>

namespace velko::vkit {

using namespace Windows::Graphics;

namespace {

constexpr int kWidest = 420; // these are Qt's units
constexpr int kMargin = 12;

}

void PageSign::Show(const QString& strText, const Look& look, double dbPixelRatio) {
    if (m_strText != strText || m_look != look || m_dbRatio != dbPixelRatio) {
        m_strText = strText;
        m_look = look;
        m_dbRatio = dbPixelRatio;
        m_picture = {};
    }
}

void PageSign::MakePicture(int nWidth) {
    const QFont font;
    const QRect rcText = QFontMetrics(font).boundingRect(
        QRect(0, 0, std::max(1, nWidth - 2 * kMargin), 1'000), Qt::TextWordWrap, m_strText);
    const QSize size = rcText.size() + QSize(2 * kMargin, 2 * kMargin);
    m_picture = QImage(size * m_dbRatio, QImage::Format_RGB32);
    m_picture.setDevicePixelRatio(m_dbRatio);
    m_picture.fill(m_look.paper);
    QPainter painter(&m_picture);
    painter.setPen(m_look.ink);
    painter.drawText(QRect({kMargin, kMargin}, rcText.size()), Qt::TextWordWrap, m_strText);
    if (m_look.bFrame) {
        painter.drawRect(QRect({0, 0}, size - QSize(1, 1)));
    }
}

// At the top of the page, or of what of it is on the screen.
void PageSign::Draw(ID2D1DeviceContext& context, const Render_PageScreenOffsetInfo& place) {
    const int nWidth = std::min(kWidest, static_cast<int>(place.nWidth / m_dbRatio) - 2 * kMargin);
    if (m_picture.isNull() || m_picture.width() > nWidth * m_dbRatio) {
        MakePicture(nWidth);
    }
    const auto size = D2D_SIZE_U{static_cast<std::uint32_t>(m_picture.width()),
                                 static_cast<std::uint32_t>(m_picture.height())};
    const auto pBitmap = context.CreateBitmap(
        size, {m_picture.constBits(), static_cast<std::size_t>(m_picture.sizeInBytes())},
        static_cast<std::uint32_t>(m_picture.bytesPerLine()), {});
    const auto fLeft =
        static_cast<float>(place.dbOffsetX + (place.nWidth - m_picture.width()) / 2.0);
    const auto fTop = static_cast<float>(std::max(place.dbOffsetY, 0.0) + kMargin * m_dbRatio);
    const auto fWidth = static_cast<float>(size.width);
    const auto fHeight = static_cast<float>(size.height);
    context.DrawBitmap(pBitmap, {fLeft, fTop, fLeft + fWidth, fTop + fHeight}, 1.0F,
                       D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, {0, 0, fWidth, fHeight});
}

}
