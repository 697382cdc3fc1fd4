// velko-replay: the view control without a display, driven by a script.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include <QApplication>

#include "tools/replay/Options.h"
#include "tools/replay/Output.h"
#include "tools/replay/Script.h"
#include "tools/replay/Session.h"

namespace {

using namespace velko::replay;

int RunWith(const Options& options, std::istream& input) {
    Output output(stdout);
    Session session(options, output);
    session.PrintEvents();
    const int nStatus = RunScript(input, session, std::cerr);
    output.Close();
    return nStatus;
}

int RunFrom(const Options& options) {
    if (!options.strScript) {
        return RunWith(options, std::cin);
    }
    std::ifstream file(*options.strScript);
    if (!file) {
        throw UsageError("cannot read " + *options.strScript);
    }
    return RunWith(options, file);
}

// The offscreen platform asks for a folder that only a desktop session has.
void PrintQtMessage(QtMsgType, const QMessageLogContext&, const QString& strMessage) {
    if (!strMessage.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR"))) {
        std::cerr << strMessage.toStdString() << std::endl;
    }
}

}

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(PrintQtMessage);
    std::ios::sync_with_stdio(false);
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        const Options options = ParseOptions(arguments);
        if (options.bHelp) {
            std::cout << UsageText();
            return kExitOk;
        }
        int nQtArguments = 1; // Qt is to read none of ours
        const QApplication application(nQtArguments, argv);
        return RunFrom(options);
    } catch (const UsageError& error) {
        std::cerr << "velko-replay: " << error.what() << std::endl;
        return kExitFormat;
    } catch (const std::exception& error) {
        std::cerr << "velko-replay: " << error.what() << std::endl;
        return kExitFailure;
    }
}
