// The rules of the source tree, as checks over its files: who may include whom,
// where toolkits and engines may be seen, and words that have no place.
//
// A check answers one line of text for each breach, with the file's path.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace velko::structure {

struct SourceFile {
    std::string strPath; // from the root, with slashes
    std::string strText;
};

// The files of the tree that are ours to check: code, build files, scripts and
// documents, without build folders and test data.
std::vector<SourceFile> ReadTree(const std::filesystem::path& root);

// The folder whose rule holds for a path: "viewers/core" for what lies in it,
// "platform" for each folder of contracts. Empty for a path without a rule.
std::string AreaOf(std::string_view strPath);

std::vector<std::string> CheckIncludes(const SourceFile& file, const std::filesystem::path& root);
std::vector<std::string> CheckWords(const SourceFile& file);
std::vector<std::string> CheckHeader(const SourceFile& file);

}
