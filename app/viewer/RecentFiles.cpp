#include "app/viewer/RecentFiles.h"

#include <QDir>
#include <QPointer>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "app/viewer/RecentPictures.h"
#include "component/KeptView.h"
#include "platform/concurrency/Task.h"

namespace velko::viewer {

using vkit::FilePath;

namespace {

std::vector<bool> AreThere(const std::vector<FilePath>& files) {
    std::vector<bool> there;
    for (const FilePath& file : files) {
        std::error_code error;
        there.push_back(std::filesystem::is_regular_file(file.Bytes(), error));
    }
    return there;
}

}

std::vector<FilePath> RecentFiles::Latest(std::size_t nMost) {
    std::vector<FilePath> files;
    for (std::string& strFile : vkit::RecentFiles()) {
        if (files.size() < nMost) {
            files.emplace_back(std::move(strFile));
        }
    }
    return files;
}

void RecentFiles::Forget(const std::vector<FilePath>& files) {
    std::vector<std::string> paths;
    for (const FilePath& file : files) {
        paths.push_back(file.Bytes());
    }
    vkit::ForgetViews(paths);
    RecentPictures::Forget(files);
}

void RecentFiles::ForgetAll() {
    vkit::ForgetAllViews();
    RecentPictures::ForgetAll();
}

void RecentFiles::AskWhichAreThere(const std::vector<FilePath>& files, QObject* pReceiver,
                                   std::function<void(const std::vector<bool>&)> fnTell) {
    const auto fnLook = [files] { return AreThere(files); };
    concurrency::create_task(fnLook).then(
        [pStill = QPointer<QObject>(pReceiver),
         fnTell = std::move(fnTell)](const concurrency::task<std::vector<bool>>& looking) {
            if (pStill && looking.is_value()) {
                fnTell(looking.get());
            }
        });
}

QString ShortFolder(const FilePath& path, int nMost) {
    QString strFolder = path.Folder();
    if (const QString strHome = QDir::homePath();
        strFolder == strHome || strFolder.startsWith(strHome + '/')) {
        strFolder.replace(0, strHome.size(), '~');
    }
    return strFolder.size() <= nMost ? strFolder : "…" + strFolder.right(nMost - 1);
}

}
