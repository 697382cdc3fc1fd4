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

constexpr QSize kKeysSize{520, 640}; // Qt's units
constexpr QSize kAboutSize{460, 300};

// Those of the pages, which are no commands of the window.
const std::pair<const char*, const char*> kPageKeys[] = {
    {"A screen on, or back", "Space, Page Down, Return; Shift+Space, Page Up, Backspace"},
    {"A line on, or back", "Down or J; Up or K"},
    {"To the side", "Left, Right, or Shift and the wheel"},
    {"Next page, previous page", "N; P"},
    {"Start and end of the document", "Home; End"},
    {"Zoom, or the size of text for reading", "+ and −, or Ctrl and the wheel"},
    {"Next link, previous link; follow it, leave it", "Tab, Shift+Tab; Return, Esc"},
    {"Leave a field, a notice or the full screen", "Esc"},
};

QString Row(const QString& strWhat, const QString& strKeys) {
    return QStringLiteral("<tr><td style=\"padding-right: 16px\">%1</td><td>%2</td></tr>")
        .arg(strWhat.toHtmlEscaped(), strKeys.toHtmlEscaped());
}

QString KeysText(const Commands& commands) {
    QString strRows;
    for (int n = 0; n < static_cast<int>(Command::kCount); ++n) {
        const QAction& action = *commands[static_cast<Command>(n)];
        QStringList keys;
        for (const QKeySequence& key : action.shortcuts()) {
            keys << key.toString(QKeySequence::NativeText);
        }
        if (!keys.isEmpty()) {
            strRows += Row(action.text().remove('&').remove("…"), keys.join(", "));
        }
    }
    QString strPages;
    for (const auto& [szWhat, szKeys] : kPageKeys) {
        strPages += Row(QString::fromUtf8(szWhat), QString::fromUtf8(szKeys));
    }
    return QStringLiteral(
               "<h3>On the pages</h3><table>%1</table><h3>Commands</h3>"
               "<table>%2</table>")
        .arg(strPages, strRows);
}

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

void ShowKeys(const Commands& commands, QWidget* pParent) {
    Show("Keys", KeysText(commands), kKeysSize, commands, pParent);
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
