// Commands that move to a page or a place.
#include <array>
#include <memory>

#include "control/PDFViewCtrl.h"
#include "document/engine/Action.h"
#include "tools/replay/Commands.h"
#include "tools/replay/Session.h"

namespace velko::replay {

namespace {

using velko::pdf::IAction;
using velko::pdf::IDestination;
using velko::pdf::PDFDoc;

// A destination as a script gives it.
struct ScriptedDestination final : IDestination {
    std::int32_t nPage = 0;
    std::int32_t nKind = 0;
    float fLeft = 0.0F;
    float fTop = 0.0F;
    float fRight = 0.0F;
    float fBottom = 0.0F;
    bool bLeftAbsent = false;
    bool bTopAbsent = false;

    std::int32_t GetPageIndex(const PDFDoc&) const override { return nPage; }
    std::int32_t GetZoomMode() const override { return nKind; }
    float GetLeft() const override { return fLeft; }
    float GetTop() const override { return fTop; }
    float GetRight() const override { return fRight; }
    float GetBottom() const override { return fBottom; }
    bool IsLeftAbsent() const override { return bLeftAbsent; }
    bool IsTopAbsent() const override { return bTopAbsent; }
};

class ScriptedAction final : public IAction {
public:
    explicit ScriptedAction(std::shared_ptr<IDestination> pTarget)
        : m_pTarget(std::move(pTarget)) {}
    std::shared_ptr<IDestination> GetDestination() const override { return m_pTarget; }

private:
    std::shared_ptr<IDestination> m_pTarget;
};

void RunGoto(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nPage = fields.Int("page");
    session.Control().GotoPage(nPage);
}

void RunFirst(Session& session, const CommandFields&, JsonObject& result) {
    result.Add("value", session.Control().GotoFirstPage());
}

void RunLast(Session& session, const CommandFields&, JsonObject& result) {
    result.Add("value", session.Control().GotoLastPage());
}

void RunPrev(Session& session, const CommandFields&, JsonObject& result) {
    result.Add("value", session.Control().GotoPrevPage());
}

void RunNext(Session& session, const CommandFields&, JsonObject& result) {
    result.Add("value", session.Control().GotoNextPage());
}

void RunExact(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nPage = fields.Int("page");
    const Windows::Foundation::Point pt{fields.Float("x"), fields.Float("y")};
    session.Control().GotoExactlyPage(nPage, pt);
}

void RunDest(Session& session, const CommandFields& fields, JsonObject&) {
    auto pTarget = std::make_shared<ScriptedDestination>();
    pTarget->nPage = fields.Int("page");
    pTarget->nKind = fields.Int("kind");
    pTarget->fLeft = fields.Float("left");
    pTarget->fTop = fields.Float("top");
    pTarget->fRight = fields.Float("right");
    pTarget->fBottom = fields.Float("bottom");
    pTarget->bLeftAbsent = fields.BoolOr("left_absent", false);
    pTarget->bTopAbsent = fields.BoolOr("top_absent", false);
    session.Control().GotoDestination(std::make_shared<ScriptedAction>(std::move(pTarget)));
}

void RunMove(Session& session, const CommandFields& fields, JsonObject&) {
    const double dbOffsetY = fields.Number("dy");
    const double dbOffsetX = fields.Number("dx");
    session.Control().MoveScreen(dbOffsetY, dbOffsetX);
}

}

std::span<const CommandEntry> NavigationCommands() {
    static constexpr std::array<CommandEntry, 8> kCommands{{
        {"goto", RunGoto},
        {"first", RunFirst},
        {"last", RunLast},
        {"prev", RunPrev},
        {"next", RunNext},
        {"exact", RunExact},
        {"dest", RunDest},
        {"move", RunMove},
    }};
    return kCommands;
}

}
