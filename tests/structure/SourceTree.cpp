#include "tests/structure/SourceTree.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <sstream>

namespace velko::structure {

namespace fs = std::filesystem;

namespace {

using Areas = std::set<std::string, std::less<>>;

// Each area with those that it may include directly; what stands further down
// is added by `Reachable`.
const std::map<std::string, Areas, std::less<>>& DirectUses() {
    static const std::map<std::string, Areas, std::less<>> s_uses{
        {"platform", {}},
        {"platform/qt", {"platform"}},
        {"platform/fake", {"platform"}},
        {"settings", {"platform"}},
        {"document/engine", {"platform"}},
        {"document", {"document/engine"}},
        {"engines/mupdf", {"document/engine"}},
        {"surface", {"document"}},
        {"viewers/core", {"surface", "settings"}},
        {"viewers/continuous", {"viewers/core"}},
        {"viewers/single", {"viewers/core"}},
        {"viewers/reflow", {"viewers/core"}},
        {"control", {"viewers/continuous", "viewers/single", "viewers/reflow"}},
        {"component", {"control"}},
        {"widget", {"component", "platform/qt"}},
        {"app", {"widget"}},
        {"tools", {"widget"}},
    };
    return s_uses;
}

// These see everything, as far as Qt and the engine's library go elsewhere.
const Areas kFreeAreas{"tests", "bench", "fuzz"};
const Areas kQtAreas{"platform/qt", "widget", "app", "tools", "tests", "bench"};
constexpr std::string_view kEngineEntry = "engines/mupdf/Register.h";
const Areas kEngineChoosers{"widget", "app", "tools"};

Areas Reachable(const std::string& strArea) {
    Areas found;
    std::vector<std::string> open{strArea};
    while (!open.empty()) {
        const std::string strNext = open.back();
        open.pop_back();
        if (found.insert(strNext).second) {
            const Areas& direct = DirectUses().at(strNext);
            open.insert(open.end(), direct.begin(), direct.end());
        }
    }
    return found;
}

struct Include {
    std::string strName;
    bool bQuoted = false;
};

std::optional<Include> ParseInclude(std::string_view strLine) {
    const auto nHash = strLine.find_first_not_of(" \t");
    if (nHash == std::string_view::npos || strLine.substr(nHash, 8) != "#include") {
        return std::nullopt;
    }
    const auto nOpen = strLine.find_first_of("\"<", nHash);
    const auto nClose =
        nOpen == std::string_view::npos ? nOpen : strLine.find_first_of("\">", nOpen + 1);
    if (nClose == std::string_view::npos) {
        return std::nullopt;
    }
    return Include{std::string(strLine.substr(nOpen + 1, nClose - nOpen - 1)),
                   strLine[nOpen] == '"'};
}

bool IsQtHeader(const Include& include) {
    return !include.bQuoted && include.strName.size() > 1 && include.strName[0] == 'Q' &&
           std::isupper(static_cast<unsigned char>(include.strName[1])) != 0;
}

bool IsMuPdfHeader(const Include& include) {
    return include.strName.starts_with("mupdf/");
}

std::string FolderOf(std::string_view strPath) {
    const auto nSlash = strPath.rfind('/');
    return std::string(strPath.substr(0, nSlash == std::string_view::npos ? 0 : nSlash));
}

bool MaySee(const std::string& strArea, const std::string& strOther, const std::string& strName) {
    if (kFreeAreas.contains(strArea)) {
        return true;
    }
    if (strName == kEngineEntry && kEngineChoosers.contains(strArea)) {
        return true;
    }
    return !kFreeAreas.contains(strOther) && Reachable(strArea).contains(strOther);
}

// What is wrong with the include; empty when nothing is.
std::string Complaint(const std::string& strPath, const Include& include, const fs::path& root) {
    const std::string strArea = AreaOf(strPath);
    if (IsQtHeader(include)) {
        return kQtAreas.contains(strArea) ? "" : "Qt is not to be seen here";
    }
    if (IsMuPdfHeader(include)) {
        const bool bAllowed = strArea == "engines/mupdf" || strPath.starts_with("bench/floor/");
        return bAllowed ? "" : "the engine's library is not to be seen here";
    }
    if (!include.bQuoted || include.strName.ends_with(".moc")) {
        return "";
    }
    if (!fs::is_regular_file(root / include.strName)) {
        return "no such file from the root";
    }
    if (include.strName.ends_with("_p.h") && FolderOf(include.strName) != FolderOf(strPath)) {
        return "private to another folder";
    }
    const std::string strOther = AreaOf(include.strName);
    return MaySee(strArea, strOther, include.strName) ? "" : strArea + " may not see " + strOther;
}

template <class Function>
void ForEachLine(const std::string& strText, Function fnLine) {
    std::istringstream lines(strText);
    std::string strLine;
    for (int nLine = 1; std::getline(lines, strLine); ++nLine) {
        fnLine(nLine, strLine);
    }
}

bool IsWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool HasWord(std::string_view strLine, std::string_view strWord) {
    for (auto n = strLine.find(strWord); n != std::string_view::npos;
         n = strLine.find(strWord, n + 1)) {
        const auto nEnd = n + strWord.size();
        const bool bBegins = n == 0 || !IsWordCharacter(strLine[n - 1]);
        if (bBegins && (nEnd == strLine.size() || !IsWordCharacter(strLine[nEnd]))) {
            return true;
        }
    }
    return false;
}

// Put together from halves, so that this file passes its own check.
const std::vector<std::string>& UnwantedWords() {
    static const std::vector<std::string> s_words{
        std::string("TO") + "DO",
        std::string("FIX") + "ME",
        std::string("XX") + "X",
        std::string("HA") + "CK",
        std::string("for ") + "now",
        std::string("place") + "holder",
        std::string("not ") + "implemented",
        std::string("un") + "implemented",
        std::string("Rul") + "ing",
    };
    return s_words;
}

// A number such as "2.3" after a capitalised word that names a document's piece.
bool CitesNumberedPiece(std::string_view strLine) {
    static const std::string s_strWord = std::string("Pa") + "rt ";
    for (auto n = strLine.find(s_strWord); n != std::string_view::npos;
         n = strLine.find(s_strWord, n + 1)) {
        const std::string_view strNumber = strLine.substr(n + s_strWord.size());
        if (strNumber.size() > 2 && std::isdigit(static_cast<unsigned char>(strNumber[0])) != 0 &&
            strNumber[1] == '.') {
            return true;
        }
    }
    return false;
}

bool IsChecked(const fs::path& path) {
    static const std::set<std::string> s_suffixes{".h",  ".cpp", ".cmake",  ".txt",
                                                  ".md", ".sh",  ".desktop"};
    static const std::set<std::string> s_scripts{"run", "test"};
    return s_suffixes.contains(path.extension().string()) ||
           s_scripts.contains(path.filename().string());
}

bool IsSkippedFolder(const fs::path& path) {
    static const std::set<std::string> s_skipped{".git", "build", "data", ".cache"};
    return s_skipped.contains(path.filename().string());
}

SourceFile Read(const fs::path& path, const fs::path& root) {
    std::ifstream file(path, std::ios::binary);
    return {fs::relative(path, root).generic_string(),
            std::string(std::istreambuf_iterator<char>(file), {})};
}

}

std::vector<SourceFile> ReadTree(const fs::path& root) {
    std::vector<SourceFile> files;
    for (auto it = fs::recursive_directory_iterator(root); it != fs::end(it); ++it) {
        if (it->is_directory() && IsSkippedFolder(it->path())) {
            it.disable_recursion_pending();
        } else if (it->is_regular_file() && IsChecked(it->path())) {
            files.push_back(Read(it->path(), root));
        }
    }
    return files;
}

std::string AreaOf(std::string_view strPath) {
    std::string strBest;
    const auto consider = [&](const std::string& strArea) {
        if (strPath.starts_with(strArea + "/") && strArea.size() > strBest.size()) {
            strBest = strArea;
        }
    };
    for (const auto& [strArea, uses] : DirectUses()) {
        consider(strArea);
    }
    std::for_each(kFreeAreas.begin(), kFreeAreas.end(), consider);
    return strBest;
}

std::vector<std::string> CheckIncludes(const SourceFile& file, const fs::path& root) {
    std::vector<std::string> breaches;
    if (!file.strPath.ends_with(".h") && !file.strPath.ends_with(".cpp")) {
        return breaches;
    }
    if (AreaOf(file.strPath).empty()) {
        return {file.strPath + ": lies in a folder without a rule"};
    }
    ForEachLine(file.strText, [&](int nLine, const std::string& strLine) {
        const auto include = ParseInclude(strLine);
        const std::string strComplaint =
            include ? Complaint(file.strPath, *include, root) : std::string();
        if (!strComplaint.empty()) {
            breaches.push_back(file.strPath + ":" + std::to_string(nLine) + ": " +
                               include->strName + ": " + strComplaint);
        }
    });
    return breaches;
}

std::vector<std::string> CheckWords(const SourceFile& file) {
    std::vector<std::string> breaches;
    ForEachLine(file.strText, [&](int nLine, const std::string& strLine) {
        const std::string strAt = file.strPath + ":" + std::to_string(nLine) + ": ";
        for (const std::string& strWord : UnwantedWords()) {
            if (HasWord(strLine, strWord)) {
                breaches.push_back(strAt + "\"" + strWord + "\"");
            }
        }
        if (CitesNumberedPiece(strLine)) {
            breaches.push_back(strAt + "cites a numbered piece of another document");
        }
    });
    return breaches;
}

std::vector<std::string> CheckHeader(const SourceFile& file) {
    if (!file.strPath.ends_with(".h")) {
        return {};
    }
    std::vector<std::string> breaches;
    if (!file.strText.starts_with("//")) {
        breaches.push_back(file.strPath + ": does not begin with the comment that is its contract");
    }
    if (file.strText.find("#pragma once\n") == std::string::npos) {
        breaches.push_back(file.strPath + ": has no #pragma once");
    }
    return breaches;
}

}
