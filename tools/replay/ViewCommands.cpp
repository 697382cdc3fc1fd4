// Commands that change how pages are shown.
#include <array>

#include "control/PDFViewCtrl.h"
#include "tools/replay/Commands.h"
#include "tools/replay/Session.h"

namespace velko::replay {

namespace {

void RunLayout(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nMode = fields.Int("mode");
    session.Control().SetPageLayoutMode(nMode);
}

void RunDefaultLayout(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nMode = fields.Int("mode");
    session.Control().SetDefaultLayoutMode(nMode);
}

void RunZoom(Session& session, const CommandFields& fields, JsonObject&) {
    const Windows::Foundation::Point ptCentre{fields.Float("x"), fields.Float("y")};
    const double dbScale = fields.Number("scale");
    const bool bInertial = fields.BoolOr("inertial", false);
    const bool bComplete = fields.BoolOr("complete", false);
    session.Control().ZoomAtPoint(ptCentre, dbScale, bInertial, bComplete);
}

void RunSetScale(Session& session, const CommandFields& fields, JsonObject&) {
    const float fScale = fields.Float("scale");
    session.Control().SetScale(fScale);
}

void RunSetZoomMode(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nMode = fields.Int("mode");
    session.Control().SetZoomMode(nMode);
}

void RunRotate(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nTurns = fields.Int("n");
    session.Control().RotateViewer(nTurns);
}

void RunNight(Session& session, const CommandFields& fields, JsonObject&) {
    const bool bOn = fields.Bool("on");
    session.Control().NightMode(bOn);
}

void RunColors(Session& session, const CommandFields& fields, JsonObject&) {
    const Windows::UI::Color background = fields.Color("bg");
    const Windows::UI::Color foreground = fields.Color("fg");
    session.Control().SetPageColors(background, foreground);
}

void RunRedraw(Session& session, const CommandFields&, JsonObject&) {
    session.Control().RedrawScreen();
}

void RunUpdate(Session& session, const CommandFields&, JsonObject&) {
    session.Control().UpdateViewer();
}

void RunAnnotEdited(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nPage = fields.Int("page");
    session.Control().UpdatePageAfterAnnotEdit(nPage);
}

void RunCancelRender(Session& session, const CommandFields&, JsonObject&) {
    session.Control().CancelRender();
}

void RunHideAnnots(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nType = fields.Int("type");
    session.Control().AddHiddenAnnotType(nType);
}

void RunRenderFlags(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nFlags = fields.Int("flags");
    session.Control().SetRenderFlags(static_cast<std::uint32_t>(nFlags));
}

void RunCanScroll(Session& session, const CommandFields& fields, JsonObject&) {
    const bool bOn = fields.Bool("on");
    session.Control().SetIsCanScrollPageViewEnabled(bOn);
}

}

std::span<const CommandEntry> ViewCommands() {
    static constexpr std::array<CommandEntry, 15> kCommands{{
        {"layout", RunLayout},
        {"default_layout", RunDefaultLayout},
        {"zoom", RunZoom},
        {"set_scale", RunSetScale},
        {"set_zoom_mode", RunSetZoomMode},
        {"rotate", RunRotate},
        {"night", RunNight},
        {"colors", RunColors},
        {"redraw", RunRedraw},
        {"update", RunUpdate},
        {"annot_edited", RunAnnotEdited},
        {"cancel_render", RunCancelRender},
        {"hide_annots", RunHideAnnots},
        {"render_flags", RunRenderFlags},
        {"can_scroll", RunCanScroll},
    }};
    return kCommands;
}

}
