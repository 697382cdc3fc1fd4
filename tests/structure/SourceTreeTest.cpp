#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/structure/SourceTree.h"

namespace velko::structure {
namespace {

const std::filesystem::path kRoot = std::filesystem::current_path(); // tests run in the root

std::string Joined(const std::vector<std::string>& lines) {
    std::string strAll;
    for (const std::string& strLine : lines) {
        strAll += strLine + "\n";
    }
    return strAll;
}

template <class Check>
std::vector<std::string> OverTree(Check fnCheck) {
    std::vector<std::string> breaches;
    for (const SourceFile& file : ReadTree(kRoot)) {
        const auto found = fnCheck(file);
        breaches.insert(breaches.end(), found.begin(), found.end());
    }
    return breaches;
}

TEST(SourceTree, IncludesFollowTheLayers) {
    const auto breaches =
        OverTree([](const SourceFile& file) { return CheckIncludes(file, kRoot); });
    EXPECT_TRUE(breaches.empty()) << Joined(breaches);
}

TEST(SourceTree, HoldsNoUnfinishedBusiness) {
    const auto breaches = OverTree(CheckWords);
    EXPECT_TRUE(breaches.empty()) << Joined(breaches);
}

TEST(SourceTree, HeadersBeginWithTheirContract) {
    const auto breaches = OverTree(CheckHeader);
    EXPECT_TRUE(breaches.empty()) << Joined(breaches);
}

// The checks themselves: what they must report, and what they must let pass.

TEST(SourceTreeChecks, SeeTheWholeTree) {
    const auto files = ReadTree(kRoot);
    for (const char* szExpected : {"platform/ui/Element.h", "CMakeLists.txt", "README.md", "run"}) {
        EXPECT_TRUE(std::any_of(files.begin(), files.end(), [&](const SourceFile& file) {
            return file.strPath == szExpected;
        })) << szExpected;
    }
}

struct IncludeCase {
    const char* szPath;
    const char* szLine;
    bool bAllowed;
};

TEST(SourceTreeChecks, KnowWhoMaySeeWhom) {
    const std::vector<IncludeCase> cases{
        {"document/X.cpp", "#include \"document/engine/PDFDoc.h\"", true},
        {"document/X.cpp", "#include \"control/PDFViewCtrl.h\"", false},
        {"document/engine/X.h", "#include \"document/VLK_Document.h\"", false},
        {"surface/X.cpp", "#include \"viewers/core/IPDFViewer.h\"", false},
        {"viewers/core/X.cpp", "#include \"surface/PDFViewCanvas.h\"", true},
        {"viewers/single/X.cpp", "#include \"viewers/core/IPDFViewer.h\"", true},
        {"viewers/core/X.cpp", "  #include \"control/PDFViewCtrl.h\"", false},
        {"viewers/single/X.cpp", "#include \"viewers/continuous/PDFConuiunePagesViewer.h\"", false},
        {"control/X.cpp", "#include \"viewers/continuous/PDFConuiunePagesViewer.h\"", true},
        {"control/X.cpp", "#include \"platform/qt/QtDispatcher.h\"", false},
        {"control/X.cpp", "#include \"platform/fake/ManualClock.h\"", false},
        {"control/X.cpp", "#include <QString>", false},
        {"control/X.cpp", "#include <queue>", true},
        {"widget/X.cpp", "#include \"platform/qt/QtDispatcher.h\"", true},
        {"widget/X.cpp", "#include \"engines/mupdf/Register.h\"", true},
        {"widget/X.cpp", "#include \"engines/mupdf/Guard.h\"", false},
        {"component/X.cpp", "#include \"engines/mupdf/Register.h\"", false},
        {"engines/mupdf/X.cpp", "#include <mupdf/fitz.h>", true},
        {"document/X.cpp", "#include <mupdf/fitz.h>", false},
        {"engines/mupdf/X.cpp", "#include \"document/VLK_Document.h\"", false},
        {"tests/x/X.cpp", "#include \"control/PDFViewCtrl.h\"", true},
        {"tests/x/X.cpp", "#include <mupdf/fitz.h>", false},
        {"control/X.cpp", "#include \"PDFViewCtrl.h\"", false},
        {"newfolder/X.cpp", "#include <vector>", false},
    };
    for (const IncludeCase& item : cases) {
        const SourceFile file{item.szPath, std::string(item.szLine) + "\n"};
        EXPECT_EQ(CheckIncludes(file, kRoot).empty(), item.bAllowed)
            << item.szPath << ": " << item.szLine;
    }
}

TEST(SourceTreeChecks, FindWordsOnlyAsWords) {
    const auto count = [](const std::string& strText) {
        return CheckWords({"a.cpp", strText}).size();
    };
    EXPECT_EQ(count(std::string("// TO") + "DO: later\n"), 1U);
    EXPECT_EQ(count(std::string("x(); // good for ") + "now\n"), 1U);
    EXPECT_EQ(count(std::string("// see Pa") + "rt 2.3\n"), 1U);
    EXPECT_EQ(count("setPlaceholderText(); // Part of it; TODOS\n"), 0U);
}

TEST(SourceTreeChecks, WantAContractAndAGuardInHeaders) {
    EXPECT_EQ(CheckHeader({"a.h", "// What it is.\n#pragma once\n"}).size(), 0U);
    EXPECT_EQ(CheckHeader({"a.h", "#pragma once\n"}).size(), 1U);
    EXPECT_EQ(CheckHeader({"a.h", "// What it is.\nint x;\n"}).size(), 1U);
}

}
}
