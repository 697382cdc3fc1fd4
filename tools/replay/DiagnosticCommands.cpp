// Commands that wait, look, count and order faults.
#include <array>
#include <chrono>
#include <string>

#include <QImage>
#include <QPixmap>

#include "platform/concurrency/Task.h"
#include "platform/foundation/Exception.h"
#include "platform/qt/QtElementWindow.h"
#include "platform/qt/QtGraphicsFactory.h"
#include "tools/replay/Commands.h"
#include "tools/replay/Session.h"
#include "tools/replay/StatePrinter.h"
#include "viewers/core/ViewerCounters.h"

namespace velko::replay {

namespace {

std::chrono::milliseconds Milliseconds(std::int32_t nCount, const char* szName) {
    if (nCount < 0) {
        throw FormatError(std::string("field \"") + szName + "\" must not be negative");
    }
    return std::chrono::milliseconds(nCount);
}

void RunWait(Session& session, const CommandFields& fields, JsonObject& result) {
    constexpr std::int32_t kDefaultLimit = 60000;
    const auto limit = Milliseconds(fields.IntOr("timeout_ms", kDefaultLimit), "timeout_ms");
    const std::vector<std::string> busy = session.WaitUntilIdle(limit);
    result.Add("idle", busy.empty()).Add("busy", JsonArray(busy));
}

void RunSleep(Session& session, const CommandFields& fields, JsonObject&) {
    session.RunFor(Milliseconds(fields.Int("ms"), "ms"));
}

void RunState(Session& session, const CommandFields&, JsonObject& result) {
    result.Append(StateOf(session));
}

void RunScreenshot(Session& session, const CommandFields& fields, JsonObject& result) {
    const std::string strFile = fields.Text("file");
    const QImage frame = fields.BoolOr("widgets", false) ? session.Window().grab().toImage()
                                                         : session.Window().FrontImage();
    if (frame.isNull()) {
        throw Platform::ChangedStateException("the canvas has shown no frame yet");
    }
    if (!frame.convertToFormat(QImage::Format_RGB32).save(QString::fromStdString(strFile), "PNG")) {
        throw Platform::WriteFaultException("cannot write " + strFile);
    }
    result.Add("w", frame.width()).Add("h", frame.height());
}

void RunFault(Session& session, const CommandFields& fields, JsonObject&) {
    const std::string strWhat = fields.Text("what");
    const std::int32_t nAfter = fields.IntOr("after", 0);
    if (nAfter < 0) {
        throw FormatError("field \"after\" must not be negative");
    }
    Platform::Qt::QtGraphicsState& graphics = *session.Graphics().State();
    if (strWhat == "device_lost") {
        graphics.nPresentsUntilLoss = static_cast<std::uint64_t>(nAfter);
    } else if (strWhat == "present_failure") {
        graphics.nPresentsUntilFailure = static_cast<std::uint64_t>(nAfter);
    } else if (strWhat == "engine_throw") {
        session.OrderedFaults()->Arm(Fault::EngineThrow, nAfter);
    } else if (strWhat == "read_error") {
        session.OrderedFaults()->Arm(Fault::ReadError, nAfter);
    } else {
        throw FormatError("unknown fault \"" + strWhat + "\"");
    }
}

void RunStats(Session& session, const CommandFields&, JsonObject& result) {
    const Counters& counters = *session.Counts();
    const Platform::Qt::QtGraphicsState& graphics = *session.Graphics().State();
    result.Add("engine_renders", counters.nEngineRenders.load())
        .Add("engine_opens", counters.nEngineOpens.load())
        .Add("paints", graphics.nFrames)
        .Add("presents", graphics.nPresents)
        .Add("blocks_created", velko::vkit::ViewerCounters::BlocksCreated())
        .Add("bitmaps_live", graphics.nLiveBitmaps)
        .Add("bitmap_bytes_live", graphics.nLiveBitmapBytes)
        .Add("tasks_cancelled", concurrency::canceled_task_count())
        .Add("peak_rss_kb", PeakRssKb());
}

}

std::span<const CommandEntry> DiagnosticCommands() {
    static constexpr std::array<CommandEntry, 6> kCommands{{
        {"wait", RunWait},
        {"sleep", RunSleep},
        {"state", RunState},
        {"screenshot", RunScreenshot},
        {"fault", RunFault},
        {"stats", RunStats},
    }};
    return kCommands;
}

}
