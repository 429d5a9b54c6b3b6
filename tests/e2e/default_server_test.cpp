// Which server a call reaches.

#include "vl_api.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/loopback.h"
#include "tests/support/settings_file.h"
#include "tests/support/velmod.h"

using namespace velmo::tests;

namespace {

constexpr unsigned int mailbox = 1;

// Puts a text into the mailbox of a server.
int send(const char* server, const std::string& text)
{
    return vl_send_packet(mailbox, text.data(), static_cast<int>(text.size()), 0, server,
                          nullptr);
}

// The next text in the mailbox of a server, or its result code in words.
std::string receive(const char* server)
{
    void* data = nullptr;
    unsigned int length = 0;
    const int code =
        vl_receive_packetv(mailbox, nullptr, &data, &length, 0, server, nullptr);
    if (code != VL_OK)
        return "code " + std::to_string(code);
    const std::string text(static_cast<const char*>(data), length);
    vl_free_memory(&data);
    return text;
}

const std::string empty = "code " + std::to_string(EMPTY_QUEUE);

class TwoServers : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(vl_create_port("mailbox", mailbox, 0, "A", nullptr), VL_OK);
        ASSERT_EQ(vl_create_port("mailbox", mailbox, 0, "B", nullptr), VL_OK);
    }

    Velmod a{{"--server", "A"}};
    Velmod b{{"--server", "B"}};
    SettingsFile settings{"local=\"B\"", {{"A", a.naming_url()}, {"B", b.naming_url()}}};
};

TEST_F(TwoServers, PacketArrivesAtTheNamedServerAndNowhereElse)
{
    ASSERT_EQ(send("A", "to A"), VL_OK);
    EXPECT_EQ(receive("B"), empty);
    EXPECT_EQ(receive("A"), "to A");
    ASSERT_EQ(send("B", "to B"), VL_OK);
    EXPECT_EQ(receive("A"), empty);
    EXPECT_EQ(receive("B"), "to B");
}

TEST_F(TwoServers, PacketWithoutAServersNameArrivesAtTheOwnOne)
{
    ASSERT_EQ(send(nullptr, "by null"), VL_OK);
    ASSERT_EQ(send("", "by empty name"), VL_OK);
    EXPECT_EQ(receive("A"), empty);
    EXPECT_EQ(receive("B"), "by null");
    EXPECT_EQ(receive("B"), "by empty name");
}

TEST_F(TwoServers, ServerThatIsNotListedHasNoReference)
{
    EXPECT_EQ(send("C", "lost"), VL_NO_REFERENCE);
    EXPECT_EQ(vl_mid_connect("C"), NAMING_SERVER_NOT_ONLINE);
    EXPECT_EQ(receive("A"), empty);
    EXPECT_EQ(receive("B"), empty);
}

TEST_F(TwoServers, PositionsFollowTheSettings)
{
    const ServerRecord own = vl_get_servername("own");
    ASSERT_EQ(own.count, 1);
    EXPECT_STREQ(own.names[0], "B");
    const ServerRecord sibling = vl_get_servername("sibling");
    ASSERT_EQ(sibling.count, 1);
    EXPECT_STREQ(sibling.names[0], "A");
    EXPECT_EQ(vl_mid_connect(nullptr), VL_OK);
    EXPECT_EQ(vl_mid_is_connect("A"), VL_OK);
}

TEST(Settings, FaultyFileSendsNothingAnywhere)
{
    Velmod velmod({"--server", "A"});
    SettingsFile settings("<velmo local=\"A\"><server name=\"A\" naming=\"" +
                          velmod.naming_url() + "\"/>");
    EXPECT_EQ(send("A", "x"), VL_NO_REFERENCE);
    EXPECT_EQ(send(nullptr, "x"), VL_NO_REFERENCE);
    EXPECT_EQ(vl_mid_connect(nullptr), NAMING_SERVER_NOT_ONLINE);
    EXPECT_STREQ(vl_get_servername("own").names[0], "0000");
}

TEST(Settings, WithoutAnOwnServerNothingGoesToTheOthers)
{
    // Listed, but by nothing said to be this host's own.
    SettingsFile settings("", {{"A", "corbaloc::1.2@203.0.113.1:2809/NameService"}});
    const ServerRecord own = vl_get_servername("own");
    ASSERT_EQ(own.count, 1);
    EXPECT_STREQ(own.names[0], "0000");
    EXPECT_EQ(send(nullptr, "x"), VL_NO_REFERENCE);
    EXPECT_EQ(vl_mid_connect(nullptr), NAMING_SERVER_NOT_ONLINE);
}

} // namespace
