// The first pages of the files opened lately, as small pictures in a folder of the
// viewer's own data: each in a file of its own, named by a hash of the path, with the
// size and the time of change of the document that it shows.
//
// Only the user may read the folder. Files are replaced whole, so windows and processes
// need not know of each other. What nobody listed any more when this process started
// goes with the next picture that is kept or asked for.
// Threads: UI thread only; the disk is another thread's. Errors: none. A folder that
// cannot be written keeps no pictures, and what is no picture is removed and is none.
#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <functional>
#include <vector>

#include "platform/concurrency/Task.h"
#include "platform/storage/StorageFile.h"
#include "widget/FilePath.h"

namespace velko::viewer {

class RecentPictures {
public:
    RecentPictures() = delete;

    // The room that one has in a list, in Qt's units; kept for screens of twice as
    // many pixels.
    static constexpr QSize kRoom{48, 64};
    static constexpr QSize kPixels = kRoom * 2;

    // The file as it is now, which tells whether a picture is of it. Fails as
    // `StorageFile` does.
    using Stamp = Windows::Storage::BasicProperties;
    static concurrency::task<Stamp> StampOf(vkit::FilePath path);

    // Whether there is a picture of the file as `stamp` says it is.
    static concurrency::task<bool> Has(vkit::FilePath path, Stamp stamp);

    static void Keep(const vkit::FilePath& path, const Stamp& stamp, const QImage& image);
    static void Forget(const std::vector<vkit::FilePath>& files);
    static void ForgetAll();
    // How often something was forgotten: what began before may not be kept after.
    static int ForgottenTimes();

    // Tells of each file, by its index, the picture that shows it as it is now, or a null
    // one; nothing once the receiver has gone. A file that does not answer holds up none of
    // the others.
    static void Read(const std::vector<vkit::FilePath>& files, QObject* pReceiver,
                     std::function<void(std::size_t nFile, const QImage& image)> fnTell);
};

}
