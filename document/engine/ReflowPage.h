// `velko.pdf.ReflowPage`: a page's text laid out anew for a width.
//
// Threads: one at a time; independent of other pages.
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
    virtual ~ReflowPage() = default;

    virtual void SetScreenSize(float fWidth, float fHeight) = 0; // pixels
    virtual void SetZoom(std::int32_t nPercent) = 0;
    virtual void SetSpacing1(float fSpacing) = 0;
    virtual void SetSpacing2(float fSpacing) = 0;
    virtual void SetParseFlags(std::int32_t nFlags) = 0; // 2 text, 3 text and pictures
    virtual std::shared_ptr<common::Progressive> StartParse(common::IPauseCallback* pPause) = 0;
    virtual std::int32_t GetContentWidth() const = 0;
    virtual std::int32_t GetContentHeight() const = 0;
    virtual common::vxbase::Matrix2D GetDisplayMatrix() const = 0;
};

class IReflowPageFactory : public Platform::IActivationFactory {
public:
    virtual std::shared_ptr<ReflowPage> Create(std::shared_ptr<PDFPage> pPage) = 0;
};

inline constexpr const char* kReflowPageClass = "velko.pdf.ReflowPage";

}
