#include "widget/PagePicture.h"

#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/PagePicture.h"
#include "document/engine/PDFDoc.h"

namespace velko::vkit {

using velko::common::Bitmap;
using velko::pdf::PDFDoc;

namespace {

QImage ToImage(Bitmap& bitmap) {
    constexpr int kPixelBytes = 4;
    const QImage pixels(bitmap.GetBuffer().data(), bitmap.GetWidth(), bitmap.GetHeight(),
                        bitmap.GetWidth() * kPixelBytes, QImage::Format_RGB32);
    return pixels.copy();
}

bool IsProtected(const PDFDoc& document) {
    return document.GetEncryptionType() != 0 || document.GetPasswordType() != PDFDoc::kNoPassword;
}

PagePicture Draw(PDFDoc& document, int nPage, const PictureWish& wish,
                 const concurrency::cancellation_token& token) {
    if (!wish.bAlsoProtected && IsProtected(document)) {
        return {QImage(), true};
    }
    const auto pPage = document.GetPage(nPage);
    const QSize size = QSizeF(pPage->GetWidth(), pPage->GetHeight())
                           .scaled(wish.largest, Qt::KeepAspectRatio)
                           .toSize()
                           .expandedTo({1, 1});
    const RenderColors colors{wish.colors.background.rgba(), wish.colors.foreground.rgba(),
                              wish.eScanColors};
    const auto pBitmap = DrawPagePicture(pPage, size.width(), size.height(), colors, token);
    return {pBitmap ? ToImage(*pBitmap) : QImage(), false};
}

}

concurrency::task<PagePicture> DrawPage(PDFViewCtrl& control, int nPage, const PictureWish& wish,
                                        concurrency::cancellation_token token) {
    const auto pDocument = control.GetPDFDoc();
    const auto fnDraw = [pDocument, nPage, wish, token] {
        if (!pDocument) {
            throw concurrency::task_canceled();
        }
        return Draw(*pDocument, nPage, wish, token);
    };
    return concurrency::create_task(fnDraw, token);
}

}
