// Peak memory of a whole process that scrolls a document to its end, one screen
// at a time: velko-replay, and beside it the engine's floor drawing the same
// pages. What counts is how little it grows from 200 pages to 2,000.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/Corpus.h"
#include "bench/floor/MuPdfFloor.h"

extern char** environ;

namespace {

using velko::bench::CorpusFile;

constexpr int kPageWidth = 1000; // as the control shows a page at this canvas
constexpr int kPageHeight = 1294;
constexpr int kCanvasHeight = 1400;

struct Document {
    const char* szName;
    int nPages;
};

constexpr std::array<Document, 2> kDocuments{{{"text-200.pdf", 200}, {"text-2000.pdf", 2000}}};

// Runs a program to its end; its peak resident size in KiB. Ends this one when
// the program fails.
long PeakOf(std::vector<std::string> words) {
    std::vector<char*> pointers;
    for (std::string& strWord : words) {
        pointers.push_back(strWord.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t nPid = -1;
    const int nError = posix_spawn(&nPid, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int nStatus = 0;
    rusage usage{};
    if (nError != 0 || wait4(nPid, &nStatus, 0, &usage) != nPid || !WIFEXITED(nStatus) ||
        WEXITSTATUS(nStatus) != 0) {
        std::fprintf(stderr, "%s failed\n", pointers[0]);
        std::exit(1);
    }
    return usage.ru_maxrss;
}

std::string WriteScript(const std::string& strDocument, int nPages) {
    const std::string strPath =
        (std::filesystem::temp_directory_path() / "velko-bench-memory.jsonl").string();
    std::ofstream script(strPath);
    script << R"({"op":"open","path":")" << strDocument << "\"}\n"
           << R"({"op":"wait"})" << '\n';
    const int nScreens = nPages * kPageHeight / kCanvasHeight + 20; // the gaps, and to the end
    for (int n = 0; n < nScreens; ++n) {
        script << R"({"op":"move","dy":)" << kCanvasHeight << ",\"dx\":0}\n"
               << R"({"op":"wait"})" << '\n';
    }
    return strPath;
}

int DrawAllPages(const char* szPath) {
    velko::bench::MuPdfFloor floor(szPath);
    for (int n = 0; n < floor.PageCount(); ++n) {
        floor.RenderPage(n, kPageWidth, kPageHeight);
    }
    return 0;
}

}

int main(int argc, char** argv) {
    if (argc == 3 && std::string(argv[1]) == "--floor") {
        return DrawAllPages(argv[2]);
    }
    for (const Document& document : kDocuments) {
        const std::string strPath = CorpusFile(document.szName);
        const long nControl = PeakOf({VELKO_REPLAY, WriteScript(strPath, document.nPages)});
        const long nFloor = PeakOf({argv[0], "--floor", strPath});
        std::printf("%4d pages: control %ld KiB, floor %ld KiB, ratio %.2f\n", document.nPages,
                    nControl, nFloor, static_cast<double>(nControl) / static_cast<double>(nFloor));
        std::fflush(stdout);
    }
    return 0;
}
