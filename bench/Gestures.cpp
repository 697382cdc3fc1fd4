// How long the UI thread is busy with each frame of a gesture: a fling over a
// long document, and over its text set anew, while the engine renders at full load,
// and a pinch over two pages, in which the engine must not be asked at all. And how
// long a jump to the end of such text takes.
#include <QApplication>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/ControlUnderTest.h"
#include "bench/Corpus.h"
#include "control/PDFViewCtrl.h"
#include "platform/ui/SwapChainPanel.h"

namespace {

using namespace velko::bench;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;
namespace Input = Windows::UI::Xaml::Input;
using Windows::Foundation::Point;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr std::chrono::microseconds kFrame{16'667};
constexpr Point kCentre = {960.0F, 540.0F};

class Distribution {
public:
    void Add(double dbMilliseconds) { m_values.push_back(dbMilliseconds); }
    void Print(const char* szWhat) {
        std::sort(m_values.begin(), m_values.end());
        std::printf("%s: median %.2f, 90%% %.2f, 99%% %.2f, max %.2f ms (%zu)\n", szWhat, At(0.5),
                    At(0.9), At(0.99), m_values.back(), m_values.size());
    }

private:
    double At(double dbShare) const {
        return m_values[static_cast<std::size_t>(dbShare *
                                                 static_cast<double>(m_values.size() - 1))];
    }
    std::vector<double> m_values;
};

struct Finger {
    explicit Finger(ControlUnderTest& control) : panel(control.Session().Panel()) {}
    void Start() const {
        Input::ManipulationStartedRoutedEventArgs args;
        args.Position = kCentre;
        panel.ManipulationStarted.raise(args);
    }
    void Delta(Point ptAt, float fScale, float fCumulative, bool bInertial) const {
        Input::ManipulationDeltaRoutedEventArgs args;
        args.Position = ptAt;
        args.Delta.Scale = fScale;
        args.Cumulative.Scale = fCumulative;
        args.IsInertial = bInertial;
        panel.ManipulationDelta.raise(args);
    }
    void Complete(Point ptAt, float fCumulative) const {
        Input::ManipulationCompletedRoutedEventArgs args;
        args.Position = ptAt;
        args.Cumulative.Scale = fCumulative;
        panel.ManipulationCompleted.raise(args);
    }
    Windows::UI::Xaml::Controls::SwapChainPanel& panel;
};

double Since(Clock::time_point start) {
    return Milliseconds(Clock::now() - start).count();
}

// Whatever else came for the UI thread meanwhile: handed over blocks, paints.
void RunRestOfFrame(Clock::time_point frameEnd, Distribution& turns) {
    do {
        const auto start = Clock::now();
        QCoreApplication::processEvents();
        turns.Add(Since(start));
        if (Clock::now() < frameEnd) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 1);
        }
    } while (Clock::now() < frameEnd);
}

enum Layout { kPages = 1, kText = 3 }; // modes of the control

void MeasureFling(ControlUnderTest& control, const std::string& strFile, Layout eLayout,
                  int nFrames, float fPixelsPerFrame) {
    control.Open(strFile);
    control.Control().SetPageLayoutMode(eLayout);
    control.RunUntilIdle();
    const auto& nRenders = control.Session().Counts()->nEngineRenders;
    const std::int64_t nBefore = nRenders;
    const Finger finger(control);
    Distribution steps;
    Distribution turns;
    Point pt = kCentre;
    finger.Start();
    auto frameEnd = Clock::now();
    for (int n = 0; n < nFrames; ++n) {
        frameEnd += kFrame;
        pt.Y -= fPixelsPerFrame;
        const auto start = Clock::now();
        finger.Delta(pt, 1.0F, 1.0F, true);
        steps.Add(Since(start));
        RunRestOfFrame(frameEnd, turns);
    }
    finger.Complete(pt, 1.0F);
    std::printf("fling over %s, %.0f pixels a frame, %d frames: page %d, %lld renders\n",
                eLayout == kText ? "text set anew" : "pages", static_cast<double>(fPixelsPerFrame),
                nFrames, control.Control().GetCurrentPageIndex(),
                static_cast<long long>(nRenders - nBefore));
    steps.Print("  steps");
    turns.Print("  other turns of the UI thread");
    control.RunUntilIdle();
    control.Close();
}

// Nothing of what lies between is measured.
void MeasureFarPage(ControlUnderTest& control) {
    control.Open(CorpusFile("text-2000.pdf"));
    control.Control().SetPageLayoutMode(kText);
    control.RunUntilIdle();
    const auto start = Clock::now();
    control.Control().GotoLastPage();
    const double dbLaidOut = Since(start);
    control.RunUntilSharp();
    std::printf(
        "to the last of 2,000 pages of text set anew: laid out after %.1f ms, sharp after "
        "%.1f\n",
        dbLaidOut, Since(start));
    control.Close();
}

void MeasurePinch(ControlUnderTest& control) {
    constexpr int kSteps = 60;
    control.Open(CorpusFile("text-20.pdf"));
    control.Control().GotoPage(1);
    control.Control().MoveScreen(kHeight / 2.0, 0.0); // two pages
    control.RunUntilIdle();
    const auto& nRenders = control.Session().Counts()->nEngineRenders;
    const std::int64_t nBefore = nRenders;
    const Finger finger(control);
    Distribution steps;
    float fCumulative = 1.0F;
    finger.Start();
    for (int n = 0; n < kSteps; ++n) {
        const float fStep = n < kSteps / 2 ? 1.03F : 0.98F;
        fCumulative *= fStep;
        const auto start = Clock::now();
        finger.Delta(kCentre, fStep, fCumulative, false);
        QCoreApplication::processEvents(); // the window's own paint
        steps.Add(Since(start));
    }
    const std::int64_t nDuring = nRenders - nBefore;
    finger.Complete(kCentre, fCumulative);
    control.RunUntilIdle();
    std::printf("pinch of %d steps: %lld renders before its end, %lld after\n", kSteps,
                static_cast<long long>(nDuring),
                static_cast<long long>(nRenders - nBefore - nDuring));
    steps.Print("  steps, with the window's paint");
    control.Close();
}

}

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int nQtArguments = 1;
    const QApplication application(nQtArguments, argv);
    ControlUnderTest control(kWidth, kHeight);
    const int nFrames = argc > 1 ? std::atoi(argv[1]) : 600;
    if (nFrames < 1) {
        std::fprintf(stderr, "velko-bench-gestures [FRAMES [FILE.pdf]]\n");
        return 2;
    }
    const std::string strFile = argc > 2 ? argv[2] : CorpusFile("text-2000.pdf");
    MeasurePinch(control);
    for (const Layout eLayout : {kPages, kText}) {
        for (const float fSpeed : {40.0F, 200.0F, 900.0F}) {
            MeasureFling(control, strFile, eLayout, nFrames, fSpeed);
        }
    }
    MeasureFarPage(control);
    return 0;
}
