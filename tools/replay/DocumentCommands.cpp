// Commands that open and close documents and answer for a password.
#include <array>
#include <cstdint>

#include "control/IJudgePasswordHelper.h"
#include "control/PDFViewCtrl.h"
#include "tools/replay/Commands.h"
#include "tools/replay/Session.h"

namespace velko::replay {

namespace {

void RunOpen(Session& session, const CommandFields& fields, JsonObject& result) {
    const std::string strPath = fields.Text("path");
    const std::string strPassword = fields.TextOr("password", "");
    const auto opening = session.Control().OpenPdfDocument(strPath, strPassword);
    result.Add("error", static_cast<std::int32_t>(session.Await(opening)));
}

void RunClose(Session& session, const CommandFields&, JsonObject&) {
    session.Control().CloseDocument();
}

bool IsPasswordAwaited(Session& session) {
    return session.Control().PasswordJudge() != nullptr;
}

// What a dialog's OK does: a wrong password leaves the question open.
void RunPassword(Session& session, const CommandFields& fields, JsonObject& result) {
    const std::string strPassword = fields.Text("text");
    const auto pJudge = session.Control().PasswordJudge();
    if (pJudge && pJudge->JudgePassword(strPassword)) {
        pJudge->OnPasswordOK();
    }
    result.Add("open", IsPasswordAwaited(session));
}

void RunPasswordCancel(Session& session, const CommandFields&, JsonObject&) {
    if (const auto pJudge = session.Control().PasswordJudge()) {
        pJudge->OnPasswordCancel();
    }
}

}

std::span<const CommandEntry> DocumentCommands() {
    static constexpr std::array<CommandEntry, 4> kCommands{{
        {"open", RunOpen},
        {"close", RunClose},
        {"password", RunPassword},
        {"password_cancel", RunPasswordCancel},
    }};
    return kCommands;
}

}
