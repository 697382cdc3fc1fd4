#include "app/viewer/Help.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <utility>

#include "app/viewer/Commands.h"
#include "app/viewer/WindowKeys.h"

namespace velko::viewer {

namespace {

constexpr QSize kAboutSize{460, 300}; // Qt's units

void Show(const QString& strTitle, const QString& strText, QSize size, const Commands& commands,
          QWidget* pParent) {
    if (auto* const pOpen = pParent->findChild<QDialog*>(strTitle)) {
        pOpen->activateWindow();
        return;
    }
    auto* const pDialog = new QDialog(pParent);
    pDialog->setObjectName(strTitle);
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    pDialog->setWindowTitle(strTitle);
    auto* const pText = new QTextBrowser(pDialog);
    pText->setAccessibleName(strTitle);
    pText->setOpenLinks(false);
    pText->setHtml(strText);
    auto* const pButtons = new QDialogButtonBox(QDialogButtonBox::Close, pDialog);
    QObject::connect(pButtons, &QDialogButtonBox::rejected, pDialog, &QDialog::reject);
    auto* const pLayout = new QVBoxLayout(pDialog);
    pLayout->addWidget(pText);
    pLayout->addWidget(pButtons);
    AddWindowKeys(*pDialog, commands);
    pDialog->resize(size.boundedTo(pParent->size().expandedTo({300, 200})));
    pDialog->show(); // the pages can be read meanwhile
    pText->setFocus();
}

}

void ShowAbout(const Commands& commands, QWidget* pParent) {
    Show("About Velko Viewer",
         QStringLiteral(
             "<h3>Velko Viewer %1</h3><p>A viewer for PDF documents, of velko vkit.</p>"
             "<p>It contains MuPDF, and so it may be given to others only under the GNU Affero "
             "General Public License, version 3 or later, its source included. There is no "
             "warranty.</p>"
             "<p>Qt %2 is used under the GNU Lesser General Public License.</p>")
             .arg(VELKO_VERSION, qVersion()),
         kAboutSize, commands, pParent);
}

}
