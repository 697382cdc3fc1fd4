// Steps of the UI thread, with Google Benchmark: a scroll step over pages that
// are laid out, a step of a page's turn, of a zoom gesture, a paint. Beside the paint stands its
// floor, the same pixels copied by the painter alone.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include "bench/ControlUnderTest.h"
#include "bench/Corpus.h"
#include "control/ControlParts.h"
#include "control/PDFViewCtrl.h"
#include "control/PDFViewerManager.h"
#include "platform/fake/HeapCount.h"
#include "platform/qt/QtElementWindow.h"
#include "viewers/core/IPDFViewer.h"
#include "viewers/core/ViewerInspection.h"

namespace {

using Platform::Fake::HeapAllocations;
using velko::bench::ControlUnderTest;
using velko::bench::CorpusFile;

// Sharp, and at rest, in the middle of the second page.
void Prepare(ControlUnderTest& control) {
    control.Open(CorpusFile("text-20.pdf"));
    control.Control().GotoPage(1);
    control.Control().MoveScreen(200.0, 0.0);
    control.RunUntilIdle();
}

void CountHeap(benchmark::State& state, std::uint64_t nBefore) {
    state.counters["heap_per_step"] = benchmark::Counter(
        static_cast<double>(HeapAllocations() - nBefore), benchmark::Counter::kAvgIterations);
}

void MoveStep(benchmark::State& state) {
    ControlUnderTest control(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    Prepare(control);
    double dbStep = 40.0;
    const std::uint64_t nBefore = HeapAllocations();
    for (auto _ : state) {
        control.Control().MoveScreen(dbStep, 0.0);
        dbStep = -dbStep;
    }
    CountHeap(state, nBefore);
}
BENCHMARK(MoveStep)->Args({1000, 1400})->Args({1920, 1080})->Unit(benchmark::kMicrosecond);

// In the middle of a turn, both pages rendered.
void TurnStep(benchmark::State& state) {
    ControlUnderTest control(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    Prepare(control);
    control.Control().SetPageLayoutMode(2);
    control.Control().MoveScreen(0.0, 300.0);
    control.Control().MoveScreen(0.0, 100.0);
    control.RunUntilIdle();
    double dbStep = 40.0;
    const std::uint64_t nBefore = HeapAllocations();
    for (auto _ : state) {
        control.Control().MoveScreen(0.0, dbStep);
        dbStep = -dbStep;
    }
    CountHeap(state, nBefore);
}
BENCHMARK(TurnStep)->Args({1000, 1400})->Args({1920, 1080})->Unit(benchmark::kMicrosecond);

void ZoomStep(benchmark::State& state) {
    ControlUnderTest control(1000, 1400);
    Prepare(control);
    control.Control().SetPageLayoutMode(static_cast<int>(state.range(0)));
    control.RunUntilIdle();
    const auto pManager = velko::vkit::ControlParts(control.Control()).PageViewMgr();
    double dbScale = 1.3;
    const std::uint64_t nBefore = HeapAllocations();
    for (auto _ : state) {
        pManager->PageScaled({500.0F, 700.0F}, dbScale, true, false);
        dbScale = 2.8 - dbScale;
    }
    CountHeap(state, nBefore);
}
BENCHMARK(ZoomStep)->ArgName("mode")->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

// The whole frame, as after a resize: the one that is shown is held, so that the
// new one cannot be drawn as its difference.
void Paint(benchmark::State& state) {
    ControlUnderTest control(1920, 1080);
    Prepare(control);
    QImage held;
    const std::uint64_t nBefore = HeapAllocations();
    for (auto _ : state) {
        held = control.Session().Window().FrontImage();
        control.Control().UpdateViewer();
    }
    CountHeap(state, nBefore);
}
BENCHMARK(Paint)->Unit(benchmark::kMicrosecond);

// A frame in which nothing changed.
void PaintAgain(benchmark::State& state) {
    ControlUnderTest control(1920, 1080);
    Prepare(control);
    for (auto _ : state) {
        control.Control().UpdateViewer();
    }
}
BENCHMARK(PaintAgain)->Unit(benchmark::kMicrosecond);

// The frame of `Paint` by the painter alone: the ground, and a picture for each
// page on the screen.
void PaintFloor(benchmark::State& state) {
    ControlUnderTest control(1920, 1080);
    Prepare(control);
    const auto pViewer =
        std::dynamic_pointer_cast<velko::vkit::IViewerInspection>(control.Session().Viewer());
    std::vector<std::pair<QPointF, QImage>> pages;
    for (const velko::vkit::PageItemState& item : pViewer->Inspect().items) {
        const auto& rc = item.screenRect;
        QImage page(rc.nWidth, rc.nHeight, QImage::Format_ARGB32_Premultiplied);
        page.fill(0xFFFFFFFF);
        pages.emplace_back(QPointF(std::round(rc.dbOffsetX), std::round(rc.dbOffsetY)), page);
    }
    QImage target(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        target.fill(0xFFE0E0E0);
        QPainter painter(&target);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        for (const auto& [ptAt, page] : pages) {
            painter.drawImage(ptAt, page);
        }
        painter.end();
        benchmark::DoNotOptimize(target.constBits());
    }
}
BENCHMARK(PaintFloor)->Unit(benchmark::kMicrosecond);

}

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    int nQtArguments = 1;
    const QApplication application(nQtArguments, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
