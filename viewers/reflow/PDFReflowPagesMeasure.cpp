// What pages measure, within a step and ahead of it.
#include <algorithm>
#include <cmath>
#include <utility>

#include "document/VLK_Document.h"
#include "platform/foundation/Exception.h"
#include "platform/foundation/FirstFailure.h"
#include "platform/system/Environment.h"
#include "platform/ui/CoreDispatcher.h"
#include "viewers/core/ChainLog.h"
#include "viewers/reflow/PDFReflowPagesViewer.h"
#include "viewers/reflow/ReflowViewerPageItem.h"

namespace velko::vkit {

using concurrency::cancellation_token;
using concurrency::task;

namespace {

// A step measures for no longer than this: pages take about a millisecond, and only
// very many without text, or very slow ones, come to it. The pool has all the time.
constexpr std::chrono::milliseconds kMostMeasuring{100};

// One that the pool has been at for this long keeps the engine to itself: a step that
// measured now would wait for it.
constexpr std::chrono::milliseconds kLongMeasuring{20};

std::chrono::nanoseconds Now() {
    return Platform::Environment()->MonotonicTime();
}

// Of a step, for the engine.
class Patience final : public velko::common::IPauseCallback {
public:
    explicit Patience(std::chrono::nanoseconds end) : m_end(end) {}
    bool NeedToPauseNow() override { return Now() > m_end; }

private:
    const std::chrono::nanoseconds m_end;
};

// How far around the screen pages are measured ahead, in screens.
constexpr double kScreensAhead = 3.0;

// Of the screen's height: the place of a page whose text could not be set.
constexpr double kFailedShare = 0.25;

using Content = ReflowMeasures::Content;

struct Measured {
    std::shared_ptr<VLK_ReflowPage> pPage; // empty where it failed or was paused
    std::optional<Content> content;        // empty where it was paused
};

Measured MeasurePage(VLK_Document& document, std::int32_t nPageIndex,
                     const ReflowParameters& parameters, velko::common::IPauseCallback* pPause) {
    try {
        auto pPage = document.CreateReflowPage(nPageIndex, parameters, pPause);
        if (!pPage) {
            return {};
        }
        const Content content{pPage->nContentWidth, pPage->nContentHeight, false};
        return {std::move(pPage), content};
    } catch (const concurrency::task_canceled&) {
        throw;
    } catch (const Platform::ObjectDisposedException&) {
        throw;
    } catch (...) {
        // The document has noted why.
    }
    return {nullptr, Content{0, 0, true}};
}

}

// --- sizes ---

// Margins that leave less than half of a narrow screen to the text give way to it;
// on a wide one they grow until lines are short enough to be read.
PDFReflowPagesViewer::TextColumn PDFReflowPagesViewer::Text() const {
    const double dbMargins = m_rcMargin.Left + m_rcMargin.Right;
    const double dbMost = m_dbScreenWidth * 0.5;
    const double dbShare = dbMargins > dbMost ? dbMost / dbMargins : 1.0;
    const double dbWidth = m_dbScreenWidth - dbMargins * dbShare;
    const double dbWidest = std::floor(m_dbWidestLine * m_fScale);
    if (dbWidest > 0.0 && dbWidth > dbWidest) {
        return {std::floor((m_dbScreenWidth - dbWidest) * 0.5), dbWidest};
    }
    return {m_rcMargin.Left * dbShare, dbWidth};
}

// The screen's height is the canvas's: a column that is narrowed to its only page
// is still read on the whole of it.
void PDFReflowPagesViewer::UpdateParameters() {
    m_measures.SetParameters({Text().dbWidth, CanvasRect().Height, GetScale(), m_bShowPicture,
                              static_cast<float>(m_dbSpacing1), static_cast<float>(m_dbSpacing2)});
}

DisplaySize PDFReflowPagesViewer::DisplaySizeOf(const Content& content, std::int32_t nTurn) const {
    const double dbText = Text().dbWidth;
    if (content.bHasFailed) {
        return {static_cast<float>(dbText), CanvasRect().Height * static_cast<float>(kFailedShare)};
    }
    double dbWidth = content.nWidth;
    double dbHeight = content.nHeight;
    if (IsTurned(nTurn)) {
        std::swap(dbWidth, dbHeight);
    }
    if (dbWidth <= 0.0) {
        return {};
    }
    const double dbRatio = dbText / dbWidth;
    return {static_cast<float>(dbWidth * dbRatio), static_cast<float>(dbHeight * dbRatio)};
}

std::shared_ptr<VLK_ReflowPage> PDFReflowPagesViewer::Measure(std::int32_t nPageIndex) {
    const auto pDocument = OpenDocument();
    if (!pDocument) {
        throw Platform::ObjectDisposedException();
    }
    UpdateParameters();
    Patience patience((m_bHasMeasured ? m_stepStart : Now()) + kMostMeasuring);
    m_bHasMeasured = true;
    const bool bIsKnown = m_measures.Find(nPageIndex) != nullptr; // to the engine too
    const Measured measured = MeasurePage(*pDocument, nPageIndex, m_measures.Parameters(),
                                          bIsKnown ? nullptr : &patience);
    if (measured.content) {
        m_measures.Note(nPageIndex, *measured.content);
    }
    return measured.pPage;
}

// One that has failed is not tried again within the same layout.
DisplaySize PDFReflowPagesViewer::GetReflowDisplaySize(ReflowViewerPageItem& item) {
    UpdateParameters();
    const Content* pContent = m_measures.Find(item.nPageIndex);
    if (!item.m_pReflowPage && !(pContent != nullptr && pContent->bHasFailed)) {
        item.m_pReflowPage = Measure(item.nPageIndex);
        pContent = m_measures.Find(item.nPageIndex);
    }
    return pContent != nullptr ? DisplaySizeOf(*pContent, item.m_nRotate) : DisplaySize();
}

// --- what the column asks ---

bool PDFReflowPagesViewer::MayMeasure() const {
    const bool bWouldWait = m_aheadStart && Now() - *m_aheadStart > kLongMeasuring;
    if (m_bIsFillingOn || bWouldWait || !HasScreen()) {
        return false;
    }
    return !m_bHasMeasured || Now() - m_stepStart < kMostMeasuring;
}

bool PDFReflowPagesViewer::IsMeasured(std::int32_t nPageIndex) {
    UpdateParameters();
    if (m_measures.Find(nPageIndex) == nullptr && MayMeasure()) {
        Measure(nPageIndex);
    }
    const bool bKnown = m_measures.Find(nPageIndex) != nullptr;
    m_bEndsUnknown = m_bEndsUnknown || !bKnown;
    return bKnown;
}

float PDFReflowPagesViewer::HeightInColumn(std::int32_t nPageIndex) {
    const Content* const pContent = IsMeasured(nPageIndex) ? m_measures.Find(nPageIndex) : nullptr;
    return pContent != nullptr ? DisplaySizeOf(*pContent, m_nRotate).fHeight : 0.0F;
}

bool PDFReflowPagesViewer::TakesRoom(std::int32_t nPageIndex) {
    return HeightInColumn(nPageIndex) > 0.0F;
}

// --- ahead ---

void PDFReflowPagesViewer::BeginChange() {
    ColumnViewer::BeginChange();
    m_stepStart = Now();
    m_bHasMeasured = false;
    m_bEndsUnknown = false;
}

void PDFReflowPagesViewer::MeasureAhead() {
    if (!std::exchange(m_bMeasuringAhead, true)) {
        RunAhead(m_ctsAhead.Token());
    }
}

// One page after another, each chosen by where the reader is by then. It waits on the
// UI thread alone, where what it holds last goes.
task<void> PDFReflowPagesViewer::RunAhead(cancellation_token token) {
    const auto pSelf = std::static_pointer_cast<PDFReflowPagesViewer>(shared_from_this());
    const auto pDispatcher = UiDispatcher();
    bool bHasLearned = false;
    while (true) {
        co_await concurrency::resume_foreground(pDispatcher, concurrency::priority::low);
        const auto nPage = token.is_canceled() ? std::nullopt : NextToMeasure();
        if (!nPage) {
            break;
        }
        const ReflowParameters parameters = m_measures.Parameters();
        m_aheadStart = Now();
        const auto fnMeasure = [pDocument = OpenDocument(), nPage, parameters] {
            return MeasurePage(*pDocument, *nPage, parameters, nullptr).content;
        };
        const auto measuring = concurrency::create_task(fnMeasure, token);
        co_await measuring.settled();
        measuring.mark_observed(); // it fails with the end of the document only
        if (token.is_canceled()) {
            break;
        }
        m_aheadStart.reset();
        const auto content = measuring.is_value() ? measuring.get() : std::nullopt;
        if (content && parameters == m_measures.Parameters()) {
            bHasLearned = true;
            TakeMeasured(*nPage, *content);
        }
    }
    if (!token.is_canceled()) {
        m_bMeasuringAhead = false;
        if (m_bEndsUnknown && bHasLearned) { // all there is around is known by now
            FillOn();
        }
    }
}

std::optional<std::int32_t> PDFReflowPagesViewer::NextToMeasure() const {
    if (!OpenDocument() || !HasScreen()) {
        return std::nullopt;
    }
    const double dbAhead = kScreensAhead * CanvasRect().Height;
    if (!HasItems()) {
        const auto nBelow = FirstUnknown(m_nCurPageIndex, 1, dbAhead);
        return nBelow ? nBelow : FirstUnknown(m_nCurPageIndex, -1, dbAhead);
    }
    // Counted from the screen's edges: of a long page most may lie behind.
    const LaidOutPage& first = *m_pPageItems->front();
    const LaidOutPage& last = *m_pPageItems->back();
    const auto nBelow =
        FirstUnknown(last.nPageIndex, 1, dbAhead + CanvasRect().Height - last.screenRect.dbOffsetY);
    return nBelow ? nBelow : FirstUnknown(first.nPageIndex, -1, dbAhead + BottomOf(first));
}

std::optional<std::int32_t> PDFReflowPagesViewer::FirstUnknown(std::int32_t nPageIndex,
                                                               std::int32_t nStep,
                                                               double dbLeft) const {
    for (; IsPage(nPageIndex) && dbLeft > 0.0; nPageIndex += nStep) {
        const Content* const pContent = m_measures.Find(nPageIndex);
        if (pContent == nullptr) {
            return nPageIndex;
        }
        const double dbHeight = DisplaySizeOf(*pContent, m_nRotate).fHeight;
        dbLeft -= dbHeight > 0.0 ? dbHeight + m_dbPageGap : 0.0;
    }
    return std::nullopt;
}

void PDFReflowPagesViewer::TakeMeasured(std::int32_t nPageIndex, const Content& content) {
    m_measures.Note(nPageIndex, content);
    if (m_bEndsUnknown && DisplaySizeOf(content, m_nRotate).fHeight > 0.0F) {
        FillOn();
    }
}

// A frame that fails, or a handler of the host, does not end the measuring: what is
// known next lays out again.
void PDFReflowPagesViewer::FillOn() {
    try {
        ChangeByItself(
            [](ViewerCore& core) { static_cast<PDFReflowPagesViewer&>(core).OnFillOn(); });
    } catch (...) {
        WriteChainOutcome("PDFReflowPagesViewer::FillOn");
    }
}

// The column goes on with what is known by now, and hangs off no end of the document
// that has come into sight; nothing is measured for it.
void PDFReflowPagesViewer::OnFillOn() {
    if (!CanLayOut() || !m_pPageItems) {
        return;
    }
    m_bIsFillingOn = true;
    Platform::FirstFailure steps;
    steps.Run([this] {
        if (HasItems()) {
            LayOut(MakeTask(0.0, 0.0));
            PinEnds();
            OnLaidOut();
            StartRenders(false);
            PaintCanvas();
        } else {
            ShowPage(m_nCurPageIndex, true);
        }
    });
    m_bIsFillingOn = false;
    steps.Rethrow();
}

}
