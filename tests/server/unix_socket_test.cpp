// Where velmod puts its unix socket, and where it must not.
#include "server/unix_socket.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <stdexcept>

#include <gtest/gtest.h>

#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

using namespace velmo;
using namespace velmo::server;
using velmo::tests::Descriptor;
using velmo::tests::TemporaryFolder;

namespace {

class UnixSocket : public ::testing::Test {
protected:
    UnixSocket() { setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1); }

    std::string inside(const std::string& name) const
    {
        return (folder.path() / name).string();
    }

    static Descriptor bound_socket(const std::string& path)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        Descriptor result(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        EXPECT_EQ(bind(result.get(), reinterpret_cast<sockaddr*>(&address), sizeof address),
                  0);
        return result;
    }

    TemporaryFolder folder;
};

TEST_F(UnixSocket, ThePathIsInTheUsersRuntimeFolderAndTheSameEachTime)
{
    const auto path = default_socket_path("0000", {"127.0.0.1", 2809});
    EXPECT_EQ(path, inside("velmo/0000-127.0.0.1-2809.sock"));
    EXPECT_EQ(default_socket_path("0000", {"127.0.0.1", 2809}), path);
    struct stat found;
    ASSERT_EQ(stat(inside("velmo").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 07777, 0700u);
}

TEST_F(UnixSocket, ServersOfDifferentNamesHostsOrPortsHaveDifferentPaths)
{
    const auto path = default_socket_path("0000", {"127.0.0.1", 2809});
    EXPECT_NE(default_socket_path("0001", {"127.0.0.1", 2809}), path);
    EXPECT_NE(default_socket_path("0000", {"127.0.0.2", 2809}), path);
    EXPECT_NE(default_socket_path("0000", {"127.0.0.1", 2810}), path);
}

TEST_F(UnixSocket, WithAPortThatIsYetUnknownThePathIsTheProcesss)
{
    const auto path = default_socket_path("0000", {"127.0.0.1", 0});
    EXPECT_EQ(path, inside("velmo/0000-pid-" + std::to_string(getpid()) + ".sock"));
}

// A process that has ended and been waited for.
pid_t gone_process()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

TEST_F(UnixSocket, WhatAKilledServerLeftIsRemoved)
{
    ASSERT_EQ(mkdir(inside("velmo").c_str(), 0700), 0);
    const std::string gone = std::to_string(gone_process());
    const std::string here = std::to_string(getpid());
    const std::string stale = inside("velmo/other-pid-" + gone + ".sock");
    const std::string answering = inside("velmo/0000-pid-" + gone + ".sock");
    const std::string starting = inside("velmo/0000-pid-" + here + ".sock");
    const std::string lasting = inside("velmo/0000-127.0.0.1-2809.sock");
    const std::string file = inside("velmo/file-pid-" + gone + ".sock");
    bound_socket(stale);
    bound_socket(starting);
    bound_socket(lasting);
    std::ofstream(file) << "x";
    const Descriptor live = bound_socket(answering);
    ASSERT_EQ(listen(live.get(), 1), 0);
    EXPECT_TRUE(default_socket_path("0000", {"127.0.0.1", 0}));
    EXPECT_NE(access(stale.c_str(), F_OK), 0);
    for (const std::string& kept : {answering, starting, lasting, file})
        EXPECT_EQ(access(kept.c_str(), F_OK), 0) << kept;
}

TEST_F(UnixSocket, AServersNameCannotLeadElsewhere)
{
    EXPECT_EQ(default_socket_path("../a b/c", {"::1", 1}),
              inside("velmo/.._a_b_c-__1-1.sock"));
}

TEST_F(UnixSocket, AFolderThatOthersMayEnterIsNotUsed)
{
    ASSERT_EQ(mkdir(inside("open").c_str(), 0700), 0);
    EXPECT_TRUE(is_private_folder(inside("open")));
    for (const mode_t mode : {0750, 0705, 0777, 01777}) {
        ASSERT_EQ(chmod(inside("open").c_str(), mode), 0);
        EXPECT_FALSE(is_private_folder(inside("open"))) << std::oct << mode;
    }
}

TEST_F(UnixSocket, AnotherUsersFolderIsNotUsed)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only the superuser can give a folder away";
    ASSERT_EQ(mkdir(inside("given").c_str(), 0700), 0);
    ASSERT_EQ(chown(inside("given").c_str(), 12345, 12345), 0);
    EXPECT_FALSE(is_private_folder(inside("given")));
}

TEST_F(UnixSocket, ALinkToAFolderIsNotFollowed)
{
    ASSERT_EQ(mkdir(inside("real").c_str(), 0700), 0);
    ASSERT_EQ(symlink(inside("real").c_str(), inside("link").c_str()), 0);
    EXPECT_FALSE(is_private_folder(inside("link")));
}

TEST_F(UnixSocket, AFileIsNoFolder)
{
    std::ofstream(inside("file")) << "x";
    EXPECT_FALSE(is_private_folder(inside("file")));
    EXPECT_FALSE(is_private_folder(inside("no/such/parent")));
}

TEST_F(UnixSocket, AFreePathAndALeftOverSocketAreFine)
{
    EXPECT_NO_THROW(check_socket_path(inside("new.sock")));
    bound_socket(inside("old.sock"));
    EXPECT_NO_THROW(check_socket_path(inside("old.sock")));
}

TEST_F(UnixSocket, ALiveSocketIsLeftAlone)
{
    const Descriptor live = bound_socket(inside("live.sock"));
    ASSERT_EQ(listen(live.get(), 1), 0);
    EXPECT_THROW(check_socket_path(inside("live.sock")), std::runtime_error);
}

TEST_F(UnixSocket, AFileIsLeftAlone)
{
    std::ofstream(inside("file")) << "x";
    EXPECT_THROW(check_socket_path(inside("file")), std::runtime_error);
}

TEST_F(UnixSocket, APathThatIsTooLongIsRefused)
{
    EXPECT_NO_THROW(check_socket_path("/" + std::string(106, 'x')));
    EXPECT_THROW(check_socket_path("/" + std::string(107, 'x')), std::runtime_error);
}

} // namespace
