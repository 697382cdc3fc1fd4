// What of a file stays when it is replaced.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/foundation/Exception.h"
#include "platform/storage/StorageFile.h"
#include "platform/storage/StorageStreamTransaction.h"
#include "tests/support/FileOnDisk.h"

namespace {

using Windows::Storage::StorageFile;

constexpr const char* kList = "system.posix_acl_access";
constexpr const char* kFoldersList = "system.posix_acl_default";

// An access list as the system takes it: the owner, user 4242, the group, the
// mask and everybody else, with their permissions.
std::string AccessList(int nOwner, int nUser, int nGroup, int nMask, int nOther) {
    std::string strList("\x02\0\0\0", 4);
    const auto fnEntry = [&](char nTag, int nPermissions, std::uint32_t nId) {
        strList += {nTag, 0, static_cast<char>(nPermissions), 0};
        for (int nByte = 0; nByte < 4; ++nByte) {
            strList += static_cast<char>(nId >> (8 * nByte) & 0xFFU);
        }
    };
    constexpr std::uint32_t kNobody = 0xFFFFFFFF;
    fnEntry(1, nOwner, kNobody);
    fnEntry(2, nUser, 4242);
    fnEntry(4, nGroup, kNobody);
    fnEntry(16, nMask, kNobody);
    fnEntry(32, nOther, kNobody);
    return strList;
}

class AttributesTest : public testing::Test {
protected:
    bool Set(const std::string& strName, const char* pszAttribute, const std::string& strValue) {
        return ::setxattr((m_folder / strName).c_str(), pszAttribute, strValue.data(),
                          strValue.size(), 0) == 0;
    }
    std::string Get(const char* pszAttribute) {
        std::string strValue(1000, '\0');
        const ssize_t nLength = ::getxattr((m_folder / "target").c_str(), pszAttribute,
                                           strValue.data(), strValue.size());
        return nLength < 0 ? "none" : strValue.substr(0, static_cast<std::size_t>(nLength));
    }
    unsigned Mode() {
        struct stat status {};
        EXPECT_EQ(::stat((m_folder / "target").c_str(), &status), 0);
        return status.st_mode & 07777U;
    }
    void MakeTarget(mode_t nMode) {
        m_folder.Write("target", "old");
        ASSERT_EQ(::chmod((m_folder / "target").c_str(), nMode), 0);
    }
    concurrency::task<void> Replace() {
        const auto pSource = m_folder.File(m_folder.Write("source", "new"));
        auto replace = pSource->CopyAndReplaceAsync(m_folder.File(m_folder / "target")).AsTask();
        replace.wait();
        return replace;
    }

    const TemporaryFolder m_folder;
};

TEST_F(AttributesTest, TheUsersOwnAreKeptOrTheReplacementFails) {
    MakeTarget(0640);
    if (!Set("target", "user.origin", "somewhere")) {
        GTEST_SKIP() << "the file system keeps no attributes of users";
    }
    Set("target", "user.empty", "");
    Replace().get();
    EXPECT_EQ(Get("user.origin"), "somewhere");
    EXPECT_EQ(Get("user.empty"), "");
    for (const int nError : {EPERM, ENOSPC}) {
        StorageCalls calls;
        calls.Fail("fsetxattr", nError);
        const auto replace = Replace();
        EXPECT_TRUE(replace.is_failure());
        replace.mark_observed();
    }
    EXPECT_EQ(m_folder.Entries(), 2U);
}

TEST_F(AttributesTest, AnAccessListIsKeptAndNobodyGetsMoreWhereItCannotBe) {
    const std::string strList = AccessList(6, 4, 0, 4, 0);
    MakeTarget(0640);
    if (!Set("target", kList, strList)) {
        GTEST_SKIP() << "the file system keeps no access lists";
    }
    Replace().get();
    EXPECT_EQ(Get(kList), strList);
    EXPECT_EQ(Mode(),
              0640U); // its group's half is the list's mask: the group has nothing
    StorageCalls calls;
    calls.Fail("fsetxattr", EPERM, 1, true);
    Replace().get();
    EXPECT_EQ(Mode(), 0600U);

    // The list that a folder gives its new files is none of the old file's.
    Set(".", kFoldersList, AccessList(7, 7, 7, 7, 5));
    std::filesystem::remove(m_folder / "target");
    m_folder.Write("target", "old");
    ASSERT_EQ(::removexattr((m_folder / "target").c_str(), kList), 0);
    ASSERT_EQ(::chmod((m_folder / "target").c_str(), 0664), 0);
    Replace().get();
    EXPECT_EQ(Get(kList), "none");
    EXPECT_EQ(Mode(), 0664U);
}

TEST_F(AttributesTest, AnotherGroupGetsOnlyWhatEverybodyHas) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs a file of another owner";
    }
    for (const auto& [nBefore, nAfter] :
         std::vector<std::pair<mode_t, unsigned>>{{0660, 0600}, {0664, 0644}, {06775, 0755}}) {
        MakeTarget(nBefore);
        ASSERT_EQ(::chown((m_folder / "target").c_str(), 4242, 4242), 0);
        ASSERT_EQ(::chmod((m_folder / "target").c_str(), nBefore), 0);
        StorageCalls calls;
        calls.Fail("fchown", EPERM, 1, true);
        Replace().get();
        EXPECT_EQ(Mode(), nAfter);
    }
}

TEST_F(AttributesTest, OtherNamesAreToldOfAndKeepTheOldBytes) {
    MakeTarget(0640);
    const auto pTarget = m_folder.File(m_folder / "target");
    EXPECT_FALSE(pTarget->HasOtherNames());
    std::filesystem::create_hard_link(m_folder / "target", m_folder / "other");
    EXPECT_TRUE(pTarget->HasOtherNames());
    Replace().get();
    EXPECT_EQ(m_folder.Read("target"), "new");
    EXPECT_EQ(m_folder.Read("other"), "old");
    EXPECT_FALSE(pTarget->HasOtherNames());
}

TEST_F(AttributesTest, OnlyWhatDeadProcessesLeftIsSwept) {
    MakeTarget(0640);
    m_folder.Write(".velko-0123456789ab.tmp", "of a dead process");
    m_folder.Write(".velko-ba9876543210.tmp", "in use");
    m_folder.Write(".velko-mydocuments.tmp", "the reader's");
    std::filesystem::create_symlink("target", m_folder / ".velko-aaaaaaaaaaaa.tmp");
    const int nHeld = ::open((m_folder / ".velko-ba9876543210.tmp").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(nHeld, LOCK_EX), 0);
    Replace().get();
    EXPECT_FALSE(std::filesystem::exists(m_folder / ".velko-0123456789ab.tmp"));
    EXPECT_EQ(m_folder.Entries(), 5U); // with source and target
    ::close(nHeld);
    Replace().get();
    EXPECT_EQ(m_folder.Entries(), 4U);
    EXPECT_EQ(m_folder.Read(".velko-mydocuments.tmp"), "the reader's");
}

TEST_F(AttributesTest, WhereTheFileSystemCannotCopyTheBytesAreCarried) {
    MakeTarget(0640);
    for (const int nError : {EXDEV, EOPNOTSUPP}) {
        StorageCalls calls;
        calls.Fail("copy_file_range", nError, 1, true);
        Replace().get();
        EXPECT_EQ(calls.Count("pwrite"), 1);
        EXPECT_EQ(m_folder.Read("target"), "new");
    }
}

TEST_F(AttributesTest, AFolderThatGoesMeanwhileEndsTheTransaction) {
    const std::string strGone = m_folder / "gone";
    std::filesystem::create_directory(strGone);
    const auto pTransaction =
        StorageFile::FromPath(strGone + "/a")->OpenTransactedWriteAsync().AsTask().get();
    std::filesystem::remove_all(strGone);
    EXPECT_THROW(pTransaction->CommitAsync().AsTask().get(), Platform::FileNotFoundException);
    EXPECT_THROW(StorageFile::FromPath(strGone + "/a")->OpenTransactedWriteAsync().AsTask().get(),
                 Platform::FileNotFoundException);
}

} // namespace
