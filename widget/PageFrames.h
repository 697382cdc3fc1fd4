// A thin line around each page, so that a reader sees where it ends: white paper on
// a light grey does not show it.
//
// Lifetime, threads, errors: as `PageOverlay`.
#pragma once

#include "widget/PageOverlay.h"

namespace velko::vkit {

class PageFrames final : public PageOverlay {
public:
    using PageOverlay::PageOverlay;

protected:
    void Draw(const RenderCanvasEventArgs& args) override;
};

}
