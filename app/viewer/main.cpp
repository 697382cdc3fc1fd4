// The desktop viewer. The order of the start is its speed: the document begins
// to open on the pool before Qt connects to the display, and the window's
// final size is known before the first layout.
#include <QApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <optional>
#include <utility>

#include "app/viewer/CommandBar.h"
#include "app/viewer/CommandLine.h"
#include "app/viewer/MainWindow.h"
#include "app/viewer/PasswordFd.h"
#include "app/viewer/Screenshot.h"
#include "app/viewer/StartClock.h"
#include "app/viewer/WindowList.h"
#include "app/viewer/instance/InstanceAsker.h"
#include "engines/mupdf/Register.h"
#include "widget/VelkoRuntime.h"

namespace velko::viewer {

namespace {

constexpr int kUsageError = 2;

// Prints the time at which the first rendered pixels were handed to the display.
void ReportTimeToInk(const vkit::VelkoPdfView& view, const CommandLine& options) {
    QObject::connect(
        &view, &vkit::VelkoPdfView::Painted, &view,
        [&view, nStartedAt = options.nStartedAt] {
            if (!view.HasInk()) {
                return;
            }
            if (const auto dbElapsed = MillisecondsSinceStart(nStartedAt)) {
                std::printf("time to ink: %.1f ms\n", *dbElapsed);
            }
            QCoreApplication::quit();
        },
        Qt::QueuedConnection); // after the paint has been flushed
}

// What the command line asks for, once, wherever the document was left.
void ShowFirst(MainWindow& window, const CommandLine& options) {
    if (options.nPage || !options.strFind.isEmpty()) {
        QObject::connect(
            &window.View(), &vkit::VelkoPdfView::Opened, &window,
            [&window, nPage = options.nPage, strFind = options.strFind] {
                window.ShowPlace(nPage, strFind);
            },
            Qt::SingleShotConnection);
    }
}

// Asks the viewers that run already to show the one file; empty where that is not wanted.
std::optional<InstanceAsker> AskOthers(const CommandLine& options) {
    if (options.files.size() != 1 || !options.foreign.isEmpty() || options.bNewWindow ||
        options.bTimeToInk || options.nPasswordFd || !options.strScreenshot.isEmpty() ||
        !options.strFamily.isEmpty()) {
        return std::nullopt;
    }
    InstanceCall call = InstanceCall::Of(options.files[0].Absolute().Bytes());
    call.nPage = options.nPage;
    call.strFind = options.strFind;
    return std::optional<InstanceAsker>(std::in_place, call);
}

// A picture shows the document as it is when it is opened for the first time,
// whatever the reader's settings are.
vkit::VelkoRuntime::Options RuntimeOptions(const CommandLine& options, const QString& strFresh) {
    const QSize size = options.size.value_or(CommandLine::kDefaultSize); // nearly, if it was kept
    vkit::VelkoRuntime::Options runtime;
    runtime.fnRegisterEngine = engines::mupdf::RegisterEngine;
    runtime.strDataFolder = strFresh;
    if (!options.strFamily.isEmpty()) {
        runtime.environment.strDeviceFamily = options.strFamily.toStdString();
    }
    runtime.environment.size = {static_cast<float>(size.width()),
                                static_cast<float>(size.height() - CommandBar::kHeight)};
    return runtime;
}

// What else the command line names, once the first window is on its way.
void OpenOthers(WindowList& windows, MainWindow& first, const CommandLine& options) {
    QMetaObject::invokeMethod(
        &first,
        [&] {
            for (std::size_t n = 1; n < options.files.size(); ++n) {
                windows.Open(options.files[n]);
            }
            for (const QString& strAddress : options.foreign) {
                MainWindow& window = first.IsFree() ? first : windows.Open({});
                window.RefuseAddress(strAddress);
            }
        },
        Qt::QueuedConnection);
}

int RunViewer(int argc, char** argv, const CommandLine& options, Platform::SecretText password) {
    std::optional<QTemporaryDir> fresh;
    if (!options.strScreenshot.isEmpty()) {
        fresh.emplace();
    }
    std::optional<InstanceAsker> others = AskOthers(options);
    const vkit::VelkoRuntime runtime(RuntimeOptions(options, fresh ? fresh->path() : QString()));
    auto pControl = vkit::VelkoPdfView::CreateControl();
    vkit::VelkoPdfView::Opening opening;
    if (!options.files.empty()) {
        opening =
            vkit::VelkoPdfView::BeginOpen(*pControl, options.files[0], std::exchange(password, {}));
    }
    if (!options.strScreenshot.isEmpty() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication app(argc, argv);
    if (others && others->IsTaken()) {
        return 0;
    }
    QApplication::setApplicationName("velko-viewer");
    QApplication::setDesktopFileName("velko-viewer");
    WindowList windows;
    const bool bPicture = !options.strScreenshot.isEmpty();
    MainWindow& window = windows.Add(
        std::move(pControl),
        bPicture && !options.size ? std::optional(CommandLine::kDefaultSize) : options.size);
    if (options.bTimeToInk) {
        ReportTimeToInk(window.View(), options);
    }
    if (bPicture) {
        new Screenshot(window, options, &window);
    } else {
        window.KeepPlaces();
        ShowFirst(window, options);
    }
    window.Begin(options.files.empty() ? vkit::FilePath() : options.files[0], std::move(opening));
    window.show();
    OpenOthers(windows, window, options);
    if (!bPicture && !options.bTimeToInk) {
        windows.Serve();
    }
    return QApplication::exec();
}

int Run(int argc, char** argv) {
    QByteArrayList arguments;
    for (int nArgument = 1; nArgument < argc; ++nArgument) {
        arguments << argv[nArgument];
    }
    QString strComplaint;
    const auto options = ParseCommandLine(arguments, strComplaint);
    if (!options) {
        std::fprintf(stderr, "velko-viewer: %s\n\n%s", qUtf8Printable(strComplaint),
                     qUtf8Printable(UsageText()));
        return kUsageError;
    }
    if (options->bHelp || options->bVersion) {
        const QString strText = options->bHelp ? UsageText() : "velko-viewer " VELKO_VERSION "\n";
        std::fputs(qUtf8Printable(strText), stdout);
        return 0;
    }
    std::optional<Platform::SecretText> password = Platform::SecretText();
    if (options->nPasswordFd) {
        password = ReadPassword(*options->nPasswordFd);
    }
    if (!password) {
        std::fprintf(stderr, "velko-viewer: No password can be read from descriptor %d\n",
                     *options->nPasswordFd);
        return kUsageError;
    }
    return RunViewer(argc, argv, *options, std::move(*password));
}

}

}

int main(int argc, char** argv) {
    return velko::viewer::Run(argc, argv);
}
