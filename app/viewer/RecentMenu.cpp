#include "app/viewer/RecentMenu.h"

#include <QPointer>
#include <filesystem>
#include <system_error>

#include "component/KeptView.h"
#include "platform/concurrency/Task.h"
#include "widget/OpenFailure.h"

namespace velko::viewer {

using vkit::FilePath;

namespace {

constexpr int kLongestText = 60; // characters

std::vector<bool> AreThere(const std::vector<FilePath>& files) {
    std::vector<bool> there;
    for (const FilePath& file : files) {
        std::error_code error;
        there.push_back(std::filesystem::is_regular_file(file.Bytes(), error));
    }
    return there;
}

QString Shortened(const QString& strText) {
    return strText.size() <= kLongestText ? strText : "…" + strText.right(kLongestText - 1);
}

}

RecentMenu::RecentMenu(QWidget* pParent) : QMenu("Open &recent", pParent) {
    setToolTipsVisible(true);
    connect(this, &QMenu::aboutToShow, this, &RecentMenu::Fill);
}

std::vector<FilePath> RecentMenu::Files() {
    std::vector<FilePath> files;
    try {
        for (std::string& strFile : vkit::RecentFiles()) {
            files.emplace_back(std::move(strFile));
            if (files.size() == kMostFiles) {
                break;
            }
        }
    } catch (...) { // a viewer without its list is still a viewer
    }
    return files;
}

void RecentMenu::Fill() {
    clear();
    m_files = Files();
    ++m_nFilling;
    for (std::size_t n = 0; n < m_files.size(); ++n) {
        AddFile(static_cast<int>(n) + 1, m_files[n]);
    }
    if (m_files.empty()) {
        addAction("No files yet")->setEnabled(false);
    }
    addSeparator();
    QAction* const pForget = addAction("&Clear this list", this, &RecentMenu::Forget);
    pForget->setEnabled(!m_files.empty());
    MarkMissing();
}

void RecentMenu::AddFile(int nNumber, const FilePath& path) {
    QString strName = path.Name();
    QAction* const pAction = addAction(
        QStringLiteral("&%1  %2").arg(nNumber).arg(Shortened(strName.replace('&', "&&"))));
    pAction->setToolTip(path.Text());
    connect(pAction, &QAction::triggered, this, [this, path] { emit Wanted(path); });
}

void RecentMenu::MarkMissing() {
    const auto fnLook = [files = m_files] { return AreThere(files); };
    concurrency::create_task(fnLook).then(
        [pMenu = QPointer<RecentMenu>(this),
         nFilling = m_nFilling](const concurrency::task<std::vector<bool>>& looking) {
            if (!pMenu || pMenu->m_nFilling != nFilling || !looking.is_value()) {
                return;
            }
            const std::vector<bool>& there = looking.get();
            for (std::size_t n = 0; n < there.size(); ++n) {
                QAction* const pAction = pMenu->actions().at(static_cast<qsizetype>(n));
                if (!there[n]) {
                    pAction->setText(pAction->text() + " – not found");
                    pAction->setEnabled(false);
                }
            }
        });
}

void RecentMenu::Forget() {
    try {
        vkit::ForgetAllViews();
    } catch (...) {
        emit Failed("The list could not be cleared: " + vkit::ReasonOf(std::current_exception()));
    }
}

}
