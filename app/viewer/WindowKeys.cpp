#include "app/viewer/WindowKeys.h"

#include <QDialog>
#include <QShortcut>

#include "app/viewer/Commands.h"

namespace velko::viewer {

void AddWindowKeys(QDialog& dialog, const Commands& commands) {
    dialog.addAction(commands[Command::Quit]);
    for (const QKeySequence& key : commands[Command::Close]->shortcuts()) {
        new QShortcut(key, &dialog, &dialog, &QDialog::reject);
    }
}

}
