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
    static constexpr int kMostFiles = 12;

    explicit RecentMenu(QWidget* pParent);

    // Latest first; empty when the settings cannot be read.
    static std::vector<vkit::FilePath> Files();

    void Fill();

signals:
    void Wanted(const velko::vkit::FilePath& path);
    void Failed(const QString& strReason);

private:
    void AddFile(int nNumber, const vkit::FilePath& path);
    void MarkMissing();
    void Forget();

    std::vector<vkit::FilePath> m_files; // one for each of the first actions
    int m_nFilling = 0;
};

}
