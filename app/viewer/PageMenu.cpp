#include "app/viewer/PageMenu.h"

#include <QClipboard>
#include <QGuiApplication>

#include "app/viewer/MenuStyle.h"

namespace velko::viewer {

namespace {

bool IsOfTheWeb(const QUrl& address) {
    return QStringList{"http", "https", "ftp", "mailto"}.contains(address.scheme());
}

}

PageMenu::PageMenu(const Commands& commands, const QString& strTarget, QWidget* pParent)
    : QMenu(pParent) {
    AddLink(strTarget);
    addActions({commands[Command::Back], commands[Command::Forward]});
    addSeparator();
    addActions({commands[Command::PreviousPage], commands[Command::NextPage],
                commands[Command::EnterPage]});
    addSeparator();
    addActions({commands[Command::ZoomIn], commands[Command::ZoomOut],
                commands[Command::ActualSize], commands[Command::FitPage],
                commands[Command::FitWidth]});
    addSeparator();
    addActions({commands[Command::Continuous], commands[Command::SinglePage],
                commands[Command::Reading], commands[Command::RotateRight]});
    addSeparator();
    addActions({commands[Command::Night], commands[Command::FullScreen]});
    StyleMenu(*this);
}

void PageMenu::AddLink(const QString& strTarget) {
    const QUrl address(strTarget);
    if (!IsOfTheWeb(address)) {
        return;
    }
    addAction("&Open the link…", this, [this, address] { emit BrowseWanted(address); });
    addAction("&Copy the link's address", this, [strTarget] {
        QGuiApplication::clipboard()->setText(QString(strTarget).remove("mailto:"));
    });
    addSeparator();
}

}
