#include "bench/Corpus.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace velko::bench {

std::string CorpusFile(const std::string& strName) {
    const std::filesystem::path path = std::filesystem::path(VELKO_CORPUS) / "made" / strName;
    if (!std::filesystem::exists(path)) {
        std::cerr << "not there: " << path << std::endl;
        std::exit(2);
    }
    return path.string();
}

}
