// A second start with a file that a running viewer shows.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <QElapsedTimer>
#include <filesystem>
#include <future>

#include "app/viewer/instance/InstanceAsker.h"
#include "app/viewer/instance/InstanceServer.h"
#include "tests/qt/ViewFixture.h"

namespace velko {
namespace {

using testing::RunUntil;
using viewer::InstanceAsker;
using viewer::InstanceCall;
using viewer::InstanceServer;
using viewer::InstanceFolder::Sockets;

class InstanceTest : public testing::ViewFixture {
protected:
    InstanceTest() {
        const QString strSession = m_folder.filePath("session");
        std::filesystem::create_directory(strSession.toStdString());
        std::filesystem::permissions(strSession.toStdString(), std::filesystem::perms::owner_all);
        qputenv("XDG_RUNTIME_DIR", strSession.toLocal8Bit());
        m_strShown = Write("shown.pdf", "any").toStdString();
    }
    ~InstanceTest() override { qunsetenv("XDG_RUNTIME_DIR"); }

    std::unique_ptr<InstanceServer> Serve() {
        InstanceServer::Hands hands;
        hands.fnShown = [this] { return std::vector{m_strShown}; };
        hands.fnShow = [this](const std::string& strPath, const InstanceCall& call) {
            EXPECT_EQ(strPath, m_strShown);
            m_calls.push_back(call);
        };
        return std::make_unique<InstanceServer>(std::move(hands), nullptr);
    }
    // As another process does, beside this one's event loop.
    static bool Ask(const InstanceCall& call) {
        auto answer =
            std::async(std::launch::async, [call] { return InstanceAsker(call).IsTaken(); });
        RunUntil(
            [&] { return answer.wait_for(std::chrono::seconds(0)) == std::future_status::ready; });
        return answer.get();
    }

    std::string m_strShown;
    std::vector<InstanceCall> m_calls;
};

TEST_F(InstanceTest, OnlyAFileThatIsShownThereIsHandedOver) {
    const std::string strLink = m_folder.filePath("link.pdf").toStdString();
    std::filesystem::create_symlink(m_strShown, strLink);
    EXPECT_FALSE(Ask(InstanceCall::Of(m_strShown))) << "nobody is there";
    const auto pServer = Serve();
    InstanceCall call = InstanceCall::Of(m_strShown);
    call.nPage = 7;
    call.strFind = QStringLiteral("Größe");
    EXPECT_TRUE(Ask(call));
    EXPECT_TRUE(Ask(InstanceCall::Of(strLink))) << "the same file by another path";
    EXPECT_FALSE(Ask(InstanceCall::Of(Write("other.pdf", "any").toStdString())));
    InstanceCall elsewhere = call;
    elsewhere.strDisplay = "another one";
    EXPECT_FALSE(Ask(elsewhere));
    ASSERT_EQ(m_calls.size(), 2U);
    EXPECT_EQ(m_calls[0].nPage, 7);
    EXPECT_EQ(m_calls[0].strFind, call.strFind);
    EXPECT_EQ(m_calls[1].nPage, std::nullopt);
}

TEST_F(InstanceTest, DeadAndHangingProcessesHoldNobodyUp) {
    auto pServer = Serve();
    ASSERT_EQ(Sockets().size(), 1U);
    {
        QElapsedTimer time;
        time.start();
        InstanceAsker asker(InstanceCall::Of(m_strShown)); // this thread is the one to answer
        EXPECT_FALSE(asker.IsTaken());
        EXPECT_LT(time.elapsed(), 400);
    }
    RunUntil([] { return true; });
    EXPECT_TRUE(m_calls.empty()) << "nobody waits for it any more";
    pServer.reset();
    EXPECT_TRUE(Sockets().empty());
    std::string strDead;
    { const auto dead = viewer::InstanceFolder::Listen(strDead); } // and leaves its socket
    ASSERT_EQ(Sockets().size(), 1U);
    EXPECT_FALSE(Ask(InstanceCall::Of(m_strShown)));
    EXPECT_TRUE(Sockets().empty()) << "what is dead is removed";
    std::filesystem::permissions(m_folder.filePath("session").toStdString(),
                                 std::filesystem::perms::all);
    EXPECT_EQ(viewer::InstanceFolder::Path(true), "") << "others may write there";
}

TEST_F(InstanceTest, BytesThatAreNoCallAreRefused) {
    const QByteArray good = InstanceCall::Of("/a/b.pdf").Bytes();
    for (qsizetype nSize = 0; nSize < good.size(); ++nSize) {
        EXPECT_FALSE(InstanceCall::From(good.left(nSize)).has_value());
    }
    EXPECT_EQ(InstanceCall::From(good)->strPath, "/a/b.pdf");
    QByteArray bad = good;
    bad[0] = 'x';
    EXPECT_TRUE(InstanceCall::IsBad(bad));
    bad = good;
    bad[4] = '\x7f'; // its size
    EXPECT_TRUE(InstanceCall::IsBad(bad));
    const auto pServer = Serve();
    auto socket = viewer::InstanceFolder::Connect(Sockets()[0]);
    ASSERT_EQ(::send(socket.Get(), bad.data(), static_cast<std::size_t>(bad.size()), MSG_NOSIGNAL),
              bad.size());
    char chAnswer = 0;
    EXPECT_TRUE(RunUntil([&] { return ::recv(socket.Get(), &chAnswer, 1, 0) == 1; }));
    EXPECT_EQ(chAnswer, 'n');
}

}
}
