// From the start of the viewer's process to ink on the screen: it runs a bare X
// server with its frame buffer in a file and looks there for the first dark
// pixels of the page.
//
//     velko-bench-start VIEWER FILE.pdf [RUNS]
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/Measured.h"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLimit{30};
constexpr std::size_t kScreenWidth = 1280;
constexpr std::size_t kScreenHeight = 1024;
constexpr std::size_t kPixelBytes = 4;
// Menus, tool bars and titles lie outside of this part of the screen.
constexpr std::size_t kInkLeft = 300;
constexpr std::size_t kInkRight = 900;
constexpr std::size_t kInkTop = 250;
constexpr std::size_t kInkBottom = 900;
constexpr std::size_t kInkPixels = 200; // as many dark ones are text

[[noreturn]] void Fail(const std::string& strWhat) {
    std::fprintf(stderr, "%s\n", strWhat.c_str());
    std::exit(1);
}

class Process {
public:
    explicit Process(std::vector<std::string> words) {
        std::vector<char*> pointers;
        for (std::string& strWord : words) {
            pointers.push_back(strWord.data());
        }
        pointers.push_back(nullptr);
        if (posix_spawnp(&m_nPid, pointers[0], nullptr, nullptr, pointers.data(), environ) != 0) {
            Fail("cannot start " + words[0]);
        }
    }
    ~Process() {
        kill(m_nPid, SIGTERM);
        waitpid(m_nPid, nullptr, 0);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

private:
    pid_t m_nPid = -1;
};

// The server's frame buffer: a header of its own, then the rows of pixels.
class FrameBuffer {
public:
    explicit FrameBuffer(const std::string& strPath) : m_nFd(open(strPath.c_str(), O_RDONLY)) {
        struct stat status {};
        if (m_nFd < 0 || fstat(m_nFd, &status) != 0) {
            Fail("no frame buffer at " + strPath);
        }
        m_nSize = static_cast<std::size_t>(status.st_size);
        m_pBytes = static_cast<const std::uint8_t*>(
            mmap(nullptr, m_nSize, PROT_READ, MAP_SHARED, m_nFd, 0));
    }
    ~FrameBuffer() {
        munmap(const_cast<std::uint8_t*>(m_pBytes), m_nSize);
        close(m_nFd);
    }
    FrameBuffer(const FrameBuffer&) = delete;
    FrameBuffer& operator=(const FrameBuffer&) = delete;

    // Dark pixels on light ground: a page with text, not an empty screen.
    bool HasInk() const {
        const std::uint8_t* const pPixels =
            m_pBytes + (m_nSize - kScreenWidth * kScreenHeight * kPixelBytes);
        std::size_t nDark = 0;
        std::size_t nLight = 0;
        for (std::size_t nY = kInkTop; nY < kInkBottom; nY += 2) {
            for (std::size_t nX = kInkLeft; nX < kInkRight; nX += 2) {
                const std::uint8_t nGreen = pPixels[(nY * kScreenWidth + nX) * kPixelBytes + 1];
                nDark += nGreen < 0x60 ? 1 : 0;
                nLight += nGreen > 0xF0 ? 1 : 0;
            }
        }
        return nDark >= kInkPixels && nLight > nDark;
    }

private:
    int m_nFd;
    std::size_t m_nSize = 0;
    const std::uint8_t* m_pBytes = nullptr;
};

// Waits for a moment between two looks.
void Pause() {
    poll(nullptr, 0, 1);
}

// A bare X server on a display of its own choice.
class Server {
public:
    Server() : m_strFolder(MakeFolder()), m_tells(MakePipe()), m_process(Words()) {
        close(m_tells[1]);
        std::string strDisplay(1, ':');
        strDisplay += ReadDisplay();
        setenv("DISPLAY", strDisplay.c_str(), 1);
    }
    ~Server() { std::filesystem::remove_all(m_strFolder); }
    std::string FrameBufferFile() const { return m_strFolder + "/Xvfb_screen0"; }

private:
    static std::string MakeFolder() {
        std::string strTemplate = "/tmp/velko-bench-XXXXXX";
        if (mkdtemp(strTemplate.data()) == nullptr) {
            Fail("no temporary folder");
        }
        return strTemplate;
    }
    static std::array<int, 2> MakePipe() {
        std::array<int, 2> ends{-1, -1};
        if (pipe(ends.data()) != 0) { // the server inherits its end
            Fail("no pipe");
        }
        return ends;
    }
    std::vector<std::string> Words() const {
        const std::string strScreen =
            std::to_string(kScreenWidth) + 'x' + std::to_string(kScreenHeight) + "x24";
        return {"Xvfb",    "-displayfd", std::to_string(m_tells[1]),
                "-screen", "0",          strScreen,
                "-fbdir",  m_strFolder,  "-nolisten",
                "tcp",     "-noreset"};
    }

    // The server writes its display's number once it is ready.
    std::string ReadDisplay() const {
        std::string strNumber;
        for (char c = 0; read(m_tells[0], &c, 1) == 1 && c != '\n';) {
            strNumber += c;
        }
        close(m_tells[0]);
        if (strNumber.empty()) {
            Fail("the X server did not start");
        }
        return strNumber;
    }

    const std::string m_strFolder;
    const std::array<int, 2> m_tells;
    Process m_process;
};

double MillisecondsToInk(const FrameBuffer& screen, const std::string& strViewer,
                         const std::string& strFile) {
    const auto begin = Clock::now();
    const Process viewer({strViewer, strFile});
    while (!screen.HasInk()) {
        if (Clock::now() - begin > kLimit) {
            Fail("no ink");
        }
        Pause();
    }
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

void WaitUntilBlank(const FrameBuffer& screen) {
    const auto end = Clock::now() + kLimit;
    while (screen.HasInk()) {
        if (Clock::now() > end) {
            Fail("the ink of the run before stays");
        }
        Pause();
    }
}

}

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "velko-bench-start VIEWER FILE.pdf [RUNS]\n");
        return 2;
    }
    const int nRuns = argc > 3 ? std::atoi(argv[3]) : 10;
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    const Server server;
    const FrameBuffer screen(server.FrameBufferFile());
    velko::bench::Series times;
    for (int n = 0; n < nRuns; ++n) {
        times.Add(MillisecondsToInk(screen, argv[1], argv[2]));
        WaitUntilBlank(screen);
    }
    std::printf("process start to ink: %s\n", times.Text("ms").c_str());
    return 0;
}
