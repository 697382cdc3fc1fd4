// A viewer whose answers a test sets and whose calls it reads.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "viewers/core/IPDFViewer.h"

namespace velko::testing {

class ScriptedViewer : public vkit::IPDFViewer {
    using PageRect = std::shared_ptr<vkit::WrapperDeviceRect>;

public:
    // What it answers.
    std::int32_t nCurrentPage = 0;
    float fScale = 1.0F;
    std::int32_t nRotate = 0;
    std::vector<std::int32_t> visiblePages;
    Rect rcPage;
    Point ptDevice;
    std::shared_ptr<vkit::PagePosition> pPosition;

    // What it was asked, "Name a b"; questions without effect are not kept.
    std::vector<std::string> calls;
    // Runs inside each operation that moves the layout, before it returns.
    std::function<void()> fnDuringMove;

    void PageScaled(Point pt, double dbScale, bool bInertial, bool bComplete) override {
        fScale = static_cast<float>(dbScale);
        Move("PageScaled %g %g %g %d %d", pt.X, pt.Y, dbScale, bInertial, bComplete);
    }
    void MoveScreen(double dbY, double dbX) override { Move("MoveScreen %g %g", dbY, dbX); }
    void RotateViewer(std::int32_t n) override { Note("RotateViewer %d", n); }
    void InvaildateLayout() override { Note("InvaildateLayout"); }
    void InitLayOut(std::int32_t nPage, double dbScale, double dbX, double dbY) override {
        Move("InitLayOut %d %g %g %g", nPage, dbScale, dbX, dbY);
    }
    void UpdateViewer() override { Note("UpdateViewer"); }
    void OnRenderCanvas(const std::shared_ptr<vkit::WPRenderDC>&) override {}
    void CloseViewer() override { Note("CloseViewer"); }
    void GotoPage(std::int32_t nPage) override { Move("GotoPage %d", nPage); }
    std::int32_t GetCurrentPageIndex() override { return nCurrentPage; }
    float GetScale() override { return fScale; }
    void SetScale(float f) override { fScale = f; }
    float GetMinScale() override { return 0.5F; }
    float GetMaxScale() override { return 4.0F; }
    std::int32_t GetRotate() override { return nRotate; }
    void SetRotate(std::int32_t n) override { nRotate = n; }
    std::shared_ptr<vkit::PagePosition> GetPagePosition() override { return pPosition; }
    std::shared_ptr<vkit::PDFPagePoint> DevicePointToPagePoint(Point pt) override {
        auto p = std::make_shared<vkit::PDFPagePoint>();
        p->pt = {pt.X + 1, pt.Y + 1};
        return p;
    }
    std::shared_ptr<vkit::Render_PageScreenOffsetInfo> GetPageScreenOffset(std::int32_t) override {
        return std::make_shared<vkit::Render_PageScreenOffsetInfo>();
    }
    std::shared_ptr<vkit::WrapperDevicePoint> PagePointToDevicePoint(std::int32_t, Point) override {
        auto p = std::make_shared<vkit::WrapperDevicePoint>();
        p->bIsValid = true;
        p->pt = ptDevice;
        return p;
    }
    PageRect PageRectToDeviceRect(std::int32_t, const Rect&) override { return {}; }
    void AlignPageAfterScroll(double dbY, double dbX) override { Note("Align %g %g", dbY, dbX); }
    void ClearPagesBitmap() override {}
    void PageSizeChanged(double dbX, double dbY) override {
        Note("PageSizeChanged %g %g", dbX, dbY);
    }
    void GotoDestination(std::int32_t nPage, std::int32_t nMode,
                         const std::vector<float>& v) override {
        Note("GotoDestination %d %d %g %g %g %g", nPage, nMode, v.at(0), v.at(1), v.at(2), v.at(3));
    }
    void SetNightMode(bool) override {}
    void RedrawScreen() override { Note("RedrawScreen"); }
    void UpdatePageAfterAnnotEdit(std::int32_t n) override { Note("AnnotEdit %d", n); }
    PageRect PageRectToScreenRect(std::int32_t, const Rect&) override { return {}; }
    PageRect ScreenRectToPageRect(std::int32_t, const Rect&) override { return {}; }
    bool IsPointInPage(Point) override { return false; }
    std::int32_t GetPageIndexAtPoint(Point) override { return 7; }
    Point AdjustPointInPage(Point pt, std::int32_t) override { return pt; }
    Rect GetPageRectAtPoint(Point, std::int32_t) override { return rcPage; }
    void ClearCanvas(const std::shared_ptr<vkit::WPRenderDC>&) override {}
    void ClearScreen() override { Note("ClearScreen"); }
    PageRect DeviceRectToPageRect(std::int32_t, const Rect&) override { return {}; }
    std::array<double, 6> GetDisplayMatrix(std::int32_t) override { return {2, 0, 0, 2, 3, 0}; }
    void CancelRender() override { Note("CancelRender"); }
    Color GetPageBackgroundColor() override { return {255, 1, 2, 3}; }
    void SetPageBackgroundColor(Color) override {}
    Color GetPageForegroundColor() override { return {255, 4, 5, 6}; }
    void SetPageForegroundColor(Color) override {}
    void SetPageColors(Color, Color) override { Note("SetPageColors"); }
    void SaveViewerState(PropertySet& values) override {
        values.Insert("OffsetX", Windows::Foundation::PropertyValue::Create<double>(77.0));
    }
    std::vector<std::int32_t> GetVisiblePages() override { return visiblePages; }
    void Dispose() override { Note("Dispose"); }

private:
    template <class... A>
    void Note(const char* szFormat, A... args) {
        char szText[160];
        std::snprintf(szText, sizeof szText, szFormat, args...);
        calls.emplace_back(szText);
    }
    void Note(const char* szText) { calls.emplace_back(szText); }
    template <class... A>
    void Move(A... args) {
        Note(args...);
        if (fnDuringMove) {
            fnDuringMove();
        }
    }
};

}
