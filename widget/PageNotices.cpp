#include "widget/PageNotices.h"

#include <QPainter>
#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "surface/PDFViewCanvas.h"

namespace velko::vkit {

using velko::common::ErrorCode;
using namespace Windows::Graphics;

namespace {

constexpr int kWidest = 420; // these are Qt's units
constexpr int kMargin = 12;
const QColor kPaper(255, 244, 206);
const QColor kInk(60, 45, 0);

// The words in a box, in device pixels.
QImage PictureOf(const QString& strText, int nWidth, double dbRatio) {
    const QFont font;
    const QRect rcText = QFontMetrics(font).boundingRect(
        QRect(0, 0, std::max(1, nWidth - 2 * kMargin), 1'000), Qt::TextWordWrap, strText);
    const QSize size = rcText.size() + QSize(2 * kMargin, 2 * kMargin);
    QImage picture(size * dbRatio, QImage::Format_RGB32);
    picture.setDevicePixelRatio(dbRatio);
    picture.fill(kPaper);
    QPainter painter(&picture);
    painter.setPen(kInk);
    painter.drawText(QRect({kMargin, kMargin}, rcText.size()), Qt::TextWordWrap, strText);
    painter.drawRect(QRect({0, 0}, size - QSize(1, 1)));
    return picture;
}

}

QString ReasonOf(const PageFailure& failure) {
    switch (failure.eCode) {
        case ErrorCode::e_ErrFile:
            return QStringLiteral(
                "This page could not be read: see whether the disk of the file "
                "is still connected, and come back to the page.");
        case ErrorCode::e_ErrConflict:
            return QStringLiteral(
                "The file was changed since it was opened: open it again to "
                "read on.");
        case ErrorCode::e_ErrOutOfMemory:
            return QStringLiteral(
                "There is not enough memory for this page: close other programs "
                "and come back to it.");
        case ErrorCode::e_ErrNotFound:
            return QStringLiteral(
                "The file is damaged and this page is missing: ask for it anew "
                "where it came from.");
        case ErrorCode::e_ErrDataNotReady:
            return QStringLiteral(
                "This page took too long, so that a part of it may be missing: "
                "come back to it to try again.");
        default:
            return QStringLiteral(
                "This page could not be drawn, or not all of it: ask for the "
                "document anew where it came from.");
    }
}

PageNotices::PageNotices(PDFViewCtrl& control, std::function<double()> fnPixelRatio)
    : m_control(control), m_fnPixelRatio(std::move(fnPixelRatio)) {
    m_drawToken =
        m_control.RenderCanvasEvent.add([this](const auto&, const auto& pArgs) { Draw(*pArgs); });
    m_changeToken = m_control.PageFailureEvent.add(
        [this](const auto&, const auto&) { m_control.UpdateViewer(); });
}

PageNotices::~PageNotices() {
    m_control.RenderCanvasEvent.remove(m_drawToken);
    m_control.PageFailureEvent.remove(m_changeToken);
}

// At the top of the page, or of what of it is on the screen.
void PageNotices::Draw(const RenderCanvasEventArgs& args) {
    const auto failure = m_control.PageFailureOf(args.nPageIndex);
    const auto place = failure ? m_control.GetPageScreenRect(args.nPageIndex) : std::nullopt;
    if (!place) {
        return;
    }
    const double dbRatio = m_fnPixelRatio();
    const int nWidth = std::min(kWidest, static_cast<int>(place->nWidth / dbRatio) - 2 * kMargin);
    const QString strText = ReasonOf(*failure);
    if (m_strDrawn != strText || m_picture.devicePixelRatio() != dbRatio ||
        m_picture.width() > nWidth * dbRatio) {
        m_strDrawn = strText;
        m_picture = PictureOf(strText, nWidth, dbRatio);
    }
    const auto pContext = args.Canvas->GetDeviceContext();
    const auto size = D2D_SIZE_U{static_cast<std::uint32_t>(m_picture.width()),
                                 static_cast<std::uint32_t>(m_picture.height())};
    const auto pBitmap = pContext->CreateBitmap(
        size, {m_picture.constBits(), static_cast<std::size_t>(m_picture.sizeInBytes())},
        static_cast<std::uint32_t>(m_picture.bytesPerLine()), {});
    const auto fLeft =
        static_cast<float>(place->dbOffsetX + (place->nWidth - m_picture.width()) / 2);
    const auto fTop = static_cast<float>(std::max(place->dbOffsetY, 0.0) + kMargin * dbRatio);
    const auto fWidth = static_cast<float>(size.width);
    const auto fHeight = static_cast<float>(size.height);
    pContext->DrawBitmap(pBitmap, {fLeft, fTop, fLeft + fWidth, fTop + fHeight}, 1.0F,
                         D2D1_INTERPOLATION_MODE::NEAREST_NEIGHBOR, {0, 0, fWidth, fHeight});
}

}
