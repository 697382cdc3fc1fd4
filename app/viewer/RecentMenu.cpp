#include "app/viewer/RecentMenu.h"

#include "app/viewer/RecentFiles.h"

namespace velko::viewer {

using vkit::FilePath;

namespace {

constexpr std::size_t kMostFiles = 12;
constexpr int kLongestText = 60; // characters
constexpr int kLongestFolder = 40;

QString Shortened(const QString& strText) {
    return strText.size() <= kLongestText ? strText : "…" + strText.right(kLongestText - 1);
}

QString ForMenu(QString strText) {
    return strText.replace('&', "&&").replace('\t', ' ');
}

}

RecentMenu::RecentMenu(QWidget* pParent) : QMenu("Open &recent", pParent) {
    setToolTipsVisible(true);
    connect(this, &QMenu::aboutToShow, this, &RecentMenu::Fill);
}

void RecentMenu::Fill() {
    clear();
    m_files = RecentFiles::Latest(kMostFiles);
    for (std::size_t n = 0; n < m_files.size(); ++n) {
        AddFile(static_cast<int>(n) + 1, m_files[n]);
    }
    if (m_files.empty()) {
        addAction("No files yet")->setEnabled(false);
    }
    addSeparator();
    m_pForgetGone = addAction("Take out those &not found");
    m_pForgetGone->setVisible(false);
    QAction* const pClear = addAction("&Clear this list…", this, &RecentMenu::ClearWanted);
    pClear->setEnabled(!m_files.empty());
    MarkMissing();
}

// The folder stands where other entries have their keys.
void RecentMenu::AddFile(int nNumber, const FilePath& path) {
    QAction* const pAction = addAction(
        QStringLiteral("&%1  %2\t%3")
            .arg(nNumber)
            .arg(ForMenu(Shortened(path.Name())), ForMenu(ShortFolder(path, kLongestFolder))));
    pAction->setToolTip(path.Text());
    connect(pAction, &QAction::triggered, this, [this, path] { emit Wanted(path); });
}

void RecentMenu::MarkMissing() {
    const auto fnMark = [this, nFilling = ++m_nFilling](const std::vector<bool>& there) {
        if (nFilling != m_nFilling) {
            return;
        }
        std::vector<FilePath> gone;
        for (std::size_t n = 0; n < there.size(); ++n) {
            if (!there[n]) {
                QAction* const pAction = actions().at(static_cast<qsizetype>(n));
                pAction->setText(pAction->text().section('\t', 0, 0) + "\tnot found");
                pAction->setEnabled(false);
                gone.push_back(m_files[n]);
            }
        }
        m_pForgetGone->setVisible(!gone.empty());
        connect(m_pForgetGone, &QAction::triggered, this, [gone] { RecentFiles::Forget(gone); });
    };
    RecentFiles::AskWhichAreThere(m_files, this, fnMark);
}

}
