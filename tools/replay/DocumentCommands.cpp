// Commands that open and close documents and answer for a password.
#include <array>
#include <cstdint>

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QPushButton>

#include "control/ControlParts.h"
#include "control/PDFViewCtrl.h"
#include "platform/qt/QtElementWindow.h"
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

bool IsDialogOpen(Session& session) {
    return velko::vkit::ControlParts(session.Control()).OpenPasswordDialog() != nullptr;
}

// The dialog's widget that can be used now; null without a dialog.
template <class Widget, class F>
Widget* FindVisible(Session& session, F fnIsIt) {
    for (auto* const pWidget : session.Window().findChildren<Widget*>()) {
        if (pWidget->isVisible() && fnIsIt(*pWidget)) {
            return pWidget;
        }
    }
    return nullptr;
}

void Press(Session& session, const char* szButton) {
    auto* const pButton = FindVisible<QPushButton>(
        session, [szButton](const QPushButton& button) { return button.text() == szButton; });
    session.ThroughWindow([pButton] {
        if (pButton != nullptr) {
            pButton->click();
        }
    });
}

// As an input method does it, so that any letter can be typed.
void RunPassword(Session& session, const CommandFields& fields, JsonObject& result) {
    const QString strText = QString::fromStdString(fields.Text("text"));
    if (auto* const pBox = FindVisible<QLineEdit>(session, [](const QLineEdit& edit) {
            return edit.echoMode() == QLineEdit::Password;
        })) {
        QInputMethodEvent event;
        event.setCommitString(strText);
        QCoreApplication::sendEvent(pBox, &event);
    }
    Press(session, "OK");
    result.Add("open", IsDialogOpen(session));
}

void RunPasswordCancel(Session& session, const CommandFields&, JsonObject&) {
    Press(session, "Cancel");
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
