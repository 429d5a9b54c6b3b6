// velmod and the service manager that has started it.
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

#include <csignal>
#include <cstring>
#include <fstream>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

// The socket that a service manager listens at.
class Notify : public ::testing::Test {
protected:
    Notify()
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(
            bind(manager.get(), reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        const timeval limit{patience.count(), 0};
        setsockopt(manager.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }

    // The next message: lines of NAME=VALUE.
    std::string message() const
    {
        char text[4096];
        const ssize_t got = recv(manager.get(), text, sizeof text, 0);
        return got < 0 ? "nothing" : std::string(text, static_cast<std::size_t>(got));
    }

    static bool has_line(const std::string& text, const std::string& line)
    {
        return ("\n" + text + "\n").find("\n" + line + "\n") != std::string::npos;
    }

    TemporaryFolder folder;
    const std::string path = (folder.path() / "notify").string();
    const Descriptor manager{socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)};
};

TEST_F(Notify, ReadinessReloadAndEndAreTold)
{
    Velmod velmod({}, {{"NOTIFY_SOCKET", path}});
    std::string text = message();
    EXPECT_TRUE(has_line(text, "READY=1")) << text;
    EXPECT_TRUE(has_line(text, "STATUS=Serving, naming " + velmod.naming_url())) << text;
    EXPECT_TRUE(has_line(text, "MAINPID=" + std::to_string(velmod.process().pid())));

    velmod.process().signal(SIGHUP);
    text = message();
    EXPECT_TRUE(has_line(text, "RELOADING=1")) << text;
    EXPECT_NE(text.find("\nMONOTONIC_USEC="), std::string::npos) << text;
    EXPECT_TRUE(has_line(message(), "READY=1"));

    EXPECT_EQ(velmod.stop(), 0);
    text = message();
    EXPECT_TRUE(has_line(text, "STOPPING=1")) << text;
}

TEST_F(Notify, AReloadThatFailsIsOverAsWell)
{
    const std::string file = (folder.path() / "c.xml").string();
    std::ofstream(file) << "<velmo/>";
    Velmod velmod({"--config", file}, {{"NOTIFY_SOCKET", path}});
    EXPECT_TRUE(has_line(message(), "READY=1"));
    std::ofstream(file) << "<";
    velmod.process().signal(SIGHUP);
    EXPECT_TRUE(has_line(message(), "RELOADING=1"));
    EXPECT_TRUE(has_line(message(), "READY=1"));
}

TEST_F(Notify, AStartThatFailsIsNotToldAsReady)
{
    {
        Process velmod(
            {velmod_path(), "--listen", "127.0.0.1:0", "--no-unix", "--naming", "nonsense"},
            {{"NOTIFY_SOCKET", path}});
        EXPECT_EQ(velmod.wait(), 1);
    }
    char byte;
    EXPECT_LT(recv(manager.get(), &byte, 1, MSG_DONTWAIT), 0);
}

TEST_F(Notify, AManagerThatDoesNotListenIsNoProblem)
{
    Velmod velmod({}, {{"NOTIFY_SOCKET", path + "-of-nobody"}});
    EXPECT_EQ(velmod.stop(), 0);
}

} // namespace
