// The viewer's command line.
//
// Read before there is an application object; Qt's own options are left for it.
// Words are bytes, as a file's name may hold what is no text. A file may be
// named by its address ("file:///...") too, as desktops do.
// Threads: any.
#pragma once

#include <QByteArrayList>
#include <QSize>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <vector>

#include "widget/FilePath.h"

namespace velko::viewer {

struct CommandLine {
    static constexpr QSize kDefaultSize{980, 1040};

    std::vector<vkit::FilePath> files; // a window each; may be empty
    QStringList foreign;               // addresses of what is no file of this machine
    QString strScreenshot;
    std::optional<int> nPage;       // as the reader counts; else where the document was left
    QString strFind;                // text to look for; empty: none
    std::optional<QSize> size;      // of the window; else the one that was kept
    std::optional<int> nPasswordFd; // from which the first file's password is read
    QString strFamily;              // of the device, to see the others' dialogs; empty: a desktop
    bool bHelp = false;
    bool bVersion = false;
    bool bNewWindow = false;                // also of a file that a viewer shows already
    bool bTimeToInk = false;                // print how long the start took, then end
    std::optional<std::int64_t> nStartedAt; // nanoseconds of the wall clock, for `bTimeToInk`
};

// `arguments` without the program's name. Empty, and a sentence in
// `strComplaint`, for what cannot be understood.
std::optional<CommandLine> ParseCommandLine(const QByteArrayList& arguments, QString& strComplaint);

QString UsageText();

}
