// The files opened lately, as the settings hold them, and whether they are there.
//
// Threads: UI thread only. Errors: the store raises none.
#pragma once

#include <QObject>
#include <functional>
#include <vector>

#include "widget/FilePath.h"

namespace velko::viewer {

class RecentFiles {
public:
    RecentFiles() = delete;

    // Latest first, at most `nMost`.
    static std::vector<vkit::FilePath> Latest(std::size_t nMost);

    // Takes files out of the list, with the places in them and their pictures.
    static void Forget(const std::vector<vkit::FilePath>& files);
    static void ForgetAll();

    // Asks on the task pool, as a file system may take its time, and tells for each
    // file whether it is there, unless the receiver has gone meanwhile.
    static void AskWhichAreThere(const std::vector<vkit::FilePath>& files, QObject* pReceiver,
                                 std::function<void(const std::vector<bool>&)> fnTell);
};

// The folder as a reader knows it: the home folder is "~". At most `nMost`
// characters, the last ones.
QString ShortFolder(const vkit::FilePath& path, int nMost);

}
