// What the viewers of a column have in common (pages as they are, reflowed text):
// pages one under the other, of which only those that touch the screen are laid
// out.
//
// It holds no model of the whole document, only that list, in page order. A move
// is a change of those pages' places, limited by the first and the last page once
// they are laid out, after which the list is trimmed at one end and filled at the
// other. Wherever a step would leave the screen without a page, the page asked for
// comes to stand at the top.
//
// A derived viewer says how large a page is (by its items), how far apart pages
// are, and where one stands sideways.
// Lifetime, threads, units, errors: as `PageViewerBase`.
#pragma once

#include <cstdint>
#include <memory>

#include "viewers/core/Column.h"
#include "viewers/core/PageViewerBase.h"

namespace velko::vkit {

class ColumnViewer : public PageViewerBase, protected IColumnPages {
public:
    std::int32_t GetCurrentPageIndex() override; // 0 without a layout

protected:
    ColumnViewer(std::weak_ptr<IViewerOwner> wkOwner, std::shared_ptr<VLK_Document> pDocument,
                 std::shared_ptr<PDFViewCanvas> pCanvas, const ViewerTraits& traits);

    // --- what a derived viewer says ---
    virtual double PageGap() const = 0;
    // Where the first page of an empty column stands.
    virtual double FirstX(const PDFRenderTask& task) const = 0;
    // Where a page does that comes in beside one at `dbOffsetX`, and where one
    // that a move has brought there.
    virtual double PlacedX(const LaidOutPage& item, float fWidth, double dbOffsetX) const = 0;
    virtual double StandingX(const LaidOutPage& item, double dbOffsetX) const = 0;
    virtual double LimitSideways(const PageItems& items, double dbOffsetX) const = 0;
    // Before a first layout at that page; the scale asked for may be 0.
    virtual void ChooseFirstScale(std::int32_t /*nPageIndex*/, double /*dbScale*/) {}
    // After a fill of the column, by which of its ends; what it left of the screen.
    virtual void OnFilled(const char* /*szEnd*/, double /*dbLeft*/) {}
    // After each layout that is to be shown, before its renders start.
    virtual void OnLaidOut() {}

    // --- IColumnPages ---
    std::int32_t ColumnLength() const override { return PageCount(); }
    bool TakesRoom(std::int32_t /*nPageIndex*/) override { return true; }
    bool IsMeasured(std::int32_t /*nPageIndex*/) override { return true; }
    float HeightInColumn(std::int32_t nPageIndex) override {
        return DisplaySizeOf(nPageIndex).fHeight;
    }

    // --- ViewerCore ---
    void OnClosed() override;
    void OnMoveScreen(double dbOffsetY, double dbOffsetX) override;
    void OnRotateViewer(std::int32_t nRotate) override;
    void OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                      double dbOffsetY) override;
    void OnGotoPage(std::int32_t nPageIndex) override;
    void OnPageSizeChanged(double dbOffsetX, double dbOffsetY) override;

    Column TheColumn();
    PDFRenderTask MakeTask(double dbOffsetY, double dbOffsetX);
    void RecomputeCurrentPage(); // keeps the one known when nothing is laid out

    // --- a layout step ---
    // Limits the task in place; whether a move is left to do.
    bool ClampTaskOffset(const PageItems& items, PDFRenderTask& task);
    // One whole step: the next list is in force afterwards. False when the step
    // would have emptied the screen and was brought back.
    bool LayOut(const PDFRenderTask& task);
    // Lays out and starts the renders; returns the list now in force.
    const PageItems& RenderScreenBitmapSync(const PDFRenderTask& task, bool bUseCacheOnly);
    void MoveLayout(std::int32_t nPageIndex, double dbOffsetY, double dbOffsetX, double dbScale,
                    std::int32_t nRotate);
    void ShowStep(PDFRenderTask task);

    // --- longer ways; the first two return whether anything moved ---
    bool MoveInSteps(double dbOffsetY, double dbOffsetX);
    bool PinEnds();
    // With the page at the top; laid out anew if `bFresh`, or if it is not the first.
    void ShowPage(std::int32_t nPageIndex, bool bFresh);
    // The layout for the size that the canvas has now: see `InvaildateLayout`.
    void LayOutForSize();
    DisplaySize DisplaySizeOf(std::int32_t nPageIndex);

    std::int32_t m_nCurPageIndex = 0; // where the next layout starts

private:
    struct Corner {
        double dbLeft = 0.0;
        double dbTop = 0.0;
    };

    // Moves the items in force into `newList`, then fills it.
    bool RelayoutPageItems(PageItems& newList, const PDFRenderTask& task);
    bool StaysOnScreen(const ViewerPageItem& item, const PDFRenderTask& task) const;
    void EnumPageTop(std::int32_t nPageIndex, PageItems& list, const PDFRenderTask& task);
    void EnumPageBelow(std::int32_t nPageIndex, PageItems& list, const PDFRenderTask& task);
    double PrependItem(std::int32_t nPage, PageItems& list, const PDFRenderTask& task,
                       const Corner& below);
    double AppendItem(std::int32_t nPage, PageItems& list, const PDFRenderTask& task,
                      const Corner& place);
    void PlaceItem(ViewerPageItem& item, const DisplaySize& size, double dbOffsetX,
                   double dbOffsetY) const;
    void NarrowToOnlyPage(const Render_ScreenOffsetInfo& rc);
    void Adopt(PageItems& newList);
    bool HoldsScreen(const PageItems& items);
    void KeepScreenFilled(PageItems& list, const PDFRenderTask& task);
    void BringBack(PageItems& list, PDFRenderTask task);
    double CalcTailOverflow(std::int32_t nPageIndex);
    void LayOutInPlace();

    PageItems m_spareItems; // the next list's memory
};

}
