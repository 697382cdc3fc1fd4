// What a reader waits for, beside the engine's floor in the same run: from the
// open to the first full page, and a document scrolled through one screen at a
// time until each screen is sharp.
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench/ControlUnderTest.h"
#include "bench/Corpus.h"
#include "bench/Measured.h"
#include "bench/floor/MuPdfFloor.h"
#include "control/PDFViewCtrl.h"
#include "viewers/core/IPDFViewer.h"

namespace {

using namespace velko::bench;

constexpr int kScreenWidth = 1000;
constexpr int kScreenHeight = 1400;
constexpr double kMilli = 1e3;

// The size at which the control shows a page of the document.
struct PageSize {
    int nWidth = 0;
    int nHeight = 0;
    double Megapixels() const { return static_cast<double>(nWidth) * nHeight * 1e-6; }
};

PageSize ShownSize(ControlUnderTest& control, int nPage) {
    const auto pShown = control.Session().Viewer()->GetPageScreenOffset(nPage);
    return {pShown->nWidth, pShown->nHeight};
}

void MeasureOpen(ControlUnderTest& control, int nRuns) {
    const std::string strPath = CorpusFile("text-20.pdf");
    Series controlWall;
    Series floorWall;
    for (int n = 0; n < nRuns; ++n) {
        const Stopwatch ours;
        control.Open(strPath);
        control.RunUntilSharp(0);
        controlWall.Add(ours.WallSeconds() * kMilli);
        const PageSize size = ShownSize(control, 0);
        control.RunUntilIdle();
        control.Close();
        const Stopwatch theirs;
        MuPdfFloor(strPath).RenderPage(0, size.nWidth, size.nHeight);
        floorWall.Add(theirs.WallSeconds() * kMilli);
    }
    PrintRatio("open to first full page, 1000x1400", controlWall, floorWall, "ms");
}

struct Cost {
    Series wall; // milliseconds per megapixel
    Series cpu;
    void Add(const Stopwatch& watch, double dbMegapixels) {
        wall.Add(watch.WallSeconds() * kMilli / dbMegapixels);
        cpu.Add(watch.CpuSeconds() * kMilli / dbMegapixels);
    }
};

// Screen by screen to the end; how many screens.
int ScrollThrough(ControlUnderTest& control) {
    const int nLast = control.Control().GetPageCount() - 1;
    int nScreens = 1;
    control.RunUntilSharp();
    double dbBefore = -1.0;
    while (true) {
        control.Control().MoveScreen(kScreenHeight, 0.0);
        control.RunUntilSharp();
        const auto pLast = control.Session().Viewer()->GetPageScreenOffset(nLast);
        if (pLast && pLast->dbOffsetY == dbBefore) {
            return nScreens;
        }
        dbBefore = pLast ? pLast->dbOffsetY : -1.0;
        ++nScreens;
    }
}

void ScrollControl(ControlUnderTest& control, const std::string& strPath, Cost& cost,
                   PageSize& size) {
    const auto& nRenders = control.Session().Counts()->nEngineRenders;
    const std::int64_t nBefore = nRenders;
    control.Open(strPath);
    size = ShownSize(control, 0);
    const int nPages = control.Control().GetPageCount();
    const Stopwatch watch;
    const int nScreens = ScrollThrough(control);
    cost.Add(watch, size.Megapixels() * nPages);
    std::printf("  %d pages in %d screens, %lld renders\n", nPages, nScreens,
                static_cast<long long>(nRenders - nBefore));
    control.RunUntilIdle();
    control.Close();
}

void ScrollFloor(const std::string& strPath, PageSize size, Cost& cost) {
    MuPdfFloor floor(strPath);
    const Stopwatch watch;
    for (int n = 0; n < floor.PageCount(); ++n) {
        floor.RenderPage(n, size.nWidth, size.nHeight);
    }
    cost.Add(watch, size.Megapixels() * floor.PageCount());
}

void MeasureScroll(ControlUnderTest& control, int nRuns) {
    const std::string strPath = CorpusFile("text-200.pdf");
    Cost ours;
    Cost theirs;
    for (int n = 0; n < nRuns; ++n) {
        PageSize size;
        ScrollControl(control, strPath, ours, size);
        ScrollFloor(strPath, size, theirs);
    }
    PrintRatio("200 pages, screen by screen until sharp, wall", ours.wall, theirs.wall,
               "ms per megapixel");
    PrintRatio("200 pages, screen by screen until sharp, CPU", ours.cpu, theirs.cpu,
               "ms per megapixel");
}

}

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const int nRuns = argc > 1 ? std::atoi(argv[1]) : 5;
    if (nRuns < 1) {
        std::fprintf(stderr, "velko-bench-read [RUNS]\n");
        return 2;
    }
    int nQtArguments = 1;
    const QApplication application(nQtArguments, argv);
    ControlUnderTest control(kScreenWidth, kScreenHeight);
    MeasureOpen(control, nRuns * 4);
    MeasureScroll(control, nRuns);
    return 0;
}
