// The reflow viewer: each page's text set anew for the width of the screen, page
// under page in one column.
//
// A page's height is what its text takes, so it has to be measured before it is
// laid out; one with nothing to show takes no place. What a step needs is measured
// within it, on the UI thread, up to a limit of time. Beyond that the column ends
// where it is known, and the rest is measured on the pool and then laid out; in the
// same way the pages around the screen are measured ahead, so that steps find them
// known. A page whose text cannot be set takes a place for hosts to say so.
//
// The zoom is the size of the letters: between 1.0 and 4.0, 2.5 at first.
// Lifetime, threads, units, errors: as `PageViewerBase`.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/ui/Element.h"
#include "viewers/core/ColumnViewer.h"
#include "viewers/reflow/IReflowPages.h"
#include "viewers/reflow/ReflowMeasures.h"
#include "viewers/reflow/ReflowStyle.h"

namespace velko::vkit {

class PDFReflowPagesViewer final : public ColumnViewer, public IReflowPages {
public:
    using Thickness = Windows::UI::Xaml::Thickness;

    PDFReflowPagesViewer(std::weak_ptr<IViewerOwner> wkOwner,
                         std::shared_ptr<VLK_Document> pDocument,
                         std::shared_ptr<PDFViewCanvas> pCanvas);

    // --- settings; they hold for pages laid out afterwards ---
    // For hosts alone: nothing reads them.
    std::int32_t Property1() const { return m_nProperty1; }
    void Property1(std::int32_t nValue) { m_nProperty1 = nValue; }
    std::int32_t Property2() const { return m_nProperty2; }
    void Property2(std::int32_t nValue) { m_nProperty2 = nValue; }
    std::int32_t Property3() const { return m_nProperty3; }
    void Property3(std::int32_t nValue) { m_nProperty3 = nValue; }
    bool ShowPicture() const { return m_bShowPicture; }
    void ShowPicture(bool bShow) { m_bShowPicture = bShow; }
    // Around the text; device pixels.
    const Thickness& Margin() const { return m_rcMargin; }
    void Margin(const Thickness& rcMargin) { m_rcMargin = rcMargin; }
    double Spacing1() const { return m_dbSpacing1; } // between lines, points
    void Spacing1(double dbSpacing) { m_dbSpacing1 = dbSpacing; }
    double Spacing2() const { return m_dbSpacing2; } // between paragraphs, points
    void Spacing2(double dbSpacing) { m_dbSpacing2 = dbSpacing; }
    void PageGap(double dbGap) { m_dbPageGap = dbGap; }
    // All that a host chooses, together.
    void Style(const ReflowStyle& style);

    // --- scrolling ---
    bool CanScrollUp();
    bool CanScrollDown();
    void PageUp();
    void PageDown();
    void ReleaseItems() { ClearPagesBitmap(); }

    // --- IPDFViewer ---
    std::int32_t GetCurrentPageIndex() override; // the last page without a layout
    float GetMinScale() override;
    float GetMaxScale() override;
    void SaveViewerState(PropertySet& values) override;
    void SetNightMode(bool bNightMode) override;
    void RedrawScreen() override;
    void UpdatePageAfterAnnotEdit(std::int32_t nPageIndex) override;
    void ClearCanvas(const std::shared_ptr<WPRenderDC>& pDc) override;
    void ClearScreen() override;
    void CancelRender() override;

    // --- IPageItemHost ---
    BlockColors RenderColors() const override;

    // --- IReflowPages ---
    DisplaySize GetReflowDisplaySize(ReflowViewerPageItem& item) override;

protected:
    // --- ViewerCore ---
    void OnClosed() override;
    void BeginChange() override;
    void OnPageScaled(Point ptCentre, double dbScale, bool bIsInertial,
                      bool isScrollComplete) override;
    void OnInvaildateLayout() override;
    void OnInitLayOut(std::int32_t nPageIndex, double dbScale, double dbOffsetX,
                      double dbOffsetY) override;
    void OnGotoPage(std::int32_t nPageIndex) override;
    void OnGotoDestination(std::int32_t nPageIndex, std::int32_t nZoomMode,
                           const std::vector<float>& values) override;

    // --- PageViewerBase ---
    PageItem MakeItem(std::int32_t nPageIndex, const PDFRenderTask& task) override;
    Render_PageDavidBlock CalcPageDavidBlock(const ViewerPageItem& item) const override;
    Windows::Graphics::D2D_COLOR_F AroundPages() const override;
    void DrawPaper(Windows::Graphics::ID2D1DeviceContext& context,
                   const ViewerPageItem& item) const override;
    void DrawBlank(Windows::Graphics::ID2D1DeviceContext& /*context*/,
                   const Windows::Graphics::D2D_RECT_F& /*rc*/) const override {}
    void TellDrawn(const ViewerPageItem& item) const override;
    void TellCleared(const ViewerPageItemBlock& block) const override;

    // --- ColumnViewer ---
    double PageGap() const override { return m_dbPageGap; }
    double FirstX(const PDFRenderTask& task) const override;
    double PlacedX(const LaidOutPage& item, float fWidth, double dbOffsetX) const override;
    double StandingX(const LaidOutPage& item, double dbOffsetX) const override;
    double LimitSideways(const PageItems& items, double dbOffsetX) const override;
    void OnFilled(const char* szEnd, double dbLeft) override;
    void OnLaidOut() override;
    bool TakesRoom(std::int32_t nPageIndex) override;
    bool IsMeasured(std::int32_t nPageIndex) override;
    float HeightInColumn(std::int32_t nPageIndex) override;

private:
    static const ViewerTraits kTraits;

    std::int32_t GetBlockCount(const LaidOutPage& item) const;

    // --- measures ---
    struct TextColumn {
        double dbLeft = 0.0;
        double dbWidth = 0.0;
    };
    TextColumn Text() const; // without the margins
    bool HasScreen() const { return m_dbScreenWidth >= 1.0 && CanvasRect().Height >= 1.0F; }
    void UpdateParameters();
    DisplaySize DisplaySizeOf(const ReflowMeasures::Content& content, std::int32_t nTurn) const;
    // Sets the page's text; what there is to show of it is known afterwards. Empty
    // where that fails.
    std::shared_ptr<VLK_ReflowPage> Measure(std::int32_t nPageIndex);
    bool MayMeasure() const;

    // --- measuring ahead; see the .cpp ---
    void MeasureAhead();
    concurrency::task<void> RunAhead(concurrency::cancellation_token token);
    std::optional<std::int32_t> NextToMeasure() const;
    // From the page on, within that many pixels.
    std::optional<std::int32_t> FirstUnknown(std::int32_t nPageIndex, std::int32_t nStep,
                                             double dbLeft) const;
    void TakeMeasured(std::int32_t nPageIndex, const ReflowMeasures::Content& content);
    void FillOn();
    void OnFillOn();

    bool m_bShowPicture = true;
    std::int32_t m_nProperty1 = 12;
    std::int32_t m_nProperty2 = 10;
    std::int32_t m_nProperty3 = 20;
    Thickness m_rcMargin{30.0, 30.0, 30.0, 30.0};
    double m_dbSpacing1 = 0.0;
    double m_dbSpacing2 = 3.0;
    double m_dbPageGap = 5.0;
    bool m_bUsesPageColors = false;
    double m_dbWidestLine = 0.0;

    ReflowMeasures m_measures;
    std::chrono::nanoseconds m_stepStart{0}; // of the change of the layout under way
    bool m_bHasMeasured = false;             // within it
    bool m_bIsFillingOn = false;             // it lays out what the pool has measured
    bool m_bEndsUnknown = false;             // the column ends before a page not measured yet
    bool m_bMeasuringAhead = false;
    std::optional<std::chrono::nanoseconds> m_aheadStart; // of the page that the pool is at
    CancellationGeneration m_ctsAhead;
};

}
