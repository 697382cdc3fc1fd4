// The engine's floor: the library below the engine module, called as directly
// as it can be, on the same page and for the same pixels. What the control
// needs beyond this is its own cost.
//
// Units: pixels. Threads: one at a time. Errors: `std::runtime_error`.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velko::bench {

class MuPdfFloor {
public:
    // Opens the file and counts its pages.
    explicit MuPdfFloor(const std::string& strPath);
    ~MuPdfFloor();
    MuPdfFloor(const MuPdfFloor&) = delete;
    MuPdfFloor& operator=(const MuPdfFloor&) = delete;

    int PageCount() const;

    // The page stretched over `nWidth` by `nHeight` pixels, white below it,
    // annotations included; 4 bytes a pixel (B, G, R, A), rows tightly packed.
    const std::vector<std::uint8_t>& RenderPage(int nPage, int nWidth, int nHeight);

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

}
