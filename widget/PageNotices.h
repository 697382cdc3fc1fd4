// What is wrong with a page, said on the page's place: that it cannot be read,
// is missing from the file, or was too much.
//
// Lifetime, threads, errors: as `PageOverlay`.
#pragma once

#include <QString>
#include <functional>
#include <utility>

#include "document/PageFailure.h"
#include "widget/PageOverlay.h"
#include "widget/PageSign.h"

namespace velko::vkit {

// A sentence for the reader: what is wrong with the page, and what to do.
QString ReasonOf(const PageFailure& failure);

class PageNotices final : public PageOverlay {
public:
    PageNotices(PDFViewCtrl& control, std::function<double()> fnPixelRatio);
    ~PageNotices() override;

    // What is true of a failure that is not to be said now.
    void HideWhile(std::function<bool(const PageFailure&)> fnHides) {
        m_fnHides = std::move(fnHides);
    }

protected:
    void Draw(const RenderCanvasEventArgs& args) override;

private:
    Windows::Foundation::EventRegistrationToken m_changeToken;
    PageSign m_sign;
    std::function<bool(const PageFailure&)> m_fnHides; // empty: nothing
};

}
