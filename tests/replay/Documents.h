// Files for the tests of this folder, in a folder that goes with the fixture.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/pdf_writer/PdfWriter.h"

namespace velko::testing {

class DocumentsTest : public ::testing::Test {
protected:
    DocumentsTest();
    ~DocumentsTest() override;

    std::string PathOf(const std::string& strName) const { return m_folder / strName; }
    std::string Write(const std::string& strName, const std::string& strBytes) const;
    // Pages of 612x792 points, each filled with marks of its own.
    std::string WritePages(const std::string& strName, int nPages) const;

private:
    std::filesystem::path m_folder;
};

// A page whose marks differ from page to page and from corner to corner.
PdfPage MarkedPage(int nPage);

}
