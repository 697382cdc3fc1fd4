// Runs the fuzz target once for each file of the command line.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize);

int main(int argc, char** argv) {
    for (int n = 1; n < argc; ++n) {
        std::ifstream file(argv[n], std::ios::binary);
        if (!file) {
            std::fprintf(stderr, "cannot read %s\n", argv[n]);
            return 2;
        }
        const std::string strBytes{std::istreambuf_iterator<char>(file), {}};
        std::printf("%s\n", argv[n]);
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(strBytes.data()),
                               strBytes.size());
    }
    return 0;
}
