// Commands that change a document and save it.
#include <array>
#include <cstdint>
#include <optional>

#include <QJsonArray>

#include "control/PDFViewCtrl.h"
#include "document/engine/AnnotEditor.h"
#include "document/engine/PDFDoc.h"
#include "platform/concurrency/Task.h"
#include "tools/replay/Commands.h"
#include "tools/replay/OrderedDialogs.h"
#include "tools/replay/Session.h"

namespace velko::replay {

namespace {

using velko::common::vxbase::PointF;
using velko::pdf::AnnotRecord;
using velko::pdf::IAnnotEditor;

constexpr std::int32_t kHighlight = 9;
constexpr std::uint32_t kYellow = 0xFFFF00U;

// A mark over a rectangle given as left, top, right, bottom.
AnnotRecord MarkOver(const CommandFields& fields) {
    const QJsonArray sides = fields.Value("rect").toArray();
    if (sides.size() != 4) {
        throw FormatError("\"rect\" is not four numbers");
    }
    std::array<float, 4> at{};
    for (int i = 0; i < 4; ++i) {
        if (!sides.at(i).isDouble()) {
            throw FormatError("\"rect\" is not four numbers");
        }
        at[static_cast<std::size_t>(i)] = static_cast<float>(sides.at(i).toDouble());
    }
    const auto [fLeft, fTop, fRight, fBottom] = at;
    AnnotRecord record;
    record.nType = kHighlight;
    record.nColor = kYellow;
    record.quads.push_back({PointF{fLeft, fTop}, PointF{fRight, fTop}, PointF{fLeft, fBottom},
                            PointF{fRight, fBottom}});
    return record;
}

// Off the UI thread, which no host lets wait for the engine.
concurrency::task<void> AddMark(std::shared_ptr<velko::pdf::PDFDoc> pPdfDoc, std::int32_t nPage,
                                AnnotRecord record) {
    co_await concurrency::resume_background();
    auto* const pEditor = dynamic_cast<IAnnotEditor*>(pPdfDoc.get());
    if (pEditor == nullptr) {
        throw velko::common::EngineException(velko::common::ErrorCode::e_ErrUnsupported,
                                             "the engine edits no annotations");
    }
    pEditor->AddAnnot(nPage, record);
}

void RunMark(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nPage = fields.Int("page");
    const AnnotRecord record = MarkOver(fields);
    if (auto pPdfDoc = session.Control().GetPDFDoc()) {
        session.Await(AddMark(std::move(pPdfDoc), nPage, record));
    }
}

void RunSave(Session& session, const CommandFields&, JsonObject& result) {
    const int nAsked = session.Dialogs().Asked();
    const auto saving = session.Control().SaveDocument();
    result.Add("value", session.Await(saving));
    result.Add("asked", session.Dialogs().Asked() - nAsked);
}

// What the questions of a save are answered from here on.
void RunAnswer(Session& session, const CommandFields& fields, JsonObject&) {
    const std::string strPrompt = fields.TextOr("prompt", "");
    const std::string strFile = fields.TextOr("file", "");
    if (!strPrompt.empty() && strPrompt != "yes" && strPrompt != "no") {
        throw FormatError("\"prompt\" is neither \"yes\" nor \"no\"");
    }
    const std::size_t nButton = strPrompt == "yes" ? 0 : 1;
    session.Dialogs().Answer(strPrompt.empty() ? std::nullopt : std::optional(nButton),
                             strFile.empty() ? std::nullopt : std::optional(strFile));
}

}

std::span<const CommandEntry> SaveCommands() {
    static constexpr std::array<CommandEntry, 3> kCommands{{
        {"mark", RunMark},
        {"save", RunSave},
        {"answer", RunAnswer},
    }};
    return kCommands;
}

}
