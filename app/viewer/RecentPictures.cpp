#include "app/viewer/RecentPictures.h"

#include <sys/stat.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QPointer>
#include <QSaveFile>
#include <QSet>
#include <ctime>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

#include "app/viewer/RecentFiles.h"
#include "platform/concurrency/SerialQueue.h"
#include "platform/foundation/Exception.h"
#include "platform/storage/ApplicationData.h"

namespace velko::viewer {

using concurrency::task;
using vkit::FilePath;
using Windows::Storage::ApplicationData;
using Windows::Storage::StorageFile;
using Stamp = RecentPictures::Stamp;

namespace {

constexpr const char* kFormat = "PNG";
constexpr const char* kSizeKey = "DocumentSize";
constexpr const char* kTimeKey = "DocumentTime";
constexpr qint64 kLargestFile = 128 * 1024;
constexpr int kMostPictures = 25;    // as there are recent files
constexpr qint64 kSlackSeconds = 60; // in which an entry follows its picture

struct Picture {
    Stamp stamp;
    QImage image;
};

bool IsSame(const Stamp& one, const Stamp& other) {
    return one.Size == other.Size && one.DateModified == other.DateModified;
}

const std::time_t s_nStarted = std::time(nullptr); // this process
int s_nForgotten = 0;

QString FolderPath() {
    return QFile::decodeName(ApplicationData::Current()->LocalFolder().c_str()) + "/pictures";
}

QString NameOf(const FilePath& path) {
    const auto& strBytes = path.Bytes();
    const QByteArray bytes(strBytes.data(), static_cast<qsizetype>(strBytes.size()));
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex() + ".png";
}

QSet<QString> NamesOf(const std::vector<FilePath>& files) {
    QSet<QString> names;
    for (const FilePath& file : files) {
        names.insert(NameOf(file));
    }
    return names;
}

QSet<QString> ListedNames() {
    return NamesOf(RecentFiles::Latest(std::numeric_limits<std::size_t>::max()));
}

// Works on the folder follow each other in the order in which they were asked for.
std::shared_ptr<concurrency::scheduler> Line() {
    static const auto s_pLine = std::make_shared<concurrency::serial_queue>();
    return s_pLine;
}

template <class F>
task<std::invoke_result_t<F>> InTurn(F fnBody) {
    const auto pLine = Line();
    co_await concurrency::resume_on(pLine, concurrency::cancellation_token::none());
    const concurrency::blocking_scope waitsForTheDisk;
    co_return fnBody();
}

// --- within a turn ---

bool MakeFolder(const QString& strFolder) {
    constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
    const QByteArray bytes = QFile::encodeName(strFolder);
    try {
        ApplicationData::Current()->LocalStorageFolder();
    } catch (const Platform::Exception&) {
        return false;
    }
    ::mkdir(bytes.constData(), S_IRWXU);
    struct stat status {};
    return ::lstat(bytes.constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
           ((status.st_mode & kOthers) == 0 || ::chmod(bytes.constData(), S_IRWXU) == 0);
}

std::optional<Picture> ReadSound(QFile& file) {
    if (!file.open(QIODevice::ReadOnly) || file.size() > kLargestFile) {
        return std::nullopt;
    }
    QImageReader reader(&file, kFormat);
    const QSize size = reader.size();
    if (size.isEmpty() || size.boundedTo(RecentPictures::kPixels) != size) {
        return std::nullopt;
    }
    Picture picture;
    picture.image = reader.read();
    bool bSize = false;
    bool bTime = false;
    picture.stamp.Size = picture.image.text(kSizeKey).toULongLong(&bSize);
    picture.stamp.DateModified = picture.image.text(kTimeKey).toLongLong(&bTime);
    return bSize && bTime && !picture.image.isNull() ? std::optional(std::move(picture))
                                                     : std::nullopt;
}

std::optional<Picture> ReadPicture(const QString& strFile) {
    QFile file(strFile);
    auto picture = ReadSound(file);
    if (!picture) {
        file.remove();
    }
    return picture;
}

void WritePicture(const QString& strFile, const Stamp& stamp, QImage image) {
    image.setText(kSizeKey, QString::number(stamp.Size));
    image.setText(kTimeKey, QString::number(stamp.DateModified));
    QSaveFile file(strFile);
    if (file.open(QIODevice::WriteOnly) &&
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
        image.save(&file, kFormat)) {
        file.commit();
    }
}

// What was there before this process, and is not listed, is of an entry that has gone;
// what came since may be of one that another process has listed.
void Tidy(const QString& strFolder, const QSet<QString>& listed) {
    QFileInfoList files = QDir(strFolder).entryInfoList(QDir::Files | QDir::Hidden | QDir::System,
                                                        QDir::Time); // latest first
    const auto fnIsListed = [&](const QFileInfo& file) { return listed.contains(file.fileName()); };
    const auto fnIsOld = [](const QFileInfo& file) {
        return file.lastModified().toSecsSinceEpoch() < s_nStarted - kSlackSeconds;
    };
    qsizetype nMany = files.size() - kMostPictures;
    while (!files.empty()) {
        const QFileInfo file = files.takeLast();
        if (!fnIsListed(file) && (nMany > 0 || fnIsOld(file))) {
            QFile::remove(file.filePath());
            --nMany;
        }
    }
}

void RemoveAll(const QString& strFolder) {
    for (const QFileInfo& file :
         QDir(strFolder).entryInfoList(QDir::Files | QDir::Hidden | QDir::System)) {
        QFile::remove(file.filePath());
    }
}

// --- on the UI thread ---

using Tell = std::function<void(std::size_t, const QImage&)>;

task<void> TellCurrent(FilePath path, std::optional<Picture> picture, QPointer<QObject> pReceiver,
                       std::size_t nFile, Tell fnTell) {
    if (picture) {
        const auto asking = RecentPictures::StampOf(std::move(path));
        co_await asking.settled();
        asking.mark_observed(); // a file that is not there has no picture
        if (!asking.is_value() || !IsSame(asking.get(), picture->stamp)) {
            picture.reset();
        }
    }
    if (pReceiver) {
        fnTell(nFile, picture ? picture->image : QImage());
    }
}

task<void> ReadAll(std::vector<FilePath> files, QPointer<QObject> pReceiver, Tell fnTell) {
    const auto fnRead = [files, strFolder = FolderPath(), listed = ListedNames()] {
        Tidy(strFolder, listed);
        std::vector<std::optional<Picture>> pictures;
        for (const FilePath& file : files) {
            pictures.push_back(ReadPicture(strFolder + '/' + NameOf(file)));
        }
        return pictures;
    };
    const auto reading = InTurn(fnRead);
    const std::vector<std::optional<Picture>> pictures = co_await reading;
    for (std::size_t n = 0; n < pictures.size(); ++n) {
        TellCurrent(files[n], pictures[n], pReceiver, n, fnTell);
    }
}

}

task<Stamp> RecentPictures::StampOf(FilePath path) {
    const auto finding = StorageFile::GetFileFromPathAsync(path.Bytes()).AsTask();
    const std::shared_ptr<StorageFile> pFile = co_await finding;
    const auto asking = pFile->GetBasicPropertiesAsync().AsTask();
    co_return co_await asking;
}

task<bool> RecentPictures::Has(FilePath path, Stamp stamp) {
    return InTurn([strFile = FolderPath() + '/' + NameOf(path), stamp] {
        const auto picture = ReadPicture(strFile);
        return picture && IsSame(picture->stamp, stamp);
    });
}

void RecentPictures::Keep(const FilePath& path, const Stamp& stamp, const QImage& image) {
    QSet<QString> listed = ListedNames();
    listed.insert(NameOf(path)); // it is about to be
    InTurn([strFolder = FolderPath(), strName = NameOf(path), stamp, image, listed] {
        if (MakeFolder(strFolder)) {
            WritePicture(strFolder + '/' + strName, stamp, image);
            Tidy(strFolder, listed);
        }
    });
}

void RecentPictures::Forget(const std::vector<FilePath>& files) {
    ++s_nForgotten;
    InTurn([strFolder = FolderPath(), names = NamesOf(files)] {
        for (const QString& strName : names) {
            QFile::remove(strFolder + '/' + strName);
        }
    });
}

void RecentPictures::ForgetAll() {
    ++s_nForgotten;
    InTurn([strFolder = FolderPath()] { RemoveAll(strFolder); });
}

int RecentPictures::ForgottenTimes() {
    return s_nForgotten;
}

void RecentPictures::Read(const std::vector<FilePath>& files, QObject* pReceiver, Tell fnTell) {
    if (!files.empty()) {
        ReadAll(files, pReceiver, std::move(fnTell));
    }
}

}
