// A folder for one test, and files in it.
#pragma once

#include <stdlib.h> // mkdtemp

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string strName = (std::filesystem::temp_directory_path() / "velko-test-XXXXXX");
        if (::mkdtemp(strName.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        m_strPath = strName;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_strPath, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& Path() const { return m_strPath; }
    std::string operator/(const std::string& strName) const { return m_strPath + "/" + strName; }

    std::string Write(const std::string& strName, const std::string& strBytes) const {
        std::ofstream(*this / strName, std::ios::binary) << strBytes;
        return *this / strName;
    }
    std::string Read(const std::string& strName) const {
        std::ifstream in(*this / strName, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // How many entries the folder has, hidden ones too.
    std::size_t Entries() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_strPath), {}));
    }

private:
    std::string m_strPath;
};
