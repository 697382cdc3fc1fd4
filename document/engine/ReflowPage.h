// `velko.pdf.ReflowPage`: a page's text laid out anew for a width.
//
// The five settings come first, then `StartParse`; the rest answers for the last
// parse that ended. A setting that changes needs a new parse.
// Threads: any, one at a time; independent of other pages, and of renders. A viewer
// measures on the UI thread what its screen needs: a parse takes no longer than
// reading and setting the one page. The page is kept alive.
// Units: device pixels; the content's space has its origin at the top left and
// grows downward.
// Errors: `EngineException`, as `PDFPage::StartParse`.
#pragma once

#include <cstdint>
#include <memory>

#include "document/engine/Geometry.h"
#include "document/engine/PDFPage.h"
#include "document/engine/Progressive.h"
#include "platform/system/Activation.h"

namespace velko::pdf {

class ReflowPage {
public:
    static constexpr std::int32_t kText = 2;
    static constexpr std::int32_t kTextAndPictures = 3;

    virtual ~ReflowPage() = default;

    virtual void SetScreenSize(float fWidth, float fHeight) = 0; // the room for the text
    virtual void SetZoom(std::int32_t nPercent) = 0;             // 100: the page's own sizes
    virtual void SetSpacing1(float fSpacing) = 0;                // between lines, points at 100 %
    virtual void SetSpacing2(float fSpacing) = 0;                // between paragraphs, likewise
    virtual void SetParseFlags(std::int32_t nFlags) = 0;         // one of the above

    // Without a pause object the page is laid out when this returns. One that paused
    // it leaves the last parse in force.
    virtual std::shared_ptr<common::Progressive> StartParse(common::IPauseCallback* pPause) = 0;

    // 0 for a page with nothing to show: no text, and no pictures or none wanted.
    virtual std::int32_t GetContentWidth() const = 0;
    virtual std::int32_t GetContentHeight() const = 0;

    // The content's space to a bitmap whose first row is the content's first.
    virtual common::vxbase::Matrix2D GetDisplayMatrix() const = 0;
};

class IReflowPageFactory : public Platform::IActivationFactory {
public:
    // Raises e_ErrUnsupported from an engine that does not reflow.
    virtual std::shared_ptr<ReflowPage> Create(std::shared_ptr<PDFPage> pPage) = 0;
};

inline constexpr const char* kReflowPageClass = "velko.pdf.ReflowPage";

}
