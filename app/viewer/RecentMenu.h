// The files opened lately, as a menu.
//
// Filled when it is about to be shown. Whether the files are still there is
// asked for on the task pool, as a file system may take its time; those that are
// not are marked then.
// Threads: UI thread only.
#pragma once

#include <QMenu>
#include <vector>

#include "widget/FilePath.h"

namespace velko::viewer {

class RecentMenu : public QMenu {
    Q_OBJECT

public:
    explicit RecentMenu(QWidget* pParent);

    void Fill();

signals:
    void Wanted(const velko::vkit::FilePath& path);
    void ClearWanted(); // all of them; to be asked for

private:
    void AddFile(int nNumber, const vkit::FilePath& path);
    void MarkMissing();

    std::vector<vkit::FilePath> m_files; // one for each of the first actions
    QAction* m_pForgetGone = nullptr;    // of this filling
    int m_nFilling = 0;
};

}
